// The measures of a demo film, which its picture, its sound and its writer share.
#pragma once

namespace korvia {

constexpr int kDemoWidth = 1920;
constexpr int kDemoHeight = 1080;
constexpr int kDemoFramesPerSecond = 25;
constexpr int kDemoSeconds = 20;
constexpr int kDemoFrames = kDemoSeconds * kDemoFramesPerSecond;
constexpr int kDemoSampleRate = 48000;
constexpr int kDemoChannels = 2;

// How long the flash and the beep at each full second last.
constexpr int kDemoMarkFrames = 2;
constexpr int kDemoMarkSamples = kDemoMarkFrames * kDemoSampleRate / kDemoFramesPerSecond;

}  // namespace korvia
