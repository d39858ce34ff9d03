// The take on the program bus: automatic run, lever, and the two meeting each other.
#include <QtTest>
#include <cmath>

#include "engine/mix/Easing.h"
#include "engine/mix/ProgramSwitch.h"
#include "engine/mix/TransitionCatalog.h"

using korvia::ProgramSwitch;

namespace {

constexpr int kA = 0x10;
constexpr int kB = 0x11;
constexpr int kC = 0x12;

ProgramSwitch::Take fade(int from, int to, double duration = 1.0, int easing = 0) {
  return {from, to, korvia::kEffectFade, duration, easing};
}

}  // namespace

class ProgramSwitchTest : public QObject {
  Q_OBJECT

 private slots:
  void runsForItsDurationInFrames() {
    ProgramSwitch sw;
    sw.take(fade(kA, kB), 25);
    for (int frame = 1; frame < 25; ++frame) {
      sw.step(1);
      const auto outcome = sw.takeOutcome();
      QVERIFY(outcome.moved);
      QCOMPARE(outcome.taken, 0);
      QCOMPARE(outcome.position, static_cast<float>(frame / 25.0));
      QVERIFY(sw.isRunning());
    }
    sw.step(1);
    const auto outcome = sw.takeOutcome();
    QCOMPARE(outcome.position, 1.0F);
    QCOMPARE(outcome.taken, kB);
    QVERIFY(!sw.isRunning());
    sw.step(1);
    QVERIFY(!sw.takeOutcome().moved);
  }

  void missedFramesCountAsTime() {
    ProgramSwitch sw;
    sw.take(fade(kA, kB), 25);
    sw.step(10);
    QCOMPARE(sw.takeOutcome().position, 0.4F);
    sw.step(100);
    QCOMPARE(sw.takeOutcome().taken, kB);
  }

