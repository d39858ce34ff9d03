// Carries sound from one sample clock to another: from a capture card to the show, or from the show to an
// audio device. Both sides tell when they push and pull. The drift between the clocks is measured from that,
// and the sound is resampled so slowly faster or slower that nobody hears it and no sample is dropped or
// repeated. The delay stays the same for hours.
//
// One thread pushes, another one pulls; either may be the engine thread. No call allocates, or waits longer
// than a line is fitted through 64 points.
#pragma once
#include <cstdint>

#include "DriftLoop.h"
#include "StereoSpan.h"
#include "ThreadSafety.h"
#include "VarispeedBuffer.h"

namespace korvia {

class DriftCorrector {
 public:
  struct Figures {
    /// How much faster samples are pushed than pulled, in parts of 10^6; 0 in the first half minute.
    double ppm = 0;
    /// How much longer than the target the delay is.
    double errorSamples = 0;
    std::int64_t underruns = 0;  ///< times that the sound was faded out because no more came
    std::int64_t overruns = 0;   ///< times that samples were refused because nobody pulled
  };

  /// The delay from push to pull. It has to be longer than the largest push, the largest pull, the jitter of
  /// both and VarispeedBuffer::kReserve together.
  explicit DriftCorrector(int targetSamples);
  DriftCorrector(const DriftCorrector&) = delete;
  DriftCorrector& operator=(const DriftCorrector&) = delete;

  /// `samples` pairs of left and right, complete at `nowNs`.
  void push(const float* interleaved, int samples, std::int64_t nowNs);
  void push(StereoSpan sound, std::int64_t nowNs);
  /// The sound for `nowNs`, by the same clock as the time of push. A pull in several pieces gives the same
  /// time for each. False, with nothing written, for silence: until the delay is filled, and after an
  /// underrun until it is filled again.
  bool pull(StereoSpan out, std::int64_t nowNs);
  /// Where the next pull goes on, counted in pushed samples from 0, between two of them. Pulling thread.
  double position() const { return buffer_.position(); }

  /// Samples that were pushed and not refused. Any thread.
  std::int64_t pushed() const { return buffer_.written(); }
  /// Any thread.
  double ppm() const { return figures().ppm; }
  Figures figures() const;

 private:
  void notePush(bool accepted, std::int64_t nowNs) EXCLUDES(mutex_);
  bool begin(std::int64_t nowNs) REQUIRES(mutex_);
  void end() REQUIRES(mutex_);

  VarispeedBuffer buffer_;
  bool delayIsWrong_ = false;  // pulling thread; the sound fades out to begin again at the right place

  mutable Mutex mutex_;
  DriftLoop loop_ GUARDED_BY(mutex_);
  Figures figures_ GUARDED_BY(mutex_);
  // Samples were refused, so what is in the buffer does not go on with what comes next.
  bool overrun_ GUARDED_BY(mutex_) = false;
};

}  // namespace korvia
