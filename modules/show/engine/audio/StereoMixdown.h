// Mixes sound of any number of channels down to two. Surround sound by ITU-R BS.775: centre and surrounds
// with 0.707, the LFE channel left out, nothing scaled down. Mono goes to both sides at full level. One
// thread at a time.
#pragma once
#include <gst/audio/audio.h>

#include <vector>

#include "StereoSpan.h"

namespace korvia {

class StereoMixdown {
 public:
  static constexpr int kMostChannels = 64;

  /// The gains of each channel for the format. Channels without a position: the first two are left and right.
  explicit StereoMixdown(const GstAudioInfo& format);

  int channels() const { return static_cast<int>(gains_.size()); }
  /// `out.samples` of each channel of `interleaved` go into `out`.
  void mix(const float* interleaved, StereoSpan out) const;

 private:
  struct Gains {
    float left = 0;
    float right = 0;
  };

  std::vector<Gains> gains_;  // one for each channel
};

}  // namespace korvia
