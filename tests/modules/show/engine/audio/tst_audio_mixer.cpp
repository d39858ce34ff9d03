// The mix of the channels on both buses: gains and their ramps, events, levels, the sound of a tick, and what
// the console's sink gets.
#include <QtTest>
#include <cmath>
#include <complex>
#include <limits>

#include "MixerRig.h"
#include "support/AllocationCounter.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kCh0 = MediaChannel;
constexpr int kCh1 = MediaChannel + 1;
constexpr int kCh2 = MediaChannel + 2;
constexpr int kBlock = kSampleRate / 25;
constexpr int kLatency = Limiter::kLatencySamples;

bool isNear(double got, double expected, double tolerance = 1e-5) {
  return std::abs(got - expected) <= tolerance;
}

constexpr int kFrame = 4096;

/// The discrete Fourier transform of kFrame values, in place, by the algorithm of Cooley and Tukey.
void transform(std::vector<std::complex<double>>& values) {
  static const std::vector<std::complex<double>> turns = [] {
    std::vector<std::complex<double>> made(kFrame / 2);
    for (int i = 0; i < kFrame / 2; ++i)
      made[i] = std::polar(1.0, -2 * std::numbers::pi * i / kFrame);
    return made;
  }();
  for (int i = 1, mirrored = 0; i < kFrame; ++i) {
    int bit = kFrame / 2;
    for (; mirrored & bit; bit /= 2)
      mirrored ^= bit;
    mirrored ^= bit;
    if (i < mirrored)
      std::swap(values[i], values[mirrored]);
  }
  for (int half = 1; half < kFrame; half *= 2)
    for (int begin = 0; begin < kFrame; begin += 2 * half)
      for (int i = 0; i < half; ++i) {
        const auto odd = values[begin + half + i] * turns[i * (kFrame / 2 / half)];
        values[begin + half + i] = values[begin + i] - odd;
        values[begin + i] += odd;
      }
}

/// The loudest bin, in dBFS of a sine, that is more than 500 Hz away from both tones, over all frames of
/// kFrame samples with a Blackman-Harris window.
double splatterDb(const std::vector<float>& samples, double toneA, double toneB) {
  double loudest = 0;
  for (std::size_t begin = 0; begin + kFrame <= samples.size(); begin += kFrame / 4) {
    std::vector<std::complex<double>> values(kFrame);
    double weights = 0;
    for (int i = 0; i < kFrame; ++i) {
      const double angle = 2 * std::numbers::pi * i / kFrame;
      const double window =
          0.35875 - 0.48829 * std::cos(angle) + 0.14128 * std::cos(2 * angle) - 0.01168 * std::cos(3 * angle);
      values[i] = window * samples[begin + i];
      weights += window;
    }
    transform(values);
    for (int bin = 0; bin < kFrame / 2; ++bin) {
      const double frequency = double{kSampleRate} * bin / kFrame;
      if (std::abs(frequency - toneA) > 500 && std::abs(frequency - toneB) > 500)
        loudest = std::max(loudest, 2 * std::abs(values[bin]) / weights);
    }
  }
  return 20 * std::log10(loudest + 1e-10);
}

}  // namespace

class AudioMixerTest : public QObject {
  Q_OBJECT

 private slots:
  void theChannelOnProgramIsHeardAsItIs() {
    MixerRig rig;
    rig.channels.sounds[0] = noise(0.5F);
    rig.channels.sounds[1] = noise(0.9F);
    rig.buses = {0, kCh0};
    rig.ticks(5);
    QCOMPARE(rig.program.size(), std::size_t(5 * kBlock));
    // The first block fades in.
    for (int i = kBlock + kLatency; i < 5 * kBlock; ++i)
      QVERIFY(rig.program[i] == rig.channels.sounds[0](i - kLatency));
    QCOMPARE(rig.mixer.program().right[7], -rig.mixer.program().left[7]);
    for (const float sample : rig.preview)
      QCOMPARE(sample, 0.0F);
  }

