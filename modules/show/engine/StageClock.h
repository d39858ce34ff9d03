// Measures how long the stages of a frame take. Written on the engine thread, read on any.
#pragma once
#include <array>
#include <chrono>
#include <vector>

#include "ThreadSafety.h"
#include "tagKorviaShowEngineFigures.h"

namespace korvia {

class StageClock {
 public:
  enum Stage { Sources, Mix, Items, Audio, Monitors, HandOver, Tick, StageCount };

  /// Measures from its construction to its destruction.
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

  using Time = std::chrono::steady_clock::time_point;

  void add(Stage stage, std::chrono::nanoseconds time, Time now = std::chrono::steady_clock::now());
  /// Median, 99th percentile and maximum over the last 10 s, and the maximum since the last restart().
  void read(tagKorviaShowEngineFigures& figures, Time now = std::chrono::steady_clock::now()) const;
  /// Forgets everything.
  void restart();

 private:
  // More than 10 s at 200 frames a second.
  static constexpr int kCapacity = 2048;
  struct Sample {
    Time time;
    float ms = 0;
  };
  struct Samples {
    mutable Mutex mutex;
    std::array<Sample, kCapacity> ring GUARDED_BY(mutex){};
    int count GUARDED_BY(mutex) = 0;
    int next GUARDED_BY(mutex) = 0;
    double maxOfRunMs GUARDED_BY(mutex) = 0;
  };
  static tagKorviaShowEngineFigures::StageTime summary(const Samples& samples, Time now);

  // One lock for each stage, held only while its times are copied, so that a reader never holds up a whole
  // frame.
  std::array<Samples, StageCount> stages_;
};

}  // namespace korvia
