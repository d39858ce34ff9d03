#include "StageClock.h"

#include <algorithm>

namespace korvia {

void StageClock::add(Stage stage, std::chrono::nanoseconds time) {
  const double ms = std::chrono::duration<double, std::milli>(time).count();
  std::lock_guard lock(mutex_);
  Samples& samples = stages_[stage];
  samples.ms[samples.next] = static_cast<float>(ms);
  samples.next = (samples.next + 1) % kWindow;
  samples.count = std::min(samples.count + 1, kWindow);
  samples.maxMs = std::max(samples.maxMs, ms);
}

tagKorviaShowEngineFigures::StageTime StageClock::summary(const Samples& samples) const {
  tagKorviaShowEngineFigures::StageTime time;
  if (samples.count == 0)
    return time;
  std::vector<float> sorted(samples.ms.begin(), samples.ms.begin() + samples.count);
  std::sort(sorted.begin(), sorted.end());
  time.p50Ms = sorted[samples.count / 2];
  time.p99Ms = sorted[samples.count * 99 / 100];
  time.maxMs = samples.maxMs;
  return time;
}

void StageClock::read(tagKorviaShowEngineFigures& figures) const {
  std::array<Samples, StageCount> stages;
  {
    std::lock_guard lock(mutex_);
    stages = stages_;
  }
  figures.sources = summary(stages[Sources]);
  figures.mix = summary(stages[Mix]);
  figures.items = summary(stages[Items]);
  figures.audio = summary(stages[Audio]);
  figures.monitors = summary(stages[Monitors]);
  figures.handOver = summary(stages[HandOver]);
  figures.tick = summary(stages[Tick]);
}

}  // namespace korvia
