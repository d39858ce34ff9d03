// A buffer of sound between two threads that is played a little faster or slower than it is filled. The speed
// changes so slowly that it is not heard. What would click is faded: the beginning, and an end for want of
// samples. One thread pushes, one pulls; no call waits or allocates.
#pragma once
#include <zita-resampler/vresampler.h>

#include <atomic>
#include <cstdint>
#include <vector>

#include "GainRamp.h"
#include "StereoSpan.h"

namespace korvia {

class VarispeedBuffer {
 public:
  /// Samples that must be in the buffer besides those that are pulled, for the filter of the resampler and
  /// for the fade when no more come.
  static constexpr int kReserve = 512;

  /// Holds at least `samples` of each side.
  explicit VarispeedBuffer(int samples);
  VarispeedBuffer(const VarispeedBuffer&) = delete;
  VarispeedBuffer& operator=(const VarispeedBuffer&) = delete;

  // The pushing thread. Both return false, and take nothing, when there is no room.

  /// `samples` pairs of left and right.
  bool push(const float* interleaved, int samples);
  bool push(StereoSpan sound);

  // The pulling thread. Positions count the pushed samples from 0.

  std::int64_t written() const { return written_.load(std::memory_order_acquire); }
  /// Where the next sample is read, between two pushed samples.
  double position() const;
  bool isPlaying() const { return playing_; }
  /// Begins to play at `position`, with a fade, and frees what lies before. Only while it does not play.
  void start(std::int64_t position);
  /// Ends with a fade in the next samples that are pulled.
  void fadeOut() { gain_.fadeTo(GainRamp::Gain::Silent); }
  bool isFadingOut() const { return playing_ && gain_.isFadingOut(); }
  /// Ends at once, when nobody hears it.
  void stop() { playing_ = false; }
  /// Fills `out` at a speed that approaches `speed`, in pushed samples for each pulled one. Fades out and
  /// stops playing when too few samples are left. False, with nothing written, when it does not play.
  bool pull(StereoSpan out, double speed);
  /// Frees all samples before `position`. Only while it does not play.
  void skipTo(std::int64_t position);

 private:
  bool hasRoom(int samples) const;
  void put(std::int64_t position, float left, float right);
  /// `out` may be shorter when the buffer runs empty; returns the samples that were made.
  int resample(StereoSpan out);

  const std::int64_t mask_;
  std::vector<float> samples_;  // a ring of pairs; the pushing thread writes what lies after written_
  std::atomic<std::int64_t> written_{0};
  std::atomic<std::int64_t> read_{0};  // taken by the resampler

  // Pulling thread only.
  VResampler resampler_;
  std::vector<float> made_;  // pairs
  GainRamp gain_{GainRamp::Gain::Silent};
  bool playing_ = false;
};

}  // namespace korvia