  void cuts_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<double>("duration");
    QTest::newRow("effect none") << 0 << 1.0;
    QTest::newRow("no duration") << 22 << 0.0;
    QTest::newRow("negative duration") << 22 << -1.0;
    QTest::newRow("not a number") << 22 << std::nan("");
    QTest::newRow("less than half a frame") << 22 << 0.01;
    for (const int effect : {-1, 21, 24, 45, 52, 61, 73, 80, 99, 65535})
      QTest::addRow("unused effect %d", effect) << effect << 1.0;
  }
  void cuts() {
    QFETCH(int, effect);
    QFETCH(double, duration);
    ProgramSwitch sw;
    sw.take({kA, kB, effect, duration, 0}, 25);
    QVERIFY(!sw.isRunning());
    const auto outcome = sw.takeOutcome();
    QCOMPARE(outcome.position, 1.0F);
    QCOMPARE(outcome.taken, kB);
  }

  void onlyTheEndReportsExactlyOne_data() {
    QTest::addColumn<int>("easing");
    for (int code = 0; code < korvia::kEasingCount; ++code)
      QTest::addRow("%d", code) << code;
  }
  void onlyTheEndReportsExactlyOne() {
    QFETCH(int, easing);
    ProgramSwitch sw;
    sw.take(fade(kA, kB, 4.0, easing), 1000);
    for (int i = 1; i < 4000; ++i) {
      sw.step(1);
      const auto outcome = sw.takeOutcome();
      QVERIFY2(outcome.position >= 0.0F && outcome.position < 1.0F, qPrintable(QString::number(i)));
    }
    sw.step(1);
    QCOMPARE(sw.takeOutcome().position, 1.0F);
  }

  void takeOfTheSameTargetAgainGoesOn() {
    ProgramSwitch sw;
    sw.take(fade(kA, kB), 25);
    sw.step(10);
    sw.take(fade(kA, kB), 25);
    QCOMPARE(sw.position(), 0.4);
  }

  void leverDrivesAndCompletes() {
    ProgramSwitch sw;
    sw.moveLever(0.25F, kA, kB);
    QVERIFY(sw.isRunning());
    QCOMPARE(sw.takeOutcome().position, 0.25F);
    QCOMPARE(sw.from(), kA);
    QCOMPARE(sw.to(), kB);
    sw.step(100);  // time does not move a lever
    QVERIFY(!sw.takeOutcome().moved);
    sw.moveLever(1.0F, kA, kB);
    const auto outcome = sw.takeOutcome();
    QCOMPARE(outcome.position, 1.0F);
    QCOMPARE(outcome.taken, kB);
    QVERIFY(!sw.isRunning());
  }

  void leverBackToZeroGivesUp() {
    ProgramSwitch sw;
    sw.moveLever(0.5F, kA, kB);
    sw.moveLever(0.0F, kA, kB);
    QVERIFY(!sw.isRunning());
    QCOMPARE(sw.takeOutcome().taken, 0);
  }

  void leverKeepsItsTwoChannelsWhilePreviewMovesOn() {
    ProgramSwitch sw;
    sw.moveLever(0.5F, kA, kB);
    sw.moveLever(0.6F, kA, kC);
    QCOMPARE(sw.to(), kB);
  }

  void leverTakesOverARunningTake() {
    ProgramSwitch sw;
    sw.take(fade(kA, kB), 25);
    sw.step(5);
    sw.moveLever(0.7F, kA, kC);
    sw.step(50);
    QVERIFY(sw.isRunning());
    QCOMPARE(sw.position(), static_cast<double>(0.7F));
    QCOMPARE(sw.to(), kB);
  }

  void takeRunsOnFromWhereTheLeverStands() {
    ProgramSwitch sw;
    sw.moveLever(0.5F, kA, kB);
    sw.take(fade(kA, kB, 1.0), 10);
    sw.step(5);
    QCOMPARE(sw.position(), 0.75);
    sw.step(5);
    QCOMPARE(sw.takeOutcome().taken, kB);
  }

  void takeFromTheLeverKeepsTheEffectThatIsOnAir() {
    ProgramSwitch sw;
    sw.moveLever(0.5F, kA, kB);
    const korvia::Transition* fading = sw.transition();
    sw.take({kA, kB, 1, 1.0, 0}, 10);
    QCOMPARE(sw.transition(), fading);
    sw.step(5);
    QCOMPARE(sw.position(), 0.75);
    QCOMPARE(sw.transition(), fading);
    sw.moveLever(0.8F, kA, kB);
    QCOMPARE(sw.transition(), fading);
    sw.moveLever(1.0F, kA, kB);
    // The next time the lever draws what was taken last.
    sw.moveLever(0.5F, kB, kA);
    QCOMPARE(sw.transition(), korvia::transitionFor(1));
  }

  void cutFromTheLeverCuts() {
    ProgramSwitch sw;
    sw.moveLever(0.5F, kA, kB);
    sw.take({kA, kB, korvia::kEffectNone, 1.0, 0}, 10);
    QCOMPARE(sw.takeOutcome().taken, kB);
  }

  void takeFromALeverThatShowsNoEffectBeginsAnew() {
    ProgramSwitch sw;
    sw.take({kA, kB, korvia::kEffectNone, 1.0, 0}, 10);
    sw.takeOutcome();
    sw.moveLever(0.5F, kB, kA);
    sw.take(fade(kB, kA), 10);
    sw.step(5);
    QCOMPARE(sw.position(), 0.5);
    QCOMPARE(sw.transition(), korvia::transitionFor(korvia::kEffectFade));
  }

  void leverUsesTheEffectOfTheLastTake() {
    ProgramSwitch sw;
    sw.moveLever(0.5F, kA, kB);
    QVERIFY(sw.transition() != nullptr);  // a fade before any take
    sw.moveLever(0.0F, kA, kB);
    sw.take({kA, kB, korvia::kEffectNone, 1.0, 0}, 25);
    sw.moveLever(0.5F, kB, kA);
    QVERIFY(sw.transition() == nullptr);
  }

  void leverOfAnUnusedEffectCutsAtItsEnd() {
    ProgramSwitch sw;
    sw.take({kA, kB, 21, 1.0, 0}, 25);
    sw.takeOutcome();
    sw.moveLever(0.9F, kB, kA);
    QVERIFY(sw.transition() == nullptr);
    QCOMPARE(sw.takeOutcome().taken, 0);
    sw.moveLever(1.0F, kB, kA);
    QCOMPARE(sw.takeOutcome().taken, kA);
  }

  void seedStaysForATakeAndChangesWithTheNext() {
    ProgramSwitch sw;
    sw.take(fade(kA, kB), 25);
    const quint32 first = sw.point().seed;
    sw.step(10);
    QCOMPARE(sw.point().seed, first);
    QCOMPARE(sw.point().position, 0.4);
    sw.step(20);
    sw.take(fade(kB, kA), 25);
    QVERIFY(sw.point().seed != first);
  }

  void seedStaysWhileTheLeverMovesBothWays() {
    ProgramSwitch sw;
    sw.moveLever(0.2F, kA, kB);
    const quint32 first = sw.point().seed;
    for (const float position : {0.9F, 0.1F, 0.5F}) {
      sw.moveLever(position, kA, kB);
      QCOMPARE(sw.point().seed, first);
    }
    // Run on by itself and caught again it is the same take.
    sw.take(fade(kA, kB), 25);
    sw.step(3);
    QCOMPARE(sw.point().seed, first);
    sw.moveLever(0.3F, kA, kB);
    QCOMPARE(sw.point().seed, first);
    sw.moveLever(0.0F, kA, kB);
    sw.moveLever(0.2F, kA, kB);
    QVERIFY(sw.point().seed != first);
  }

  void everyShowDrawsTheSameSeeds() {
    ProgramSwitch one;
    ProgramSwitch other;
    for (ProgramSwitch* sw : {&one, &other}) {
      sw->take(fade(kA, kB), 25);
      sw->finish();
      sw->take(fade(kB, kA), 25);
    }
    QCOMPARE(one.point().seed, other.point().seed);
  }

  void leverOutsideItsRangeIsHeldInside() {
    ProgramSwitch sw;
    sw.moveLever(std::nanf(""), kA, kB);
    QVERIFY(!sw.takeOutcome().moved);
    sw.moveLever(-3.0F, kA, kB);
    QCOMPARE(sw.takeOutcome().position, 0.0F);
    sw.moveLever(7.0F, kA, kB);
    QCOMPARE(sw.takeOutcome().taken, kB);
  }

  void abandonParksTheLever() {
    ProgramSwitch sw;
    sw.take(fade(kA, kB), 25);
    sw.step(5);
    sw.takeOutcome();
    sw.abandon();
    const auto outcome = sw.takeOutcome();
    QVERIFY(outcome.moved);
    QCOMPARE(outcome.position, 0.0F);
    QCOMPARE(outcome.taken, 0);
  }

  void easingCurves() {
    QCOMPARE(korvia::easedProgress(0, 0.3), 0.3);
    QCOMPARE(korvia::easedProgress(1, 0.5), 0.25);
    QCOMPARE(korvia::easedProgress(2, 0.5), 0.75);
    QCOMPARE(korvia::easedProgress(5, 0.5), 0.125);
    QCOMPARE(korvia::easedProgress(9, 0.5), 0.0625);
    QCOMPARE(korvia::easedProgress(13, 0.5), 0.03125);
    QCOMPARE(korvia::easedProgress(3, 0.5), 0.5);
    QCOMPARE(korvia::easedProgress(4, 0.25), 0.375);  // out-in: the first half eases out
    QVERIFY(qAbs(korvia::easedProgress(17, 0.5) - (1 - std::sqrt(0.5))) < 1e-12);
    QVERIFY(qAbs(korvia::easedProgress(25, 0.6) - 0.2) < 1e-12);
    QCOMPARE(korvia::easedProgress(99, 0.3), 0.3);
    QCOMPARE(korvia::easedProgress(-1, 0.3), 0.3);
    for (int code = 0; code < korvia::kEasingCount; ++code) {
      QCOMPARE(korvia::easedProgress(code, 0.0), 0.0);
      QCOMPARE(korvia::easedProgress(code, 1.0), 1.0);
      double last = 0;
      for (int i = 1; i <= 200; ++i) {
        const double value = korvia::easedProgress(code, i / 200.0);
        QVERIFY(value >= last - 1e-3 && value <= 1.0);
        last = value;
      }
    }
  }
};

QTEST_GUILESS_MAIN(ProgramSwitchTest)
#include "tst_program_switch.moc"
