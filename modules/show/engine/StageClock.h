// How long the stages of a frame take. Written on the engine thread, read on any.
#pragma once
#include <array>
#include <chrono>
#include <mutex>
#include <vector>

#include "tagKorviaShowEngineFigures.h"

namespace korvia {

class StageClock {
 public:
  enum Stage { Sources, Mix, Items, Audio, Monitors, HandOver, Tick, StageCount };

  /// Measures from its making to its end.
  class Scope {
   public:
    Scope(StageClock& clock, Stage stage)
        : clock_(clock), stage_(stage), begin_(std::chrono::steady_clock::now()) {}
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    ~Scope() { clock_.add(stage_, std::chrono::steady_clock::now() - begin_); }

   private:
    StageClock& clock_;
    Stage stage_;
    std::chrono::steady_clock::time_point begin_;
  };

  void add(Stage stage, std::chrono::nanoseconds time);
  /// Median, 99th percentile and maximum over the last ticks (the maximum over all).
  void read(tagKorviaShowEngineFigures& figures) const;

 private:
  static constexpr int kWindow = 2048;
  struct Samples {
    std::array<float, kWindow> ms{};
    int count = 0;
    int next = 0;
    double maxMs = 0;
  };
  tagKorviaShowEngineFigures::StageTime summary(const Samples& samples) const;

  mutable std::mutex mutex_;
  std::array<Samples, StageCount> stages_;  // guarded by mutex_
};

}  // namespace korvia
