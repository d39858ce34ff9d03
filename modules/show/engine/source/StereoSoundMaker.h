// Makes stereo sound of GStreamer's decoded sound, which is interleaved floats of 48 kHz with any number of
// channels: cuts it at the ends of the segment, where encoders have their priming, and mixes it down. One
// thread at a time (the film's streaming thread of the sound).
#pragma once
#include <gst/gst.h>

#include <cstdint>
#include <optional>
#include <vector>

#include "engine/audio/StereoMixdown.h"
#include "engine/audio/StereoSpan.h"

namespace korvia {

class StereoSoundMaker {
 public:
  struct Sound {
    StereoSpan span;  ///< valid until the next call
    /// Time in the film; none when it states none.
    std::optional<std::int64_t> ptsNs;
    /// In the running time of the pipeline; none when it has no time.
    std::optional<std::int64_t> runningNs;
  };

  /// None when nothing of the sample lies in the segment, or it cannot be read.
  std::optional<Sound> make(GstSample* sample);

 private:
  GstAudioInfo format_ = {};  // of mixdown_
  std::optional<StereoMixdown> mixdown_;
  std::vector<float> left_;
  std::vector<float> right_;
};

}  // namespace korvia
