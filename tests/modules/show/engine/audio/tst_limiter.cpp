// The limiter: true peaks by libebur128, silence about what is below the ceiling, and how the gain moves.
#include <ebur128.h>

#include <QtTest>
#include <cmath>

#include "MixerRig.h"
#include "engine/audio/Limiter.h"
#include "engine/audio/SoundBus.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kSecond = kSampleRate;

struct Sides {
  std::vector<float> left;
  std::vector<float> right;
};

Sides made(const Signal& sound, int samples) {
  Sides sides{std::vector<float>(samples), std::vector<float>(samples)};
  for (int i = 0; i < samples; ++i) {
    sides.left[i] = sound(i);
    sides.right[i] = sound(i) / 2;
  }
  return sides;
}

/// In blocks of all sizes that occur.
Sides limited(Limiter& limiter, Sides sides) {
  constexpr int kSizes[] = {1920, 1, 1601, 48, 2048, 7};
  const int samples = static_cast<int>(sides.left.size());
  int at = 0;
  for (int n = 0; at < samples; ++n) {
    const int count = std::min(kSizes[n % 6], samples - at);
    limiter.process({sides.left.data() + at, sides.right.data() + at, count});
    at += count;
  }
  return sides;
}

double truePeakDb(const std::vector<float>& samples) {
  ebur128_state* state = ebur128_init(1, kSampleRate, EBUR128_MODE_TRUE_PEAK);
  ebur128_add_frames_float(state, samples.data(), samples.size());
  double peak = 0;
  ebur128_true_peak(state, 0, &peak);
  ebur128_destroy(&state);
  return 20 * std::log10(peak);
}

}  // namespace

class LimiterTest : public QObject {
  Q_OBJECT

 private slots:
  // A bus leaves out its work after a second of silence; neither the last nor the next sound is cut.
  void aBusThatRestsLosesNoSound() {
    constexpr int kBlock = 1920;
    SoundBus bus;
    std::vector<float> in;
    std::vector<float> out;
    std::vector<float> ramp(kBlock);
    for (int block = 0; block < 80; ++block) {
      const bool sounds = block % 40 < 3;
      bus.begin(kBlock);
      for (int i = 0; i < kBlock; ++i)
        ramp[static_cast<std::size_t>(i)] = sounds ? 0.5F * static_cast<float>(i + 1) / kBlock : 0;
      if (sounds)
        bus.add({ramp.data(), ramp.data(), kBlock}, 1, 1);
      bus.finish(1);
      in.insert(in.end(), ramp.begin(), ramp.end());
      out.insert(out.end(), bus.block().left, bus.block().left + kBlock);
    }
    in.insert(in.begin(), Limiter::kLatencySamples, 0.0F);
    in.resize(out.size());
    QVERIFY(in == out);
  }

  void nothingGetsAboveTheCeiling_data() {
    QTest::addColumn<QString>("what");
    for (const char* what :
         {"loud tone", "between the samples", "noise", "clicks", "square", "bursts", "step"})
      QTest::newRow(what) << what;
  }
  void nothingGetsAboveTheCeiling() {
    QFETCH(QString, what);
    const std::map<QString, Signal> sounds{
        {"loud tone", sine(997, 4)},
        {"between the samples", [](qint64 at) { return at % 4 < 2 ? 0.95F : -0.95F; }},
        {"noise", noise(3)},
        {"clicks", [](qint64 at) { return at % 700 == 0 ? 5.0F : 0.0F; }},
        {"square", [](qint64 at) { return at % 96 < 48 ? 1.0F : -1.0F; }},
        {"bursts", [tone = sine(11025, 2)](qint64 at) { return at % 9600 < 480 ? tone(at) : 0; }},
        {"step", [tone = sine(440, 1)](qint64 at) { return at < 24000 ? tone(at) / 10 : 10 * tone(at); }}};
    Limiter limiter;
    const Sides in = made(sounds.at(what), 2 * kSecond);
    QVERIFY2(truePeakDb(in.left) > Limiter::kCeilingDb, "the test is about loud sound");
    const Sides out = limited(limiter, in);
    const double peak = truePeakDb(out.left);
    QVERIFY2(peak <= Limiter::kCeilingDb, qPrintable(QString::number(peak)));
    // Nothing is held down for no reason.
    QVERIFY2(peak > Limiter::kCeilingDb - 1, qPrintable(QString::number(peak)));
  }

  void belowTheCeilingItOnlyDelays() {
    Limiter limiter;
    const Sides in = made(noise(0.4F), kSecond);
    QVERIFY(truePeakDb(in.left) < Limiter::kCeilingDb - 0.1);
    const Sides out = limited(limiter, in);
    for (int i = 0; i < Limiter::kLatencySamples; ++i)
      QCOMPARE(out.left[i], 0.0F);
    for (int i = Limiter::kLatencySamples; i < kSecond; ++i) {
      // Every bit; QCOMPARE would allow a difference.
      QVERIFY(out.left[i] == in.left[i - Limiter::kLatencySamples]);
      QVERIFY(out.right[i] == in.right[i - Limiter::kLatencySamples]);
    }
  }

  void theDelayIsShort() { QVERIFY(Limiter::kLatencySamples <= kSecond * 5 / 1000); }

  void afterAPeakItIsTransparentAgain() {
    Limiter limiter;
    const Signal quiet = noise(0.4F);
    const Sides in = made([&](qint64 at) { return at == 1000 ? 8.0F : quiet(at); }, 3 * kSecond);
    const Sides out = limited(limiter, in);
    for (int i = 2 * kSecond; i < 3 * kSecond; ++i)
      QVERIFY(out.left[i] == in.left[i - Limiter::kLatencySamples]);
  }

  void theGainMovesSmoothlyAndOnBothSides() {
    Limiter limiter;
    // The gain is seen on a constant, which a peak of the left side pushes down.
    const Sides in = made([](qint64 at) { return at == 5000 ? 4.0F : 0.25F; }, kSecond / 2);
    const Sides out = limited(limiter, in);
    float least = 1;
    for (int i = 1000; i + 1 < kSecond / 2; ++i) {
      const float gain = out.right[i] / 0.125F;
      if (i != 5000 + Limiter::kLatencySamples && i + 1 != 5000 + Limiter::kLatencySamples) {
        least = std::min(least, gain);
        QVERIFY(std::abs(out.right[i + 1] / 0.125F - gain) < 1.01F / Limiter::kAttackSamples);
      }
      // Both sides have one gain, so that the stereo picture stays in its place.
      QVERIFY(std::abs(out.left[i] - 2 * out.right[i]) < 1e-6);
    }
    QVERIFY(least < 0.25F);
    // It begins before the peak and is back within half a second.
    QVERIFY(out.left[5000 + Limiter::kLatencySamples - 20] < 0.1F);
    QVERIFY(out.left[5000] > 0.249F);
    QVERIFY(out.left[5000 + kSecond / 4] > 0.22F);
  }

  void resetForgetsTheSound() {
    Limiter limiter;
    limited(limiter, made(constantly(7), 4000));
    limiter.reset();
    const Sides out = limited(limiter, made(constantly(0.5F), 4000));
    QCOMPARE(out.left[0], 0.0F);
    QCOMPARE(out.left[Limiter::kLatencySamples], 0.5F);
    QCOMPARE(out.left[3999], 0.5F);
  }
};

QTEST_GUILESS_MAIN(LimiterTest)
#include "tst_limiter.moc"
