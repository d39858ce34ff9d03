// The output slots: starts, feeds and ends what leaves the engine. Engine thread, but for isRunning() and
// statistics().
#pragma once
#include <array>
#include <memory>
#include <mutex>

#include "engine/Janitor.h"
#include "engine/output/OutputRequest.h"
#include "engine/output/OutputSlot.h"
#include "tagKorviaOutputStatistics.h"

namespace korvia {

class OutputRack {
 public:
  static constexpr int kSlots = 2;

  explicit OutputRack(Janitor& janitor) : janitor_(janitor) {}

  /// Starts the output of a slot, ending one that runs there. Nothing happens for a slot that does not exist.
  void start(const OutputRequest& request);
  void stop(int slot);
  void stopAll();
  /// One program frame, `count` times: 1 plus the frames that were missed.
  void push(const FrameRef& frame, int count);

  bool isRunning(int slot) const;
  void statistics(tagKorviaOutputStatistics& statistics) const;

 private:
  Janitor& janitor_;
  mutable std::mutex mutex_;
  std::array<std::shared_ptr<OutputSlot>, kSlots>
      slots_;  // the pointers are written under mutex_, which the other threads hold to read
};

}  // namespace korvia
