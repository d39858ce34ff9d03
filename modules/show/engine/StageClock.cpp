#include "StageClock.h"

#include <algorithm>

namespace korvia {

namespace {

constexpr std::chrono::seconds kWindow{10};

}  // namespace

void StageClock::add(Stage stage, std::chrono::nanoseconds time, Time now) {
  const double ms = std::chrono::duration<double, std::milli>(time).count();
  std::lock_guard lock(mutex_);
  Samples& samples = stages_[stage];
  samples.ring[samples.next] = {now, static_cast<float>(ms)};
  samples.next = (samples.next + 1) % kCapacity;
  samples.count = std::min(samples.count + 1, kCapacity);
  samples.maxOfRunMs = std::max(samples.maxOfRunMs, ms);
}

void StageClock::restart() {
  std::lock_guard lock(mutex_);
  for (Samples& samples : stages_) {
    samples.count = 0;
    samples.next = 0;
    samples.maxOfRunMs = 0;
  }
}

tagKorviaShowEngineFigures::StageTime StageClock::summary(const Samples& samples, Time now) {
  tagKorviaShowEngineFigures::StageTime time;
  time.maxOfRunMs = samples.maxOfRunMs;
  std::vector<float> sorted;
  sorted.reserve(static_cast<std::size_t>(samples.count));
  for (int i = 0; i < samples.count; ++i) {
    if (now - samples.ring[i].time <= kWindow)
      sorted.push_back(samples.ring[i].ms);
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
  // The copy is large, so it lies in memory of its own and not on the stack.
  auto stages = std::make_unique<std::array<Samples, StageCount>>();
  {
    std::lock_guard lock(mutex_);
    *stages = stages_;
  }
  figures.sources = summary((*stages)[Sources], now);
  figures.mix = summary((*stages)[Mix], now);
  figures.items = summary((*stages)[Items], now);
  figures.audio = summary((*stages)[Audio], now);
  figures.monitors = summary((*stages)[Monitors], now);
  figures.handOver = summary((*stages)[HandOver], now);
  figures.tick = summary((*stages)[Tick], now);
}

}  // namespace korvia
