// Carries program, its pictures and its sound, from the clock of the show to that of a device. A
// DriftCorrector carries the sound. Pictures follow the sound: each picture of the device is the program
// frame whose sound is played with it, within one frame. While the clocks drift, a single picture is repeated
// or left out now and then. The rates of show and device may differ.
//
// The engine thread pushes, the thread of the device pulls. No call waits for the other side or allocates.
#pragma once
#include <cstdint>
#include <optional>

#include "FrameRate.h"
#include "ThreadSafety.h"
#include "engine/audio/DriftCorrector.h"
#include "engine/output/FrameQueue.h"

namespace korvia {

class ProgramPacer {
 public:
  ProgramPacer(FrameRate show, FrameRate device);
  ProgramPacer(const ProgramPacer&) = delete;
  ProgramPacer& operator=(const ProgramPacer&) = delete;

  // Engine thread.

  /// A block of program at `nowNs` of a steady clock. The sound of a frame is pushed before the frame.
  void pushSound(StereoSpan sound, std::int64_t nowNs) { sound_.push(sound, nowNs); }
  void pushFrame(const FrameRef& frame);

  // Thread of the device.

  /// Keeps frames from here on.
  void begin();
  /// Lets all frames go and keeps none until the next begin.
  void end();
  /// The next picture of the device, and its sound in `sound`, silent while there is none. The picture is
  /// null until the first frame comes. `nowNs` is by the clock of pushSound.
  FrameRef pull(StereoSpan sound, std::int64_t nowNs);
  /// The newest frame, for a device that fills its own buffer at its start; null without one.
  FrameRef newest();

  // Any thread.

  /// Frames that nobody pulled in time.
  std::int64_t droppedFrames() const;
  DriftCorrector::Figures soundFigures() const { return sound_.figures(); }

 private:
  void place(std::int64_t soundSamples);
  void take(double lastPosition);

  const FrameRate show_;
  const double frameSamples_;
  DriftCorrector sound_;

  // Engine thread.
  std::int64_t frames_ = 0;
  std::int64_t nextPosition_ = 0;  // of the next frame's sound, in samples pushed

  // Thread of the device.
  FrameRef current_;
  std::optional<double> wanted_;  // where the sound of the next picture begins, in samples pushed

  mutable Mutex mutex_;
  FrameQueue queue_ GUARDED_BY(mutex_);  // the index of a frame is the place of its sound
  FrameRef newest_ GUARDED_BY(mutex_);
  bool accepting_ GUARDED_BY(mutex_) = false;
  std::int64_t dropped_ GUARDED_BY(mutex_) = 0;
};

}  // namespace korvia
