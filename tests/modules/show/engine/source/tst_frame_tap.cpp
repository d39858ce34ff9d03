// Which picture is due when: cadence, late pictures, seams, flushes, hold, end; and push and pull at once.
#include <QtTest>
#include <atomic>
#include <thread>
#include <vector>

#include "engine/frame/FramePool.h"
#include "engine/source/FrameTap.h"

using korvia::FrameRef;
using korvia::FrameSize;
using korvia::FrameTap;
using korvia::MutableFrame;

namespace {

constexpr std::int64_t kMs = 1'000'000;

/// A picture that tells its number by its first sample.
korvia::TimedFrame picture(int number, std::int64_t timeNs) {
  MutableFrame frame(new korvia::Frame(FrameSize{2, 2}, false));
  frame->writablePlane(korvia::Frame::Y)[0] = static_cast<std::uint8_t>(number);
  return {std::move(frame).publish(), timeNs, timeNs};
}

int numberOf(const FrameTap::Pull& pull) {
  return pull.frame ? pull.frame->plane(korvia::Frame::Y)[0] : -1;
}

FrameTap::Limits roomy() {
  return {250, 0, 250};
}

/// Numbers shown in `ticks` ticks of a show at `rate`, of a film whose picture i stands at i * num / den s.
std::vector<int> cadence(korvia::FrameRate rate, const std::vector<std::int64_t>& timesNs, int ticks) {
  FrameTap tap(rate, roomy());
  int number = 0;
  for (std::int64_t time : timesNs)
    tap.push(picture(number++, time));
  tap.setPlaying(true);
  std::vector<int> shown;
  for (int i = 0; i < ticks; ++i)
    shown.push_back(numberOf(tap.pull(1)));
  return shown;
}

std::vector<std::int64_t> steady(int count, double fps) {
  std::vector<std::int64_t> times;
  for (int i = 0; i < count; ++i)
    times.push_back(static_cast<std::int64_t>(i * 1e9 / fps));
  return times;
}

std::vector<std::int64_t> roundedToMs(std::vector<std::int64_t> times) {
  for (std::int64_t& time : times)
    time = (time + kMs / 2) / kMs * kMs;
  return times;
}

}  // namespace

class FrameTapTest : public QObject {
  Q_OBJECT

 private slots:
  void noPictureBeforeTheFirst() {
    FrameTap tap({25, 1});
    const FrameTap::Pull pull = tap.pull(1);
    QVERIFY(!pull.frame);
    QVERIFY(!pull.fresh);
    QVERIFY(!pull.missed);
  }

