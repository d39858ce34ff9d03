// Median, percentile and maximum of the stages, over their window and over the run.
#include <QtTest>
#include <atomic>
#include <thread>

#include "engine/StageClock.h"

using namespace korvia;
using namespace std::chrono_literals;

namespace {

using StageTime = tagKorviaShowEngineFigures::StageTime;

const StageClock::Time kBegin{1000s};

bool isNothing(const StageTime& time) {
  return time.p50Ms == 0 && time.p99Ms == 0 && time.maxMs == 0 && time.maxOfRunMs == 0;
}

}  // namespace

class StageClockTest : public QObject {
  Q_OBJECT

 private slots:
  void nothingWasMeasured() {
    const StageClock clock;
    tagKorviaShowEngineFigures figures;
    figures.mix.maxMs = 7;
    clock.read(figures, kBegin);
    QVERIFY(isNothing(figures.mix));
  }

  void medianPercentileAndMaximum() {
    StageClock clock;
    // 1 to 200 ms, in an order that is not theirs: 7 has no divisor in common with 200.
    for (int i = 0; i < 200; ++i)
      clock.add(StageClock::Mix, std::chrono::milliseconds(1 + i * 7 % 200), kBegin);
    tagKorviaShowEngineFigures figures;
    clock.read(figures, kBegin);
    QCOMPARE(figures.mix.p50Ms, 101.0);
    QCOMPARE(figures.mix.p99Ms, 199.0);
    QCOMPARE(figures.mix.maxMs, 200.0);
    QCOMPARE(figures.mix.maxOfRunMs, 200.0);
  }

  void everyStageHasItsOwnFigures() {
    StageClock clock;
    for (int stage = 0; stage < StageClock::StageCount; ++stage)
      clock.add(static_cast<StageClock::Stage>(stage), std::chrono::milliseconds(stage + 1), kBegin);
    tagKorviaShowEngineFigures figures;
    clock.read(figures, kBegin);
    const StageTime* const stages[] = {&figures.sources,  &figures.mix,      &figures.items, &figures.audio,
                                       &figures.monitors, &figures.handOver, &figures.tick};
    static_assert(std::size(stages) == StageClock::StageCount);
    for (int stage = 0; stage < StageClock::StageCount; ++stage) {
      QCOMPARE(stages[stage]->p50Ms, stage + 1.0);
      QCOMPARE(stages[stage]->maxMs, stage + 1.0);
    }
  }

  void theWindowIsTenSecondsAndTheRunIsNot() {
    StageClock clock;
    clock.add(StageClock::Tick, 90ms, kBegin);
    clock.add(StageClock::Tick, 20ms, kBegin + 5s);
    tagKorviaShowEngineFigures figures;
    clock.read(figures, kBegin + 10s);
    QCOMPARE(figures.tick.maxMs, 90.0);
    clock.read(figures, kBegin + 10s + 1ms);
    QCOMPARE(figures.tick.maxMs, 20.0);
    QCOMPARE(figures.tick.maxOfRunMs, 90.0);
    // With an empty window nothing is left but the maximum of the run.
    clock.read(figures, kBegin + 60s);
    QCOMPARE(figures.tick.p50Ms, 0.0);
    QCOMPARE(figures.tick.maxMs, 0.0);
    QCOMPARE(figures.tick.maxOfRunMs, 90.0);
  }

  void theWindowIsFullAt200FramesASecond() {
    StageClock clock;
    for (int i = 0; i < 4000; ++i)
      clock.add(StageClock::Tick, i < 2000 ? 50ms : 10ms, kBegin + i * 5ms);
    tagKorviaShowEngineFigures figures;
    clock.read(figures, kBegin + 3999 * 5ms);
    // The last 10 s hold 2001 times, the oldest of which is a long one.
    QCOMPARE(figures.tick.p99Ms, 10.0);
    QCOMPARE(figures.tick.maxMs, 50.0);
  }

  void restartForgetsEverything() {
    StageClock clock;
    clock.add(StageClock::Items, 30ms, kBegin);
    clock.restart();
    tagKorviaShowEngineFigures figures;
    clock.read(figures, kBegin);
    QVERIFY(isNothing(figures.items));
    clock.add(StageClock::Items, 2ms, kBegin);
    clock.read(figures, kBegin);
    QCOMPARE(figures.items.p50Ms, 2.0);
    QCOMPARE(figures.items.maxOfRunMs, 2.0);
  }

  void aScopeMeasuresUntilItsEnd() {
    StageClock clock;
    const auto begin = std::chrono::steady_clock::now();
    {
      const StageClock::Scope scope(clock, StageClock::Audio);
      std::this_thread::sleep_for(5ms);
    }
    const std::chrono::duration<double, std::milli> whole = std::chrono::steady_clock::now() - begin;
    tagKorviaShowEngineFigures figures;
    clock.read(figures);
    QVERIFY2(figures.audio.maxMs >= 5 && figures.audio.maxMs <= whole.count(),
             qPrintable(QString::number(figures.audio.maxMs)));
    QVERIFY(isNothing(figures.mix));
  }

  void aReaderMayReadWhileTheEngineWrites() {
    StageClock clock;
    std::atomic<bool> done{false};
    std::thread engine([&] {
      for (int i = 0; i < 5000; ++i)
        clock.add(StageClock::Tick, 3ms, kBegin);
      done = true;
    });
    bool good = true;
    while (!done) {
      tagKorviaShowEngineFigures figures;
      clock.read(figures, kBegin);
      good = good && (figures.tick.maxMs == 0 || figures.tick.maxMs == 3.0);
    }
    engine.join();
    QVERIFY(good);
  }
};

QTEST_GUILESS_MAIN(StageClockTest)
#include "tst_stage_clock.moc"
