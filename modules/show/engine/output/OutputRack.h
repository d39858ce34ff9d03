// The output slots: starts, feeds and ends what leaves the engine. Engine thread, but for isRunning(),
// statistics() and reports().
#pragma once
#include <array>
#include <memory>
#include <mutex>
#include <optional>

#include "backend/IShowBackend.h"
#include "engine/Janitor.h"
#include "engine/ShowFormat.h"
#include "engine/output/OutputRequest.h"
#include "engine/output/OutputSlot.h"
#include "tagKorviaOutputStatistics.h"

namespace korvia {

class OutputRack {
 public:
  static constexpr int kSlots = 2;

  using Reports = std::array<tagKorviaShowOutputReport, kSlots>;

  explicit OutputRack(Janitor& janitor) : janitor_(janitor) {}

  /// Results go to `host` from here on; null ends that.
  void setHost(IShowBackendHost* host) { host_ = host; }
  void open(const ShowFormat& format);
  /// Ends all outputs.
  void close();

  // Events.
  /// Starts the output of a slot, ending one that runs there. Nothing starts for a slot that does not exist
  /// and before the show is open; the console gets its answer all the same.
  void start(int slot, const tagKorviaShowOutputParam& param, const QString& programName,
             const tagKorviaFormatInfo& format);
  /// `kind` goes back with the answer.
  void stop(int slot, int kind);

  /// One program frame, `count` times in a row.
  void push(const FrameRef& frame, int count);

  bool isRunning(int slot) const;
  void statistics(tagKorviaOutputStatistics& statistics) const;
  /// What becomes of the newest output of each slot, also when it was stopped. Any thread.
  Reports reports() const;

 private:
  /// What the outputs told at their ends; shared with those that still end when the rack is gone.
  struct Ledger {
    std::mutex mutex;
    Reports reports;                   // guarded by mutex
    std::array<int, kSlots> starts{};  // guarded by mutex; a late end of an output before is not told
  };
  struct Ending;

  void end(int slot);

  Janitor& janitor_;
  const std::shared_ptr<Ledger> ledger_ = std::make_shared<Ledger>();
  IShowBackendHost* host_ = nullptr;
  std::optional<FrameRate> rate_;  // of the open show
  mutable std::mutex mutex_;
  std::array<std::shared_ptr<OutputSlot>, kSlots>
      slots_;  // the pointers are written under mutex_, which the other threads hold to read
};

}  // namespace korvia