  void sameRateShowsEveryPictureOnce() {
    QCOMPARE(cadence({25, 1}, steady(8, 25), 8), (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
    QCOMPARE(cadence({30000, 1001}, steady(8, 30000.0 / 1001), 8),
             (std::vector<int>{0, 1, 2, 3, 4, 5, 6, 7}));
  }

  void roundedStampsShowEveryPictureOnce() {
    std::vector<int> expected;
    for (int i = 0; i < 200; ++i)
      expected.push_back(i);
    QCOMPARE(cadence({30000, 1001}, roundedToMs(steady(200, 30000.0 / 1001)), 200), expected);
    QCOMPARE(cadence({60, 1}, roundedToMs(steady(200, 60)), 200), expected);
  }

  void doubleRateShowsEverySecond() {
    QCOMPARE(cadence({25, 1}, steady(12, 50), 6), (std::vector<int>{0, 2, 4, 6, 8, 10}));
  }

  void filmRateRepeatsOnceASecond() {
    const std::vector<int> shown = cadence({25, 1}, steady(60, 24), 50);
    int repeats = 0;
    for (std::size_t i = 1; i < shown.size(); ++i) {
      const int step = shown[i] - shown[i - 1];
      QVERIFY(step == 0 || step == 1);
      repeats += step == 0 ? 1 : 0;
    }
    QCOMPARE(repeats, 2);
  }

  void thirtyOnTwentyFiveSkipsFiveASecond() {
    const std::vector<int> shown = cadence({25, 1}, steady(70, 30), 51);
    for (std::size_t i = 1; i < shown.size(); ++i)
      QVERIFY(shown[i] - shown[i - 1] == 1 || shown[i] - shown[i - 1] == 2);
    QCOMPARE(shown[25], 30);
    QCOMPARE(shown[50], 60);
  }

  void unevenFilmFollowsItsStamps() {
    QCOMPARE(cadence({25, 1}, {0, 40 * kMs, 160 * kMs, 170 * kMs, 240 * kMs}, 7),
             (std::vector<int>{0, 1, 1, 1, 3, 3, 4}));
  }

  void missedTicksSkip() {
    FrameTap tap({25, 1}, roomy());
    for (int i = 0; i < 8; ++i)
      tap.push(picture(i, i * 40 * kMs));
    tap.setPlaying(true);
    QCOMPARE(numberOf(tap.pull(1)), 0);
    QCOMPARE(numberOf(tap.pull(3)), 3);
    QCOMPARE(numberOf(tap.pull(1)), 4);
  }

  void firstPictureShowsAlsoWhenNotPlaying() {
    FrameTap tap({25, 1});
    tap.push(picture(1, 5'000 * kMs));
    tap.push(picture(2, 5'040 * kMs));
    QCOMPARE(numberOf(tap.pull(1)), 1);
    QCOMPARE(numberOf(tap.pull(1)), 1);
    tap.setPlaying(true);
    QCOMPARE(numberOf(tap.pull(1)), 2);
  }

  void latePictureIsHeldAndCaughtUp() {
    FrameTap tap({25, 1}, roomy());
    tap.push(picture(0, 0));
    tap.setPlaying(true);
    QCOMPARE(numberOf(tap.pull(1)), 0);
    for (int i = 0; i < 5; ++i) {
      const FrameTap::Pull pull = tap.pull(1);
      QCOMPARE(numberOf(pull), 0);
      QVERIFY(pull.missed);
    }
    for (int i = 1; i < 10; ++i)
      tap.push(picture(i, i * 40 * kMs));
    QCOMPARE(numberOf(tap.pull(1)), 6);
    QCOMPARE(numberOf(tap.pull(1)), 7);
  }

  void clockWaitsForAFilmThatIsMoreThanASecondLate() {
    FrameTap tap({25, 1}, roomy());
    tap.push(picture(0, 0));
    tap.setPlaying(true);
    tap.pull(1);
    tap.pull(50);
    tap.push(picture(1, 40 * kMs));
    QCOMPARE(numberOf(tap.pull(1)), 1);
    tap.push(picture(2, 80 * kMs));
    tap.push(picture(3, 120 * kMs));
    tap.push(picture(4, 160 * kMs));
    QCOMPARE(numberOf(tap.pull(1)), 2);
    QCOMPARE(numberOf(tap.pull(1)), 3);
  }

  void holdFreezesPictureAndClock() {
    FrameTap tap({25, 1}, roomy());
    for (int i = 0; i < 4; ++i)
      tap.push(picture(i, i * 40 * kMs));
    tap.setPlaying(true);
    QCOMPARE(numberOf(tap.pull(1)), 0);
    tap.setHold(true);
    for (int i = 0; i < 10; ++i) {
      const FrameTap::Pull pull = tap.pull(1);
      QCOMPARE(numberOf(pull), 0);
      QVERIFY(!pull.missed);
    }
    tap.setHold(false);
    QCOMPARE(numberOf(tap.pull(1)), 1);
    tap.setPlaying(false);
    tap.setHold(true);
    tap.setHold(false);
    QCOMPARE(numberOf(tap.pull(1)), 1);
  }

  void flushKeepsThePictureUntilTheNext() {
    FrameTap tap({25, 1}, roomy());
    for (int i = 0; i < 4; ++i)
      tap.push(picture(i, i * 40 * kMs));
    tap.setPlaying(true);
    tap.pull(1);
    tap.beginFlush();
    QVERIFY(!tap.push(picture(9, 160 * kMs)));
    tap.endFlush();
    QCOMPARE(numberOf(tap.pull(1)), 0);
    tap.push(picture(50, 90'000 * kMs));
    tap.push(picture(51, 90'040 * kMs));
    QCOMPARE(numberOf(tap.pull(1)), 50);
    QCOMPARE(numberOf(tap.pull(1)), 51);
  }

  void endIsToldOnceAfterTheLastPictureLasted() {
    FrameTap tap({25, 1}, roomy());
    tap.push(picture(0, 0));
    tap.push(picture(1, 40 * kMs));
    tap.markEnd(80 * kMs);
    tap.setPlaying(true);
    QVERIFY(!tap.pull(1).drained);
    QVERIFY(!tap.pull(1).drained);
    QVERIFY(!tap.isDrained());
    const FrameTap::Pull last = tap.pull(1);
    QVERIFY(last.drained);
    QVERIFY(!last.missed);
    QCOMPARE(numberOf(last), 1);
    QVERIFY(tap.isDrained());
    QVERIFY(!tap.pull(1).drained);
    tap.beginFlush();
    QVERIFY(!tap.isDrained());
  }

  void endWithoutPicturesIsTold() {
    FrameTap tap({25, 1});
    tap.setPlaying(true);
    tap.markEnd(0);
    QVERIFY(tap.pull(1).drained);
  }

  void pausedFilmDoesNotEnd() {
    FrameTap tap({25, 1});
    tap.push(picture(0, 0));
    tap.markEnd(40 * kMs);
    for (int i = 0; i < 5; ++i)
      QVERIFY(!tap.pull(1).drained);
  }

  void pushWaitsWhileFullAndFlushReleasesIt() {
    FrameTap tap({25, 1});
    for (int i = 0; i < 5; ++i)
      QVERIFY(tap.push(picture(i, i * 40 * kMs)));
    std::atomic<int> state{0};
    std::thread pusher([&] { state = tap.push(picture(5, 200 * kMs)) ? 1 : 2; });
    QTest::qWait(20);
    QCOMPARE(state.load(), 0);
    tap.beginFlush();
    pusher.join();
    QCOMPARE(state.load(), 2);
  }

  void fastFilmKeepsMorePictures() {
    FrameTap tap({25, 1});
    for (int i = 0; i < 8; ++i)
      QVERIFY(tap.push(picture(i, i * 10 * kMs)));
    std::atomic<bool> pushed{false};
    std::thread pusher([&] { pushed = tap.push(picture(8, 80 * kMs)); });
    QTest::qWait(20);
    QVERIFY(!pushed);
    tap.pull(1);
    pusher.join();
    QVERIFY(pushed);
  }

  void closeReleasesForGood() {
    FrameTap tap({25, 1});
    std::thread pusher([&] {
      for (int i = 0; tap.push(picture(i, i * 40 * kMs)); ++i) {
      }
    });
    tap.close();
    pusher.join();
    QVERIFY(!tap.push(picture(0, 0)));
  }

  void threadsAtOnce() {
    FrameTap tap({1000, 1});
    tap.setPlaying(true);
    std::atomic<bool> stop{false};
    std::thread pusher([&] {
      for (int i = 0; !stop; ++i)
        tap.push(picture(i % 200, i * kMs));
    });
    std::thread control([&] {
      for (int i = 0; i < 200; ++i) {
        tap.setHold(i % 3 == 0);
        tap.beginFlush();
        tap.setPlaying(i % 2 == 0);
        tap.endFlush();
        tap.isDrained();
      }
      tap.setHold(false);
      tap.setPlaying(true);
    });
    int fresh = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (fresh < 500 && std::chrono::steady_clock::now() < deadline)
      fresh += tap.pull(1).fresh ? 1 : 0;
    control.join();
    stop = true;
    tap.close();
    pusher.join();
    QCOMPARE(fresh, 500);
  }
};

QTEST_GUILESS_MAIN(FrameTapTest)
#include "tst_frame_tap.moc"
