// The frame clock and the event queue.
#include <QtTest>
#include <thread>

#include "KorviaShowThread.h"

namespace {

using Clock = std::chrono::steady_clock;

class ProbeThread : public KorviaShowThread {
 public:
  ~ProbeThread() override { stop(); }
  using KorviaShowThread::setFrameRate;

  std::mutex mutex;
  std::vector<korvia::FrameTick> ticks;
  std::vector<quint64> events;
  std::vector<Clock::time_point> times;
  int begun = 0;
  int ended = 0;
  int stallAtTick = 0;
  int stallMs = 0;

  int tickCount() {
    std::lock_guard lock(mutex);
    return static_cast<int>(ticks.size());
  }

 protected:
  void onThreadBegin() override { ++begun; }
  void onThreadEnd() override { ++ended; }
  void onThreadEvent(const korvia::ShowEvent& event) override {
    std::lock_guard lock(mutex);
    events.push_back(event.id);
  }
  void doFrameStep(const korvia::FrameTick& tick) override {
    int stall = 0;
    {
      std::lock_guard lock(mutex);
      ticks.push_back(tick);
      times.push_back(Clock::now());
      if (static_cast<int>(ticks.size()) == stallAtTick)
        stall = stallMs;
    }
    if (stall)
      std::this_thread::sleep_for(std::chrono::milliseconds(stall));
  }
};

}  // namespace

class ShowThreadTest : public QObject {
  Q_OBJECT

 private slots:
  void eventsAreHandledInOrderBeforeTheEnd() {
    ProbeThread thread;
    thread.setFps(50);
    thread.start(nullptr, ShowThreadNormal);
    for (quint64 i = 0; i < 100; ++i)
      thread.postEvent(i);
    thread.stop();
    QCOMPARE(thread.begun, 1);
    QCOMPARE(thread.ended, 1);
    QCOMPARE(thread.events.size(), size_t(100));
    for (quint64 i = 0; i < 100; ++i)
      QCOMPARE(thread.events[i], i);
  }

  void eventsOfBeforeTheStartAreKept() {
    ProbeThread thread;
    thread.postEvent(7);
    thread.start(nullptr, ShowThreadNormal);
    thread.stop();
    QCOMPARE(thread.events, std::vector<quint64>{7});
  }

  void frameNumbersAndMissedFramesAddUp() {
    ProbeThread thread;
    thread.setFps(200);
    thread.stallAtTick = 10;
    thread.stallMs = 60;
    thread.start(nullptr, ShowThreadNormal);
    QTRY_VERIFY(thread.tickCount() >= 30);
    thread.stop();
    qint64 last = 0;
    int missedInAll = 0;
    for (const korvia::FrameTick& tick : thread.ticks) {
      QCOMPARE(tick.number, last + 1 + tick.missed);
      last = tick.number;
      missedInAll += tick.missed;
    }
    QVERIFY2(missedInAll >= 10, qPrintable(QString::number(missedInAll)));
  }

  void deadlinesAreAbsolute() {
    ProbeThread thread;
    thread.setFps(100);
    thread.start(nullptr, ShowThreadNormal);
    QTRY_VERIFY(thread.tickCount() >= 60);
    thread.stop();
    // No tick comes before its time, counted from the first, however late others came.
    for (size_t i = 1; i < thread.ticks.size(); ++i) {
      const auto elapsed = thread.times[i] - thread.times[0];
      const auto earliest =
          std::chrono::milliseconds((thread.ticks[i].number - thread.ticks[0].number - 1) * 10);
      QVERIFY(elapsed >= earliest);
    }
  }

  void aSecondStartBeginsAnew() {
    ProbeThread thread;
    thread.setFps(100);
    thread.start(nullptr, ShowThreadNormal);
    QTRY_VERIFY(thread.tickCount() >= 3);
    thread.stop();
    thread.ticks.clear();
    QTest::qWait(200);  // a standstill that must not count as missed frames
    thread.start(nullptr, ShowThreadNormal);
    QTRY_VERIFY(thread.tickCount() >= 1);
    thread.stop();
    QVERIFY2(thread.ticks[0].missed < 10, qPrintable(QString::number(thread.ticks[0].missed)));
    QCOMPARE(thread.ticks[0].number, qint64(1 + thread.ticks[0].missed));
  }

  void uselessRatesAreIgnored() {
    ProbeThread thread;
    thread.setFps(0);
    thread.setFps(-5);
    thread.setFps(std::nanf(""));
    thread.setFps(100000);
    thread.setFps(1e-9F);
    thread.setFrameRate({0, 1});
    thread.setFrameRate({25, -1});
    thread.setFps(100);
    thread.start(nullptr, ShowThreadNormal);
    QTRY_VERIFY(thread.tickCount() >= 3);
    thread.stop();
  }

  void stopWithoutStartAndTwiceIsHarmless() {
    ProbeThread thread;
    thread.stop();
    thread.start(nullptr, ShowThreadNormal);
    thread.stop();
    thread.stop();
    QCOMPARE(thread.ended, 1);
  }

  void manyThreadsMayPost() {
    ProbeThread thread;
    thread.setFps(500);
    thread.start(nullptr, ShowThreadNormal);
    std::vector<std::thread> posters;
    for (int i = 0; i < 4; ++i)
      posters.emplace_back([&thread] {
        for (int k = 0; k < 500; ++k)
          thread.postEvent(6, k, 22, 1.0F, 0);
      });
    for (std::thread& poster : posters)
      poster.join();
    thread.stop();
    QCOMPARE(thread.events.size(), size_t(2000));
  }
};

QTEST_GUILESS_MAIN(ShowThreadTest)
#include "tst_show_thread.moc"
