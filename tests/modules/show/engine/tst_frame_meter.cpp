// Frames a second over the last ten seconds and over the whole run, in time that the test makes.
#include <QtTest>

#include "engine/FrameMeter.h"
#include "engine/StageClock.h"

using namespace korvia;
using namespace std::chrono_literals;

class FrameMeterTest : public QObject {
  Q_OBJECT

 private:
  FrameMeter meter_;
  FrameMeter::Time now_;

  void run(std::chrono::seconds time, int framesASecond) {
    const auto step = std::chrono::nanoseconds(1'000'000'000 / framesASecond);
    for (const auto end = now_ + time; now_ < end; now_ += step)
      meter_.count(1, now_);
  }

 private slots:
  void init() {
    now_ = FrameMeter::Time() + 1000s;
    meter_.start(now_);
  }

  void atTheStartBothAreTheSame() {
    run(4s, 25);
    QCOMPARE(meter_.total(), std::int64_t(100));
    QCOMPARE(meter_.perSecond(now_), 25.0);
    QCOMPARE(meter_.perSecondOfRun(now_), 25.0);
  }

  void whatWasLongAgoCountsForTheRunOnly() {
    run(20s, 50);
    run(10s, 25);
    QCOMPARE(meter_.perSecond(now_), 25.0);
    QVERIFY(qAbs(meter_.perSecondOfRun(now_) - 1250.0 / 30) < 0.01);
  }

  void aPauseIsSecondsWithoutFrames() {
    run(15s, 25);
    now_ += 5s;
    QCOMPARE(meter_.perSecond(now_), 12.5);
    now_ += 10s;
    QCOMPARE(meter_.perSecond(now_), 0.0);
    run(1s, 25);
    QCOMPARE(meter_.perSecond(now_), 2.5);
    now_ += 1000s;
    run(10s, 25);
    QCOMPARE(meter_.perSecond(now_), 25.0);
  }

  void missedFramesCount() {
    meter_.count(4, now_);
    QCOMPARE(meter_.total(), std::int64_t(4));
  }

  void stagesForgetWhatIsOlderThanTenSeconds() {
    StageClock stages;
    stages.add(StageClock::Mix, 30ms, now_);
    stages.add(StageClock::Mix, 4ms, now_ + 5s);
    stages.add(StageClock::Mix, 2ms, now_ + 6s);
    tagKorviaShowEngineFigures figures;
    stages.read(figures, now_ + 7s);
    QCOMPARE(figures.mix.maxMs, 30.0);
    QCOMPARE(figures.mix.p50Ms, 4.0);
    stages.read(figures, now_ + 12s);
    QCOMPARE(figures.mix.maxMs, 4.0);
    QCOMPARE(figures.mix.maxOfRunMs, 30.0);
    stages.read(figures, now_ + 60s);
    QCOMPARE(figures.mix.maxMs, 0.0);
    QCOMPARE(figures.mix.maxOfRunMs, 30.0);
    stages.restart();
    stages.read(figures, now_ + 60s);
    QCOMPARE(figures.mix.maxOfRunMs, 0.0);
  }
};

QTEST_APPLESS_MAIN(FrameMeterTest)
#include "tst_frame_meter.moc"
