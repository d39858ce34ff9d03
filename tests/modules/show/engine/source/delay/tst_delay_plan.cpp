// How long a delay is in frames and samples, and where it is stored.
#include <QtTest>

#include "engine/audio/StereoBlock.h"
#include "engine/source/delay/DelayPlan.h"

using namespace korvia;

Q_DECLARE_METATYPE(korvia::FrameRate)

namespace {

constexpr FrameSize kFullHd{1920, 1080};
constexpr FrameSize kUltraHd{3840, 2160};

}  // namespace

class DelayPlanTest : public QObject {
  Q_OBJECT

 private slots:
  void frames_data() {
    QTest::addColumn<FrameRate>("rate");
    QTest::addColumn<int>("delayMs");
    QTest::addColumn<int>("frames");
    QTest::newRow("5 s at 25") << FrameRate{25, 1} << 5000 << 125;
    QTest::newRow("40 s at 50") << FrameRate{50, 1} << 40'000 << 2000;
    // 149.85 frames.
    QTest::newRow("5 s at 29.97") << FrameRate{30000, 1001} << 5000 << 150;
    QTest::newRow("nearest below") << FrameRate{25, 1} << 1019 << 25;
    QTest::newRow("nearest above") << FrameRate{25, 1} << 1021 << 26;
    QTest::newRow("block of sound at 25") << FrameRate{25, 1} << 0 << 2;
    QTest::newRow("block of sound at 60") << FrameRate{60, 1} << -5 << 3;
    QTest::newRow("longest") << FrameRate{1, 1} << 2'000'000'000 << 600;
  }

  void frames() {
    QFETCH(FrameRate, rate);
    QFETCH(int, delayMs);
    QFETCH(int, frames);
    const DelayPlan plan = planDelay({64, 36}, rate, delayMs, {});
    QCOMPARE(plan.frames, frames);
    QCOMPARE(plan.samples, rate.samplesIn(0, frames, kSampleRate));
    QVERIFY(plan.samples >= kBlockSamplesMax);
    QVERIFY(!plan.isShortened);
  }

  void twoSecondsOfFullHdAreInMemory() {
    QVERIFY(planDelay(kFullHd, {25, 1}, 2000, {}).store == DelayPlan::Store::Memory);
    QVERIFY(planDelay(kFullHd, {25, 1}, 2500, {}).store == DelayPlan::Store::File);
  }

  void usualDelaysKeepTheFullSize() {
    for (const int delayMs : {30'000, 40'000}) {
      const DelayPlan plan = planDelay(kFullHd, {25, 1}, delayMs, {});
      QVERIFY(plan.scale == DelayPlan::PictureScale::Full);
      QVERIFY(!plan.isShortened);
      QVERIFY(plan.places * plan.placeBytes <= DelayLimits().fileBytes);
    }
  }

  void largerDelaysHaveHalfTheSize() {
    for (const FrameRate rate : {FrameRate{25, 1}, FrameRate{30000, 1001}}) {
      const DelayPlan plan = planDelay(kUltraHd, rate, 40'000, {});
      QVERIFY(plan.scale == DelayPlan::PictureScale::Half);
      QVERIFY(!plan.isShortened);
      QVERIFY(plan.places * plan.placeBytes <= DelayLimits().fileBytes);
    }
    QVERIFY(planDelay(kFullHd, {50, 1}, 40'000, {}).scale == DelayPlan::PictureScale::Half);
  }

  void longestDelaysAreShortened() {
    const DelayPlan plan = planDelay(kUltraHd, {60, 1}, 600'000, {});
    QVERIFY(plan.isShortened);
    QVERIFY(plan.frames < 36'000);
    QVERIFY(plan.frames > 20 * 60);
    const std::int64_t bytes = plan.places * plan.placeBytes;
    QVERIFY(bytes <= DelayLimits().fileBytes);
    QVERIFY(bytes > DelayLimits().fileBytes - 2 * plan.placeBytes);
  }

  void aPictureIsUsedAgainOnlyWhileItIsThere() {
    const DelayPlan plan = planDelay(kFullHd, {25, 1}, 30'000, {});
    QVERIFY(plan.places > plan.frames + kDelayReuseFrames);
  }
};

QTEST_GUILESS_MAIN(DelayPlanTest)
#include "tst_delay_plan.moc"
