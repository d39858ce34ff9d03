// Size, rates and length of a demo film, for its picture, sound and writer.
#pragma once

namespace korvia {

constexpr int kDemoWidth = 1920;
constexpr int kDemoHeight = 1080;
constexpr int kDemoFramesPerSecond = 25;
constexpr int kDemoSeconds = 20;
constexpr int kDemoFrames = kDemoSeconds * kDemoFramesPerSecond;
constexpr int kDemoSampleRate = 48000;
constexpr int kDemoChannels = 2;

// Length of the flash and the beep at each full second.
constexpr int kDemoMarkFrames = 2;
constexpr int kDemoMarkSamples = kDemoMarkFrames * kDemoSampleRate / kDemoFramesPerSecond;

}  // namespace korvia