  void aCutIsARampOfOneBlock() {
    MixerRig rig;
    rig.channels.sounds[0] = constantly(0.5F);
    rig.channels.sounds[1] = constantly(-0.25F);
    rig.buses = {0, kCh0};
    rig.ticks(2);
    rig.buses = {0, kCh1};
    rig.ticks(2);
    for (int i = 0; i < kBlock; ++i) {
      const double position = (i + 1.0) / kBlock;
      QVERIFY(isNear(rig.program[2 * kBlock + kLatency + i], 0.5 * (1 - position) - 0.25 * position));
    }
    QCOMPARE(rig.program.back(), -0.25F);
  }

  void aTakeFadesWithEqualPower() {
    MixerRig rig;
    rig.channels.sounds[0] = constantly(0.5F);
    rig.channels.sounds[1] = constantly(-0.25F);
    for (int step = 0; step < 10; ++step) {
      rig.buses = {kCh1, kCh0, kCh1, step / 10.0};
      rig.tick();
      if (step == 0)
        continue;
      // Its last sample has the gains of the tick; it leaves with the next block.
      const double angle = (step - 1) / 10.0 * std::numbers::pi / 2;
      const double expected = 0.5 * std::cos(angle) - 0.25 * std::sin(angle);
      QVERIFY(isNear(rig.program[static_cast<std::size_t>(step) * kBlock + kLatency - 1], expected));
    }
  }

  void neitherCutsNorVolumesSplatter_data() {
    QTest::addColumn<QString>("what");
    QTest::addColumn<int>("framesPerSecond");
    for (const int rate : {25, 60})
      for (const char* what : {"cut", "take", "lever", "volume", "mute", "bus volume", "mode", "enable"})
        QTest::addRow("%s at %d", what, rate) << what << rate;
  }
  void neitherCutsNorVolumesSplatter() {
    QFETCH(QString, what);
    QFETCH(int, framesPerSecond);
    MixerRig rig({framesPerSecond, 1});
    rig.channels.sounds[0] = sine(1000, 0.7);
    rig.channels.sounds[1] = sine(3100, 0.7);
    rig.buses = {kCh1, kCh0};
    if (what == "enable") {
      rig.mixer.setMixMode(AudioMixModeManual);
      rig.mixer.setChannelMix(kCh0, 1);
    }
    rig.ticks(framesPerSecond / 5);
    rig.program.clear();
    rig.ticks(framesPerSecond / 5);
    if (what == "cut")
      rig.buses = {kCh0, kCh1};
    else if (what == "volume")
      rig.mixer.setVolume(kCh0, 0.3F);
    else if (what == "mute")
      rig.mixer.setVolume(kCh0, 0);
    else if (what == "bus volume")
      rig.mixer.setVolume(PGMObject, 0.1F);
    else if (what == "mode")
      rig.mixer.setMixMode(AudioMixModeManual);
    else if (what == "enable")
      rig.mixer.setChannelMix(kCh0, 0);
    for (int i = 0; i < framesPerSecond / 5; ++i) {
      if (what == "take")
        rig.buses = {kCh1, kCh0, kCh1, 5.0 * i / framesPerSecond};
      // To the middle and back to where it came from.
      if (what == "lever")
        rig.buses = {kCh1, kCh0, kCh1, 0.5 - std::abs(0.5 - 5.0 * i / framesPerSecond)};
      rig.tick();
    }
    if (what == "lever")
      rig.buses = {kCh1, kCh0};
    if (what == "take")
      rig.buses = {kCh0, kCh1};
    rig.ticks(framesPerSecond / 5);
    const double loudest = splatterDb(rig.program, 1000, 3100);
    QVERIFY2(loudest < -60, qPrintable(QString::number(loudest)));
  }

  void theSpectrumFindsAClick() {
    std::vector<float> samples(16384);
    const Signal tone = sine(1000, 0.7);
    for (int i = 0; i < 16384; ++i)
      samples[i] = i < 8000 ? tone(i) : 0;
    QVERIFY(splatterDb(samples, 1000, 1000) > -60);
  }

