#include "StageClock.h"

#include <algorithm>

namespace korvia {

namespace {

constexpr std::chrono::seconds kWindow{10};

}  // namespace

void StageClock::add(Stage stage, std::chrono::nanoseconds time, Time now) {
  const double ms = std::chrono::duration<double, std::milli>(time).count();
  Samples& samples = stages_[stage];
  MutexLock lock(samples.mutex);
  samples.ring[samples.next] = {now, static_cast<float>(ms)};
  samples.next = (samples.next + 1) % kCapacity;
  samples.count = std::min(samples.count + 1, kCapacity);
  samples.maxOfRunMs = std::max(samples.maxOfRunMs, ms);
}

void StageClock::restart() {
  for (Samples& samples : stages_) {
    MutexLock lock(samples.mutex);
    samples.count = 0;
    samples.next = 0;
    samples.maxOfRunMs = 0;
  }
}

tagKorviaShowEngineFigures::StageTime StageClock::summary(const Samples& samples, Time now) {
  tagKorviaShowEngineFigures::StageTime time;
  std::vector<float> sorted;
  sorted.reserve(kCapacity);
  {
    MutexLock lock(samples.mutex);
    time.maxOfRunMs = samples.maxOfRunMs;
    for (int i = 0; i < samples.count; ++i) {
      if (now - samples.ring[i].time <= kWindow)
        sorted.push_back(samples.ring[i].ms);
    }
  }
  if (sorted.empty())
    return time;
  std::sort(sorted.begin(), sorted.end());
  time.p50Ms = sorted[sorted.size() / 2];
  time.p99Ms = sorted[sorted.size() * 99 / 100];
  time.maxMs = sorted.back();
  return time;
}

void StageClock::read(tagKorviaShowEngineFigures& figures, Time now) const {
  figures.sources = summary(stages_[Sources], now);
  figures.mix = summary(stages_[Mix], now);
  figures.items = summary(stages_[Items], now);
  figures.audio = summary(stages_[Audio], now);
  figures.monitors = summary(stages_[Monitors], now);
  figures.handOver = summary(stages_[HandOver], now);
  figures.tick = summary(stages_[Tick], now);
}

}  // namespace korvia
