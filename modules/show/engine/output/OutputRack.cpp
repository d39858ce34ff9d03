#include "OutputRack.h"

#include "OutputFactory.h"

namespace korvia {

void OutputRack::start(const OutputRequest& request) {
  const int slot = request.slot;
  if (slot < 0 || slot >= kSlots)
    return;
  stop(slot);
  std::shared_ptr<ProgramOutput> output = createProgramOutput(request);
  std::lock_guard lock(mutex_);
  slots_[slot] = {std::move(output), 0};
}

void OutputRack::stop(int slot) {
  if (slot < 0 || slot >= kSlots)
    return;
  std::shared_ptr<ProgramOutput> output;
  {
    std::lock_guard lock(mutex_);
    output = std::move(slots_[slot].output);
    slots_[slot] = {};
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
  for (Slot& slot : slots_) {
    if (!slot.output)
      continue;
    for (int i = 0; i < count; ++i)
      slot.output->pushFrame(frame, slot.frames++);
  }
}

bool OutputRack::isRunning(int slot) const {
  std::lock_guard lock(mutex_);
  return slots_[slot].output && slots_[slot].output->figures().up;
}

void OutputRack::statistics(tagKorviaOutputStatistics& statistics) const {
  std::lock_guard lock(mutex_);
  for (int slot = 0; slot < kSlots; ++slot) {
    if (!slots_[slot].output)
      continue;
    const OutputFigures figures = slots_[slot].output->figures();
    tagKorviaOutputStatisticsBlock& block = statistics.blocks[slot];
    block.videoFps = figures.framesPerSecond;
    block.videoBitrate = figures.videoKbps;
    if (slot == OutputSlotRecord)
      block.record.bitrate = figures.up ? figures.videoKbps : 0;
  }
}

}  // namespace korvia