  void allAndManualMixWhatIsOnNoBus() {
    MixerRig rig;
    rig.channels.sounds[0] = constantly(0.1F);
    rig.channels.sounds[1] = constantly(0.2F);
    rig.channels.sounds[2] = constantly(0.4F);
    rig.buses = {kCh1, kCh0};
    rig.mixer.setMixMode(AudioMixModeAll);
    rig.ticks(3);
    QVERIFY(isNear(rig.program.back(), 0.7));
    rig.mixer.setMixMode(AudioMixModeManual);
    rig.mixer.setChannelMix(kCh2, 1);
    rig.ticks(3);
    QVERIFY(isNear(rig.program.back(), 0.4));
    rig.mixer.setMixMode(AudioMixModeAuto);
    rig.ticks(3);
    QVERIFY(isNear(rig.program.back(), 0.1));
  }

  void theKaraokeIsAlwaysMixedIntoProgram() {
    MixerRig rig;
    rig.channels.sounds[kKaraokeSlot] = constantly(0.5F);
    for (const int mode : {0, 1, 2}) {
      rig.mixer.setMixMode(mode);
      rig.ticks(3);
      QVERIFY(isNear(rig.program.back(), 0.5));
      QCOMPARE(rig.preview.back(), 0.0F);
    }
    rig.mixer.setVolume(KaraokeObject, 0.5F);
    rig.ticks(3);
    QVERIFY(isNear(rig.program.back(), 0.25));
  }

  void previewSoundsAsItsChannelTimesItsVolume() {
    MixerRig rig;
    rig.channels.sounds[0] = constantly(0.1F);
    rig.channels.sounds[1] = constantly(0.2F);
    rig.buses = {kCh1, kCh0};
    rig.ticks(3);
    QVERIFY(isNear(rig.preview.back(), 0.2));
    rig.mixer.setVolume(PVMObject, 0.5F);
    rig.mixer.setVolume(PGMObject, 2);
    rig.mixer.setVolume(kCh1, 3);
    rig.ticks(3);
    QVERIFY(isNear(rig.preview.back(), 0.3));
    QVERIFY(isNear(rig.program.back(), 0.2));
  }

  void loudSumsAreLimitedOnBothBuses() {
    MixerRig rig;
    for (int slot = 0; slot < kMediaChannelMax; ++slot)
      rig.channels.sounds[static_cast<std::size_t>(slot)] = sine(200 + 50 * slot, 0.9);
    rig.mixer.setMixMode(AudioMixModeAll);
    rig.mixer.setVolume(kCh0, 4);
    rig.buses = {kCh0, kCh1};
    rig.ticks(30);
    const auto ceiling = static_cast<float>(std::pow(10, Limiter::kCeilingDb / 20));
    for (const std::vector<float>* bus : {&rig.program, &rig.preview}) {
      QVERIFY(*std::max_element(bus->begin(), bus->end()) <= ceiling);
      QVERIFY(*std::max_element(bus->begin(), bus->end()) > 0.8F);
    }
  }

  void eventsAreAnsweredWithWhatHolds() {
    using Results = std::vector<MixerHost::Result>;
    MixerRig rig;
    rig.buses = {kCh1, kCh0};
    rig.tick();
    rig.mixer.setMixMode(2);
    rig.mixer.setMixMode(7);
    rig.mixer.setVolume(PGMObject, 0.5F);
    rig.mixer.setVolume(kCh0, std::nanf(""));
    QVERIFY((rig.host.results == Results{{ShowEventAudioMixMode, 2, 0},
                                         {ShowEventAudioMixMode, 2, 0},
                                         {ShowEventVolume, PGMObject, 0.5},
                                         {ShowEventVolume, kCh0, 1}}));
    rig.host.results.clear();
    rig.mixer.setChannelMix(kCh1, 1);
    rig.mixer.setChannelMix(kCh1, 0);
    rig.mixer.setMixMode(AudioMixModeAll);
    rig.mixer.setChannelMix(kCh1, 0);
    rig.mixer.setMixMode(AudioMixModeAuto);
    rig.mixer.setChannelMix(kCh1, 1);
    rig.mixer.setChannelMix(kCh0, 0);
    rig.mixer.setChannelMix(KaraokeObject, 0);
    rig.mixer.setChannelMix(StageChannel, 1);
    QVERIFY((rig.host.results == Results{{ShowEventChannelMix, kCh1, 1},
                                         {ShowEventChannelMix, kCh1, 0},
                                         {ShowEventAudioMixMode, 1, 0},
                                         {ShowEventChannelMix, kCh1, 1},
                                         {ShowEventAudioMixMode, 0, 0},
                                         {ShowEventChannelMix, kCh1, 0},
                                         {ShowEventChannelMix, kCh0, 1},
                                         {ShowEventChannelMix, KaraokeObject, 1},
                                         {ShowEventChannelMix, StageChannel, 0}}));
  }

