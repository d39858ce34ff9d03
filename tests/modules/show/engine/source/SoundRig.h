// A SourceRig whose sound is pulled too, as the mixer does.
#pragma once
#include "../audio/ToneCheck.h"
#include "SourceRig.h"

namespace korvia::test {

class SoundRig : public SourceRig {
 public:
  static constexpr int kTickSamples = kSampleRate / 25;

  using SourceRig::SourceRig;

  /// One tick: a picture and its sound, which are kept. Waits until the decoder is ahead, or has nothing more
  /// to give.
  void soundTick() {
    waitForSound();
    const FrameRef frame = tick();
    numbers_.push_back(numberIn(frame));
    // In two pieces, so that a source that only gives whole ticks is found out.
    const StereoSpan out = sound_.append(kTickSamples);
    const bool first = (*this)->pullSound(out.part(0, 700));
    const bool second = (*this)->pullSound(out.part(700, kTickSamples - 700));
    sounding_ = first || second;
  }
  void soundTicks(int count) {
    for (int i = 0; i < count; ++i)
      soundTick();
  }
  /// Ticks until the film plays. The first tick that is kept shows picture 0; it is silent when the film did
  /// not play yet.
  bool begin(double seconds = 10) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    do {
      soundTick();
      if (numbers_.back() > 0)
        return true;
      keepLastTick();
      if (numbers_.back() == 0 && (*this)->getPlayState() == Playing)
        return true;
    } while (std::chrono::steady_clock::now() < end);
    return false;
  }
  /// Ticks until this picture is there; false after `seconds`.
  bool soundTicksUntilPicture(int number, double seconds = 10) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    do
      soundTick();
    while (numbers_.back() != number && std::chrono::steady_clock::now() < end);
    return numbers_.back() == number;
  }
  void forget() {
    numbers_.clear();
    sound_ = {};
  }

  /// The film is silent somewhere, so that a tick cannot wait long for its sound.
  void expectSilence() { patience_ = std::chrono::milliseconds(100); }

  /// Until some ticks' sound is there, or the decoder has no more to give.
  void waitForSound() {
    const auto end = std::chrono::steady_clock::now() + patience_;
    while ((*this)->figures().samplesQueued < 4 * kTickSamples && std::chrono::steady_clock::now() < end)
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }

  /// Of the kept ticks.
  const std::vector<int>& numbers() const { return numbers_; }
  const Sound& sound() const { return sound_; }
  bool isSounding() const { return sounding_; }
  /// The first sample of the tick that showed this picture first; -1 when none did.
  int sampleOfPicture(int number) const {
    const auto found = std::find(numbers_.begin(), numbers_.end(), number);
    return found == numbers_.end() ? -1 : static_cast<int>(found - numbers_.begin()) * kTickSamples;
  }

 private:
  void keepLastTick() {
    numbers_ = {numbers_.back()};
    for (std::vector<float>* side : {&sound_.left, &sound_.right})
      side->erase(side->begin(), side->end() - kTickSamples);
  }

  std::vector<int> numbers_;
  Sound sound_;
  bool sounding_ = false;
  // The ticks are faster than real time, so on a busy machine a decoder needs more than their length.
  std::chrono::milliseconds patience_{5000};
};

/// The middle of the energy of a range of samples, in samples.
inline double middleOf(const std::vector<float>& samples, int first, int count) {
  double energy = 0;
  double moment = 0;
  for (int i = first; i < first + count && i < static_cast<int>(samples.size()); ++i) {
    const double square = static_cast<double>(samples[static_cast<std::size_t>(i)]) *
                          static_cast<double>(samples[static_cast<std::size_t>(i)]);
    energy += square;
    moment += square * (i + 0.5);
  }
  return energy > 0 ? moment / energy : -1;
}

/// The largest absolute value in a range of samples.
inline float peakOf(const std::vector<float>& samples, int first, int count) {
  float peak = 0;
  for (int i = std::max(0, first); i < first + count && i < static_cast<int>(samples.size()); ++i)
    peak = std::max(peak, std::abs(samples[static_cast<std::size_t>(i)]));
  return peak;
}

}  // namespace korvia::test
