#include "StereoMixdown.h"

#include <algorithm>

namespace korvia {

namespace {

constexpr float k3Db = 0.70710678F;

struct Position {
  GstAudioChannelPosition position;
  float left;
  float right;
};

// A position that is not named is not heard: the LFE channels, for instance.
constexpr Position kPositions[] = {
    {GST_AUDIO_CHANNEL_POSITION_MONO, 1, 1},
    {GST_AUDIO_CHANNEL_POSITION_FRONT_LEFT, 1, 0},
    {GST_AUDIO_CHANNEL_POSITION_FRONT_RIGHT, 0, 1},
    {GST_AUDIO_CHANNEL_POSITION_FRONT_CENTER, k3Db, k3Db},
    {GST_AUDIO_CHANNEL_POSITION_FRONT_LEFT_OF_CENTER, 1, 0},
    {GST_AUDIO_CHANNEL_POSITION_FRONT_RIGHT_OF_CENTER, 0, 1},
    {GST_AUDIO_CHANNEL_POSITION_WIDE_LEFT, 1, 0},
    {GST_AUDIO_CHANNEL_POSITION_WIDE_RIGHT, 0, 1},
    {GST_AUDIO_CHANNEL_POSITION_SIDE_LEFT, k3Db, 0},
    {GST_AUDIO_CHANNEL_POSITION_SIDE_RIGHT, 0, k3Db},
    {GST_AUDIO_CHANNEL_POSITION_SURROUND_LEFT, k3Db, 0},
    {GST_AUDIO_CHANNEL_POSITION_SURROUND_RIGHT, 0, k3Db},
    {GST_AUDIO_CHANNEL_POSITION_REAR_LEFT, k3Db, 0},
    {GST_AUDIO_CHANNEL_POSITION_REAR_RIGHT, 0, k3Db},
    // A single surround goes to both sides with 0.707 of a surround's gain.
    {GST_AUDIO_CHANNEL_POSITION_REAR_CENTER, 0.5F, 0.5F},
    {GST_AUDIO_CHANNEL_POSITION_TOP_FRONT_LEFT, k3Db, 0},
    {GST_AUDIO_CHANNEL_POSITION_TOP_FRONT_RIGHT, 0, k3Db},
    {GST_AUDIO_CHANNEL_POSITION_TOP_FRONT_CENTER, 0.5F, 0.5F},
    {GST_AUDIO_CHANNEL_POSITION_TOP_SIDE_LEFT, k3Db, 0},
    {GST_AUDIO_CHANNEL_POSITION_TOP_SIDE_RIGHT, 0, k3Db},
    {GST_AUDIO_CHANNEL_POSITION_TOP_REAR_LEFT, k3Db, 0},
    {GST_AUDIO_CHANNEL_POSITION_TOP_REAR_RIGHT, 0, k3Db},
    {GST_AUDIO_CHANNEL_POSITION_TOP_REAR_CENTER, 0.5F, 0.5F},
    {GST_AUDIO_CHANNEL_POSITION_TOP_CENTER, 0.5F, 0.5F},
};

}  // namespace

StereoMixdown::StereoMixdown(const GstAudioInfo& format)
    : gains_(static_cast<std::size_t>(GST_AUDIO_INFO_CHANNELS(&format))) {
  if (gains_.size() == 1) {
    gains_[0] = {1, 1};
    return;
  }
  // GStreamer states positions of 64 channels at most.
  if (GST_AUDIO_INFO_IS_UNPOSITIONED(&format) || gains_.size() > kMostChannels) {
    gains_[0] = {1, 0};
    gains_[1] = {0, 1};
    return;
  }
  for (std::size_t channel = 0; channel < gains_.size(); ++channel) {
    const auto* found =
        std::find_if(std::begin(kPositions), std::end(kPositions),
                     [&](const Position& position) { return position.position == format.position[channel]; });
    if (found != std::end(kPositions))
      gains_[channel] = {found->left, found->right};
  }
}

void StereoMixdown::mix(const float* interleaved, StereoSpan out) const {
  for (int i = 0; i < out.samples; ++i) {
    float left = 0;
    float right = 0;
    for (const Gains& gains : gains_) {
      left += gains.left * *interleaved;
      right += gains.right * *interleaved;
      ++interleaved;
    }
    out.left[i] = left;
    out.right[i] = right;
  }
}

}  // namespace korvia