  void levelsAreThoseOfTheTones() {
    // Half a decibel on the scale of 100 for 60 dB.
    constexpr double kHalfDb = 0.5 / 0.6;
    MixerRig rig;
    rig.channels.sounds[0] = sine(997, 0.5);
    rig.channels.sounds[1] = sine(440, 0.1);
    rig.buses = {kCh1, kCh0};
    rig.mixer.setVolume(PVMObject, 0.5F);
    rig.mixer.setVolume(kCh1, 0.5F);
    // Until the ramps are over and the fuller begin has fallen.
    rig.ticks(40);
    const tagKorviaShowAudioLevel levels = rig.levels();
    QVERIFY(isNear(levels.channel(0).left, (60 - 6.02) / 0.6, kHalfDb));
    QVERIFY(isNear(levels.channel(0).right, (60 - 6.02) / 0.6, kHalfDb));
    // After the volume of the channel, and on the buses after theirs.
    QVERIFY(isNear(levels.channel(1).left, (60 - 26.02) / 0.6, kHalfDb));
    QVERIFY(isNear(levels.pgm().left, (60 - 6.02) / 0.6, kHalfDb));
    QVERIFY(isNear(levels.pvm().right, (60 - 32.04) / 0.6, kHalfDb));
    QCOMPARE(levels.channel(2), (tagKorviaShowAudioLevel::Pair{0, 0}));
  }

  void theFlagTellsWhoFeedsProgram() {
    MixerRig rig;
    const auto flags = [&] {
      rig.tick();
      QVector<int> values;
      for (int i = 0; i < 3; ++i)
        values << static_cast<int>(rig.levels().active(i));
      return values;
    };
    rig.buses = {kCh1, kCh0};
    QCOMPARE(flags(), (QVector<int>{1, 0, 0}));
    rig.buses = {kCh1, kCh0, kCh1, 0.5};
    QCOMPARE(flags(), (QVector<int>{1, 1, 0}));
    rig.buses = {kCh0, kCh1};
    QCOMPARE(flags(), (QVector<int>{0, 1, 0}));
    rig.mixer.setMixMode(AudioMixModeManual);
    rig.mixer.setChannelMix(kCh2, 1);
    QCOMPARE(flags(), (QVector<int>{0, 0, 1}));
    rig.mixer.setMixMode(AudioMixModeAll);
    QCOMPARE(flags(), (QVector<int>{1, 1, 1}));
  }

  void everyChannelIsPulledOnceATick() {
    MixerRig rig;
    rig.channels.sounds[0] = constantly(0.1F);
    rig.buses = {0, kCh0};
    rig.ticks(3);
    for (const qint64 pulled : rig.channels.pulled)
      QCOMPARE(pulled, qint64(3 * kBlock));
  }

  void framesOfAFractionAddUp() {
    MixerRig rig({30000, 1001});
    for (int i = 0; i < 10; ++i) {
      rig.ticks(2);
      rig.tick(4);
      rig.ticks(3);
    }
    QCOMPARE(rig.frame, 100);
    QCOMPARE(rig.program.size(), std::size_t(160160));
    QCOMPARE(rig.channels.pulled[0], qint64(160160));
  }

