#include "OutputRack.h"

#include "OutputFactory.h"

namespace korvia {

void OutputRack::start(const OutputRequest& request) {
  const int slot = request.slot;
  if (slot < 0 || slot >= kSlots)
    return;
  stop(slot);
  std::shared_ptr<OutputSlot> output = createOutputSlot(request, janitor_);
  std::lock_guard lock(mutex_);
  slots_[slot] = std::move(output);
}

void OutputRack::stop(int slot) {
  if (slot < 0 || slot >= kSlots)
    return;
  std::shared_ptr<OutputSlot> output;
  {
    std::lock_guard lock(mutex_);
    output = std::move(slots_[slot]);
  }
  if (!output)
    return;
  output->finish();
  janitor_.dispose(std::move(output));
}

void OutputRack::stopAll() {
  for (int slot = 0; slot < kSlots; ++slot)
    stop(slot);
}

void OutputRack::push(const FrameRef& frame, int count) {
  for (const std::shared_ptr<OutputSlot>& slot : slots_) {
    for (int i = 0; slot && i < count; ++i)
      slot->pushFrame(frame);
  }
}

bool OutputRack::isRunning(int slot) const {
  std::lock_guard lock(mutex_);
  return slots_[slot] && slots_[slot]->figures().up;
}

void OutputRack::statistics(tagKorviaOutputStatistics& statistics) const {
  std::lock_guard lock(mutex_);
  for (int slot = 0; slot < kSlots; ++slot) {
    if (!slots_[slot])
      continue;
    const OutputFigures figures = slots_[slot]->figures();
    tagKorviaOutputStatisticsBlock& block = statistics.blocks[slot];
    block.videoFps = figures.framesPerSecond;
    block.videoBitrate = figures.videoKbps;
    if (slot == OutputSlotRecord)
      block.record.bitrate = figures.up ? figures.videoKbps : 0;
  }
}

}  // namespace korvia
