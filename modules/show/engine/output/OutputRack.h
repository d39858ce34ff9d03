// The output slots: starts, feeds and ends the outputs. Engine thread, except setIncomeServer(),
// isRunning(), statistics() and reports().
#pragma once
#include <array>
#include <atomic>
#include <memory>
#include <optional>

#include "ThreadSafety.h"
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
  /// Starts the output of a slot after ending one that runs there. Nothing starts for a slot that does not
  /// exist or before the show is open; the console gets its answer in any case.
  void start(int slot, const tagKorviaShowOutputParam& param, const QString& programName,
             const tagKorviaFormatInfo& format);
  /// `kind` is returned in the answer.
  void stop(int slot, int kind);

  /// Pushes one program frame `count` times.
  void push(const FrameRef& frame, int count);
  /// Pushes the sound of the program frames since the last call.
  void pushSound(StereoSpan sound);

  /// For the next outputs. Any thread.
  void setIncomeServer(const IncomeTarget& income) {
    MutexLock lock(mutex_);
    income_ = income;
  }

  bool isRunning(int slot) const;
  void statistics(tagKorviaOutputStatistics& statistics) const;
  /// The report of the newest output of each slot, also after its stop. Any thread.
  Reports reports() const;

 private:
  /// The final reports of the outputs; shared with outputs that still end when the rack is destroyed.
  struct Ledger {
    Mutex mutex;
    Reports reports GUARDED_BY(mutex);
    // Counts the outputs of each slot, so that the late end of an earlier one does not replace its report.
    std::array<int, kSlots> starts GUARDED_BY(mutex){};
  };
  struct Ending;

  void end(int slot);
  /// The encoder of another output; null when none runs.
  std::shared_ptr<SlotEncoder> encoderBeside(int slot) const;
  /// Calls it once for each encoder.
  template <typename Function>
  void forEachEncoder(const Function& function) const;

  Janitor& janitor_;
  const std::shared_ptr<EncoderTrials> trials_ = std::make_shared<EncoderTrials>();
  const std::shared_ptr<Ledger> ledger_ = std::make_shared<Ledger>();
  IShowBackendHost* host_ = nullptr;
  std::optional<FrameRate> rate_;  // of the open show
  mutable Mutex mutex_;
  IncomeTarget income_ GUARDED_BY(mutex_);
  std::array<std::shared_ptr<OutputSlot>, kSlots>
      slots_;  // the pointers are written under mutex_, which the other threads hold to read
};

}  // namespace korvia