  void aLongStallIsMixedInShortBlocks() {
    MixerRig rig;
    rig.channels.sounds[0] = noise(0.5F);
    rig.buses = {0, kCh0};
    rig.tick();
    rig.tick(249);
    QCOMPARE(rig.program.size(), std::size_t(251 * kBlock));
    QVERIFY(rig.longestBlock <= kBlockSamplesMax);
    for (int i = kBlock + kLatency; i < 251 * kBlock; ++i)
      QVERIFY(rig.program[i] == rig.channels.sounds[0](i - kLatency));
  }

  void aShowOpensInSilence() {
    MixerRig rig;
    rig.channels.sounds[0] = constantly(0.5F);
    rig.buses = {0, kCh0};
    rig.mixer.setVolume(PGMObject, 0.5F);
    rig.ticks(3);
    rig.mixer.open({25, 1});
    QCOMPARE(rig.levels().pgm(), (tagKorviaShowAudioLevel::Pair{0, 0}));
    QCOMPARE(rig.levels().active(0), 0.0F);
    rig.program.clear();
    rig.ticks(3);
    QCOMPARE(rig.program[0], 0.0F);
    // Its volumes are those from before.
    QVERIFY(isNear(rig.program.back(), 0.25));
  }

  void theSinkGetsTheSoundOfTheChannels() {
    MixerRig rig;
    rig.channels.sounds[1] = noise(0.9F);
    rig.channels.sounds[kKaraokeSlot] = constantly(0.5F);
    rig.mixer.setVolume(kCh1, 0);
    rig.host.keepPieces = true;
    rig.tick();
    rig.tick(2);
    qint64 samples = 0;
    qint64 karaoke = 0;
    for (const SoundPiece& piece : rig.host.pieces) {
      QCOMPARE(piece.rate, 48000U);
      QCOMPARE(piece.sides, 2);
      QCOMPARE(piece.bits, 16);
      if (piece.object == KaraokeObject) {
        karaoke += static_cast<qint64>(piece.samples.size()) / 2;
        continue;
      }
      // Before the volume, and also of a channel that is not heard; not of one without sound.
      QCOMPARE(piece.object, kCh1);
      for (std::size_t i = 0; i < piece.samples.size(); i += 2) {
        QVERIFY(isNear(piece.samples[i], rig.channels.sounds[1](samples++) * 32767, 0.51));
        QCOMPARE(int(piece.samples[i + 1]), -int(piece.samples[i]));
      }
    }
    QCOMPARE(samples, qint64(4 * kBlock));
    QCOMPARE(karaoke, qint64(4 * kBlock));
  }

  void samplesThatAreNoSoundAreLeftOut() {
    MixerRig rig;
    rig.channels.sounds[0] = constantly(0.25F);
    rig.channels.sounds[1] = [](qint64 at) {
      return at == 100    ? std::numeric_limits<float>::quiet_NaN()
             : at == 2000 ? std::numeric_limits<float>::infinity()
             : at == 4000 ? -1e20F
                          : 0.125F;
    };
    rig.mixer.setMixMode(AudioMixModeAll);
    QTest::ignoreMessage(QtWarningMsg, "channel 1 gives samples that are no sound, they are left out");
    rig.ticks(6);
    for (const float sample : rig.program)
      QVERIFY(sample >= 0 && sample < 0.4F);
    QVERIFY(isNear(rig.program[2 * kBlock + kLatency], 0.25));
    QVERIFY(isNear(rig.program.back(), 0.375));
  }

  void mixingAllocatesNothing() {
    MixerRig rig;
    for (Signal& sound : rig.channels.sounds)
      sound = noise(0.5F);
    rig.mixer.setMixMode(AudioMixModeAll);
    for (int i = 0; i < 50; ++i) {
      rig.mixer.setVolume(kCh0, static_cast<float>(i % 3));
      const qint64 before = allocationCalls();
      rig.mixer.beginTick({++rig.frame, 0}, {kCh1, kCh0});
      while (rig.mixer.mixBlock()) {
      }
      QCOMPARE(allocationCalls() - before, qint64(0));
    }
  }
};

QTEST_GUILESS_MAIN(AudioMixerTest)
#include "tst_audio_mixer.moc"
