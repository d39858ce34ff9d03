// Loudness and true peak of known sounds, the begin of a show, and a meter that is behind.
#include <QtTest>
#include <cmath>

#include "MixerRig.h"
#include "engine/audio/LoudnessMeter.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kBlock = kSampleRate / 25;

bool isNear(double got, double expected, double tolerance = 0.1) {
  return std::abs(got - expected) <= tolerance;
}

}  // namespace

class LoudnessMeterTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<LoudnessMeter> meter_;

  /// Pushes as fast as the meter takes it, and waits until it has measured everything.
  bool play(const Signal& left, const Signal& right, int blocks) {
    StereoBlock block;
    for (int n = 0; n < blocks; ++n) {
      const StereoSpan span = block.span(kBlock);
      for (int i = 0; i < kBlock; ++i) {
        span.left[i] = left(qint64(n) * kBlock + i);
        span.right[i] = right(qint64(n) * kBlock + i);
      }
      meter_->push(span);
      // A meter that is more than a second behind leaves sound out.
      if (n % 25 == 24 && !settle())
        return false;
    }
    return settle();
  }
  bool settle() {
    return QTest::qWaitFor([this] { return meter_->isUpToDate(); }, 10'000);
  }

 private slots:
  void init() { meter_ = std::make_unique<LoudnessMeter>(); }

  void aToneHasTheLoudnessOfTheStandard() {
    // EBU Tech 3341, case 1: 1 kHz at -23 dBFS on both sides is -23 LUFS.
    const Signal tone = sine(1000, std::pow(10, -23 / 20.0));
    QVERIFY(play(tone, tone, 100));
    const LoudnessMeter::Loudness loudness = meter_->loudness();
    QVERIFY2(isNear(loudness.momentaryLufs, -23), qPrintable(QString::number(loudness.momentaryLufs)));
    QVERIFY(isNear(loudness.shortTermLufs, -23));
    QVERIFY(isNear(loudness.integratedLufs, -23));
    QVERIFY(isNear(loudness.truePeakDbtp, -23));
  }

  void theWindowsAreThoseOfTheStandard() {
    const Signal loud = sine(1000, 0.5);
    const Signal quiet = sine(1000, 0.05);
    QVERIFY(play(loud, loud, 50));
    const double before = meter_->loudness().momentaryLufs;
    QVERIFY(play(quiet, quiet, 25));
    const LoudnessMeter::Loudness loudness = meter_->loudness();
    // 20 dB less after 400 ms; of the last 3 s two are loud still; the gate leaves the quiet part out.
    QVERIFY(isNear(loudness.momentaryLufs, before - 20));
    QVERIFY(isNear(loudness.shortTermLufs, before + 10 * std::log10(2 / 3.0), 0.2));
    QVERIFY(isNear(loudness.integratedLufs, before, 0.5));
  }

  void peaksBetweenTheSamplesCount() {
    const Signal beside = [](qint64 at) { return at % 4 < 2 ? 0.5F : -0.5F; };
    QVERIFY(play(constantly(0), beside, 10));
    QVERIFY(isNear(meter_->loudness().truePeakDbtp, -3.01, 0.4));
  }

  void silenceIsTheLowestValue() {
    QVERIFY(play(constantly(0), constantly(0), 100));
    QVERIFY(meter_->loudness() == LoudnessMeter::Loudness());
    QCOMPARE(meter_->loudness().integratedLufs, -70.0);
  }

  void aNewShowForgetsTheOneBefore() {
    const Signal loud = sine(1000, 0.9);
    QVERIFY(play(loud, loud, 50));
    // What is still in the queue belongs to the show before too.
    StereoBlock block;
    std::fill_n(block.span(kBlock).left, kBlock, 1.0F);
    meter_->push(block.span(kBlock));
    meter_->restart();
    QVERIFY(meter_->loudness() == LoudnessMeter::Loudness());
    const Signal quiet = sine(1000, 0.1);
    QVERIFY(play(quiet, quiet, 50));
    QVERIFY(isNear(meter_->loudness().truePeakDbtp, -20, 0.2));
    QVERIFY(isNear(meter_->loudness().integratedLufs, -20));
  }

  void aMeterThatIsBehindLeavesSoundOut() {
    StereoBlock block;
    QElapsedTimer clock;
    clock.start();
    for (int i = 0; i < 1000; ++i)
      meter_->push(block.span(kBlock));
    QVERIFY(clock.elapsed() < 1000);
    QVERIFY(settle());
  }
};

QTEST_GUILESS_MAIN(LoudnessMeterTest)
#include "tst_loudness_meter.moc"
