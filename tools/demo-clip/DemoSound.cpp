#include "DemoSound.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "DemoFormat.h"

namespace korvia {

namespace {

constexpr int kChords = 4;
constexpr int kTones = 3;
constexpr int kChordSamples = kDemoSeconds / kChords * kDemoSampleRate;
constexpr int kSwellSamples = kDemoSampleRate;
constexpr double kPadLevel = 0.035;
constexpr double kBeepLevel = 0.25;
constexpr double kBeepHz = 1000.0;
constexpr int kBeepRampSamples = 48;

// Frequencies in Hz. They need not fit the length of the loop, because a tone is silent where its chord
// begins and ends.
constexpr double kFirstChords[kChords][kTones] = {
    {220.00, 261.63, 329.63}, {174.61, 220.00, 261.63}, {130.81, 196.00, 329.63}, {196.00, 246.94, 293.66}};
constexpr double kSecondChords[kChords][kTones] = {
    {146.83, 220.00, 369.99}, {246.94, 293.66, 369.99}, {196.00, 246.94, 293.66}, {220.00, 277.18, 329.63}};

double swell(int position, int length, int ramp) {
  const int toEdge = std::min(position, length - position);
  return toEdge >= ramp ? 1.0 : 0.5 - 0.5 * std::cos(M_PI * toEdge / ramp);
}

double beep(int sample) {
  const int position = sample % kDemoSampleRate;
  if (position >= kDemoMarkSamples) {
    return 0.0;
  }
  const double phase = 2.0 * M_PI * kBeepHz * position / kDemoSampleRate;
  return kBeepLevel * swell(position, kDemoMarkSamples, kBeepRampSamples) * std::sin(phase);
}

double pad(const double (&chord)[kTones], int position, double width) {
  double sum = 0.0;
  for (int tone = 0; tone < kTones; ++tone) {
    const double phase = 2.0 * M_PI * chord[tone] * position / kDemoSampleRate;
    sum += std::sin(phase + width * tone) + 0.25 * std::sin(2.0 * phase + width);
  }
  return kPadLevel * swell(position, kChordSamples, kSwellSamples) * sum;
}

}  // namespace

DemoSound::DemoSound(int variant) : chords_(variant == 2 ? kSecondChords : kFirstChords) {}

std::vector<float> DemoSound::samples(int first, int count) const {
  std::vector<float> result;
  result.reserve(static_cast<std::size_t>(count) * kDemoChannels);
  for (int sample = first; sample < first + count; ++sample) {
    const int position = sample % kChordSamples;
    const double(&chord)[kTones] = chords_[sample / kChordSamples % kChords];
    const double mark = beep(sample);
    result.push_back(static_cast<float>(pad(chord, position, 0.0) + mark));
    result.push_back(static_cast<float>(pad(chord, position, 0.9) + mark));
  }
  return result;
}

}  // namespace korvia
