// An audio mixer with made-up channels, stepped by hand.
#pragma once
#include <QVariant>
#include <cmath>
#include <functional>
#include <numbers>
#include <vector>

#include "KorviaShowEvents.h"
#include "engine/audio/AudioMixer.h"

namespace korvia::test {

/// The sample at a time, in samples from the begin of the channel.
using Signal = std::function<float(qint64)>;

inline Signal constantly(float value) {
  return [value](qint64) { return value; };
}

inline Signal sine(double frequency, double amplitude) {
  return [=](qint64 at) {
    const double turns = std::fmod(frequency * static_cast<double>(at) / kSampleRate, 1.0);
    return static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * turns));
  };
}

/// Samples from -amplitude to amplitude that follow from their time alone.
inline Signal noise(float amplitude) {
  return [=](qint64 at) {
    auto bits = static_cast<std::uint32_t>(at) * 2654435761U;
    bits = (bits ^ (bits >> 15)) * 2246822519U;
    return (static_cast<float>((bits ^ (bits >> 13)) >> 8) / (1 << 23) - 1) * amplitude;
  };
}

/// The right side is that of the left with the other sign.
class MadeUpSounds final : public ChannelSounds {
 public:
  bool pullSound(int slot, StereoSpan piece) override {
    const std::size_t place = static_cast<std::size_t>(slot);
    const qint64 at = pulled[place];
    pulled[place] += piece.samples;
    if (!sounds[place])
      return false;
    for (int i = 0; i < piece.samples; ++i) {
      piece.left[i] = sounds[place](at + i);
      piece.right[i] = -piece.left[i];
    }
    return true;
  }

  std::array<Signal, kSourceSlotCount> sounds;
  std::array<qint64, kSourceSlotCount> pulled{};
};

struct SoundPiece {
  int object = 0;
  std::vector<std::int16_t> samples;
  unsigned rate = 0;
  int sides = 0;
  int bits = 0;
};

/// Keeps results and the sound of the channels.
class MixerHost final : public IShowBackendHost, public IKorviaShowEngineSink {
 public:
  struct Result {
    quint64 event = 0;
    int object = 0;
    double value = 0;
    bool operator==(const Result&) const = default;
  };

  void postResult(quint64 event, const QVariant& a1, const QVariant& a2, const QVariant&,
                  const QVariant&) override {
    results.push_back({event, a1.toInt(), a2.toDouble()});
  }
  void setFrameRate(FrameRate) override {}
  IKorviaShowEngineSink* engineSink() override { return this; }

  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  void onAudioData(KorviaShowObjectID id, const void* data, unsigned a, unsigned b, int c, const void* d,
                   int e) override {
    if (!keepPieces)
      return;
    const auto* samples = static_cast<const std::int16_t*>(data);
    pieces.push_back({id, {samples, samples + a / sizeof(std::int16_t)}, d ? 0 : b, c, e});
  }
  QImage lockBackground(KorviaShowObjectID) override { return {}; }
  void unlockBackground(KorviaShowObjectID, QImage&) override {}
  void onSourceNotify(KorviaShowObjectID, int, int) override {}

  std::vector<Result> results;
  std::vector<SoundPiece> pieces;
  bool keepPieces = false;
};

class MixerRig {
 public:
  explicit MixerRig(FrameRate rate = {}) {
    mixer.setHost(&host);
    mixer.open(rate);
  }

  /// Mixes the next tick; the left side of program is added to `program`, that of preview to `preview`.
  void tick(int missed = 0) {
    frame += 1 + missed;
    mixer.beginTick({frame, missed}, buses);
    while (mixer.mixBlock()) {
      const StereoSpan block = mixer.program();
      program.insert(program.end(), block.left, block.left + block.samples);
      preview.insert(preview.end(), mixer.preview().left, mixer.preview().left + mixer.preview().samples);
      longestBlock = std::max(longestBlock, block.samples);
    }
  }
  void ticks(int count) {
    for (int i = 0; i < count; ++i)
      tick();
  }
  tagKorviaShowAudioLevel levels() const {
    tagKorviaShowAudioLevel levels;
    mixer.getLevels(levels);
    return levels;
  }

  MadeUpSounds channels;
  MixerHost host;
  BusChannels buses;
  AudioMixer mixer{channels};
  qint64 frame = 0;
  std::vector<float> program;
  std::vector<float> preview;
  int longestBlock = 0;
};

}  // namespace korvia::test
