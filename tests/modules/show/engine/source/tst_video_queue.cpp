// Which picture of a file is due when: cadence, late pictures, seams, flushes, hold, end; push and pull at
// once; when the queue is refilled in bursts, and whose turn that is.
#include <QScopeGuard>
#include <QSemaphore>
#include <QtTest>
#include <atomic>
#include <thread>
#include <vector>

#include "engine/frame/FramePool.h"
#include "engine/source/VideoQueue.h"

using korvia::FrameRef;
using korvia::FrameSize;
using korvia::MediaClock;
using korvia::MutableFrame;
using korvia::RefillTurns;
using korvia::VideoQueue;

namespace {

constexpr std::int64_t kMs = 1'000'000;

/// A picture that tells its number by its first sample.
korvia::TimedFrame picture(int number, std::int64_t timeNs) {
  MutableFrame frame(new korvia::Frame(FrameSize{2, 2}));
  frame->writablePlane(korvia::Frame::Y)[0] = static_cast<std::uint8_t>(number);
  return {std::move(frame).publish(), timeNs, timeNs};
}

/// A queue alone on its clock.
class ClockedQueue {
 public:
  explicit ClockedQueue(korvia::FrameRate rate, VideoQueue::File limits = {}, RefillTurns* turns = nullptr)
      : clock_(rate), queue_(clock_, limits, turns) {}

  bool push(korvia::TimedFrame frame) { return queue_.push(std::move(frame)); }
  VideoQueue::Pull pull(int ticks) { return queue_.pull(clock_.advance(ticks)); }
  void beginFlush() { queue_.beginFlush(clock_.flush()); }
  void endFlush() { queue_.endFlush(); }
  void markEnd(std::int64_t endNs) { queue_.markEnd(endNs); }
  void close() { queue_.close(); }
  void setPlaying(bool playing) { clock_.setPlaying(playing); }
  void setHold(bool hold) { clock_.setHold(hold); }
  bool isDrained() const { return queue_.isDrained(); }
  int size() const { return queue_.size(); }

 private:
  MediaClock clock_;
  VideoQueue queue_;
};

enum class End { Far, Near };

/// A film of 25 pictures a second that is pushed as fast as the queue takes it.
class PushedFilm {
 public:
  explicit PushedFilm(End end = End::Far, RefillTurns* turns = nullptr)
      : queue_({25, 1}, {}, turns), pusher_([this, end] { push(end); }) {}
  ~PushedFilm() {
    queue_.close();
    mayPush_.release(1'000);
    pusher_.join();
  }

  ClockedQueue* operator->() { return &queue_; }
  /// Plays until the queue is full and rests between two bursts.
  bool playUntilResting() {
    queue_.setPlaying(true);
    const bool first = QTest::qWaitFor([this] { return queue_.pull(1).fresh; });
    return first && rests();
  }
  bool rests() { return comesTo(8) && staysAt(8); }
  bool comesTo(int pictures) {
    return QTest::qWaitFor([&] { return queue_.size() == pictures; });
  }
  bool staysAt(int pictures) {
    return !QTest::qWaitFor([&] { return queue_.size() != pictures; }, 20);
  }
  /// From now on, pictures are pushed one by one.
  void pushByHand() { byHand_ = true; }
  void pushOne() { mayPush_.release(); }

 private:
  void push(End end) {
    for (int i = 0;; ++i) {
      if (byHand_)
        mayPush_.acquire();
      korvia::TimedFrame next = picture(i % 200, i * 40 * kMs);
      next.endIsFar = end == End::Far;
      if (!queue_.push(std::move(next)))
        return;
    }
  }

  ClockedQueue queue_;
  std::atomic<bool> byHand_{false};
  QSemaphore mayPush_;
  std::thread pusher_;
};

int numberOf(const VideoQueue::Pull& pull) {
  return pull.frame ? pull.frame->plane(korvia::Frame::Y)[0] : -1;
}

VideoQueue::File roomy() {
  return {250, 0, 250};
}

/// Numbers shown in `ticks` ticks of a show at `rate`, of a film whose picture i stands at i * num / den s.
std::vector<int> cadence(korvia::FrameRate rate, const std::vector<std::int64_t>& timesNs, int ticks) {
  ClockedQueue queue(rate, roomy());
  int number = 0;
  for (std::int64_t time : timesNs)
    queue.push(picture(number++, time));
  queue.setPlaying(true);
  std::vector<int> shown;
  for (int i = 0; i < ticks; ++i)
    shown.push_back(numberOf(queue.pull(1)));
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

class VideoQueueTest : public QObject {
  Q_OBJECT

 private slots:
  void noPictureBeforeTheFirst() {
    ClockedQueue queue({25, 1});
    const VideoQueue::Pull pull = queue.pull(1);
    QVERIFY(!pull.frame);
    QVERIFY(!pull.fresh);
    QVERIFY(!pull.missed);
  }

  void pictureLastsUntilTheNextOrTheEnd() {
    ClockedQueue queue({25, 1});
    queue.push(picture(0, 0));
    queue.push(picture(1, 3000 * kMs));
    queue.setPlaying(true);
    QCOMPARE(queue.pull(1).durationNs, 3000 * kMs);
    QCOMPARE(queue.pull(25).durationNs, 3000 * kMs);
    QCOMPARE(numberOf(queue.pull(50)), 1);
    QCOMPARE(queue.pull(1).durationNs, std::int64_t(0));  // the next one is not there
    queue.push(picture(2, 3040 * kMs));
    QCOMPARE(queue.pull(1).durationNs, std::int64_t(0));  // on show, and again alone
    queue.markEnd(5040 * kMs);
    QCOMPARE(queue.pull(1).durationNs, 2000 * kMs);
    queue.beginFlush();
    QCOMPARE(queue.pull(1).durationNs, std::int64_t(0));
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
    std::vector<int> expected;
    for (int i = 0; i < 120; ++i)
      expected.push_back(2 * i);
    QCOMPARE(cadence({25, 1}, steady(240, 50), 120), expected);
    QCOMPARE(cadence({30000, 1001}, roundedToMs(steady(240, 60000.0 / 1001)), 120), expected);
  }

  void picturesOfUnequalRatesMeetTheirSound_data() {
    QTest::addColumn<double>("filmFps");
    QTest::newRow("23.976") << 24000.0 / 1001;
    QTest::newRow("24") << 24.0;
    QTest::newRow("29.97") << 30000.0 / 1001;
    QTest::newRow("30") << 30.0;
    QTest::newRow("59.94") << 60000.0 / 1001;
  }

  void picturesOfUnequalRatesMeetTheirSound() {
    QFETCH(double, filmFps);
    const int ticks = 100;
    const std::vector<std::int64_t> times = steady(static_cast<int>(filmFps * ticks / 25) + 4, filmFps);
    const std::vector<int> shown = cadence({25, 1}, times, ticks);
    // What begins with a picture is seen at the first tick that shows it or a later one; its sound is on
    // time.
    double sumMs = 0;
    std::size_t tick = 0;
    const std::size_t pictures = static_cast<std::size_t>(shown.back());
    for (std::size_t i = 0; i < pictures; ++i) {
      while (shown[tick] < static_cast<int>(i))
        ++tick;
      sumMs += static_cast<double>(tick) * 40 - static_cast<double>(times[i]) / 1e6;
    }
    const double meanMs = sumMs / static_cast<double>(pictures);
    QVERIFY2(std::abs(meanMs) <= 5, qPrintable(QString::number(meanMs)));
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
    ClockedQueue queue({25, 1}, roomy());
    for (int i = 0; i < 8; ++i)
      queue.push(picture(i, i * 40 * kMs));
    queue.setPlaying(true);
    QCOMPARE(queue.pull(1).taken, 1);
    const VideoQueue::Pull late = queue.pull(3);
    QCOMPARE(numberOf(late), 3);
    QCOMPARE(late.taken, 3);
    QCOMPARE(numberOf(queue.pull(1)), 4);
  }

  void firstPictureShowsAlsoWhenNotPlaying() {
    ClockedQueue queue({25, 1});
    queue.push(picture(1, 5'000 * kMs));
    queue.push(picture(2, 5'040 * kMs));
    QCOMPARE(numberOf(queue.pull(1)), 1);
    QCOMPARE(numberOf(queue.pull(1)), 1);
    queue.setPlaying(true);
    QCOMPARE(numberOf(queue.pull(1)), 2);
  }

  void latePictureIsHeldAndCaughtUp() {
    ClockedQueue queue({25, 1}, roomy());
    queue.push(picture(0, 0));
    queue.setPlaying(true);
    QCOMPARE(numberOf(queue.pull(1)), 0);
    for (int i = 0; i < 5; ++i) {
      const VideoQueue::Pull pull = queue.pull(1);
      QCOMPARE(numberOf(pull), 0);
      QVERIFY(pull.missed);
    }
    for (int i = 1; i < 10; ++i)
      queue.push(picture(i, i * 40 * kMs));
    QCOMPARE(numberOf(queue.pull(1)), 6);
    QCOMPARE(numberOf(queue.pull(1)), 7);
  }

  void clockWaitsForAFilmThatIsMoreThanASecondLate() {
    ClockedQueue queue({25, 1}, roomy());
    queue.push(picture(0, 0));
    queue.setPlaying(true);
    queue.pull(1);
    queue.pull(50);
    queue.push(picture(1, 40 * kMs));
    QCOMPARE(numberOf(queue.pull(1)), 1);
    queue.push(picture(2, 80 * kMs));
    queue.push(picture(3, 120 * kMs));
    queue.push(picture(4, 160 * kMs));
    QCOMPARE(numberOf(queue.pull(1)), 2);
    QCOMPARE(numberOf(queue.pull(1)), 3);
  }

  void holdFreezesPictureAndClock() {
    ClockedQueue queue({25, 1}, roomy());
    for (int i = 0; i < 4; ++i)
      queue.push(picture(i, i * 40 * kMs));
    queue.setPlaying(true);
    QCOMPARE(numberOf(queue.pull(1)), 0);
    queue.setHold(true);
    for (int i = 0; i < 10; ++i) {
      const VideoQueue::Pull pull = queue.pull(1);
      QCOMPARE(numberOf(pull), 0);
      QVERIFY(!pull.missed);
    }
    queue.setHold(false);
    QCOMPARE(numberOf(queue.pull(1)), 1);
    queue.setPlaying(false);
    queue.setHold(true);
    queue.setHold(false);
    QCOMPARE(numberOf(queue.pull(1)), 1);
  }

  void flushKeepsThePictureUntilTheNext() {
    ClockedQueue queue({25, 1}, roomy());
    for (int i = 0; i < 4; ++i)
      queue.push(picture(i, i * 40 * kMs));
    queue.setPlaying(true);
    queue.pull(1);
    queue.beginFlush();
    QVERIFY(!queue.push(picture(9, 160 * kMs)));
    queue.endFlush();
    QCOMPARE(numberOf(queue.pull(1)), 0);
    queue.push(picture(50, 90'000 * kMs));
    queue.push(picture(51, 90'040 * kMs));
    QCOMPARE(numberOf(queue.pull(1)), 50);
    QCOMPARE(numberOf(queue.pull(1)), 51);
  }

  void endIsToldOnceAfterTheLastPictureLasted() {
    ClockedQueue queue({25, 1}, roomy());
    queue.push(picture(0, 0));
    queue.push(picture(1, 40 * kMs));
    queue.markEnd(80 * kMs);
    queue.setPlaying(true);
    QVERIFY(!queue.pull(1).drained);
    QVERIFY(!queue.pull(1).drained);
    QVERIFY(!queue.isDrained());
    const VideoQueue::Pull last = queue.pull(1);
    QVERIFY(last.drained);
    QVERIFY(!last.missed);
    QCOMPARE(numberOf(last), 1);
    QVERIFY(queue.isDrained());
    QVERIFY(!queue.pull(1).drained);
    queue.beginFlush();
    QVERIFY(!queue.isDrained());
  }

  void endWithoutPicturesIsTold() {
    ClockedQueue queue({25, 1});
    queue.setPlaying(true);
    queue.markEnd(0);
    QVERIFY(queue.pull(1).drained);
  }

  void pausedFilmDoesNotEnd() {
    ClockedQueue queue({25, 1});
    queue.push(picture(0, 0));
    queue.markEnd(40 * kMs);
    for (int i = 0; i < 5; ++i)
      QVERIFY(!queue.pull(1).drained);
  }

  void pushWaitsWhileFullAndFlushReleasesIt() {
    ClockedQueue queue({25, 1});
    for (int i = 0; i < 5; ++i)
      QVERIFY(queue.push(picture(i, i * 40 * kMs)));
    std::atomic<int> state{0};
    std::thread pusher([&] { state = queue.push(picture(5, 200 * kMs)) ? 1 : 2; });
    QTest::qWait(20);
    QCOMPARE(state.load(), 0);
    queue.beginFlush();
    pusher.join();
    QCOMPARE(state.load(), 2);
  }

  void fastFilmKeepsMorePictures() {
    ClockedQueue queue({25, 1});
    for (int i = 0; i < 8; ++i)
      QVERIFY(queue.push(picture(i, i * 10 * kMs)));
    std::atomic<bool> pushed{false};
    std::thread pusher([&] { pushed = queue.push(picture(8, 80 * kMs)); });
    QTest::qWait(20);
    QVERIFY(!pushed);
    queue.pull(1);
    pusher.join();
    QVERIFY(pushed);
  }

  void steadyPlayIsRefilledInBursts() {
    PushedFilm film;
    QVERIFY(film.playUntilResting());
    for (int round = 0; round < 3; ++round) {
      for (int left = 7; left > 3; --left) {
        film->pull(1);
        QVERIFY(film.staysAt(left));
      }
      film->pull(1);
      QVERIFY(film.rests());
    }
  }

  // Pictures that stand 120 ms apart: few, so that they are gone soon after the return to the full rate.
  void fewPicturesOfTheReducedRateAreQueued() {
    ClockedQueue queue({25, 1});
    std::thread pusher([&queue] {
      for (int i = 0;; ++i) {
        korvia::TimedFrame next = picture(i % 200, i * 120 * kMs);
        next.endIsFar = true;
        next.reduced = true;
        if (!queue.push(std::move(next)))
          return;
      }
    });
    const auto closer = qScopeGuard([&] {
      queue.close();
      pusher.join();
    });
    QTRY_COMPARE(queue.size(), 3);
    queue.setPlaying(true);
    QTRY_VERIFY(numberOf(queue.pull(1)) > 3);
    for (int tick = 0; tick < 30; ++tick) {
      QVERIFY(!queue.pull(1).missed);
      QTRY_VERIFY(queue.size() >= 1);
      QVERIFY(queue.size() <= 3);
    }
  }

  void beforeTheFirstPictureAndOnPauseFewAreQueued() {
    PushedFilm film;
    QVERIFY(film.comesTo(5));
    QVERIFY(film.staysAt(5));
    QVERIFY(film.playUntilResting());
    film->pull(4);
    QVERIFY(film.staysAt(4));
    film->setPlaying(false);
    film->pull(1);
    QVERIFY(film.comesTo(5));
    QVERIFY(film.staysAt(5));
    film->setPlaying(true);
    film->pull(1);
    QVERIFY(film.comesTo(8));
  }

  void nearTheEndTheQueueIsKeptFull() {
    PushedFilm film(End::Near);
    film->setPlaying(true);
    QVERIFY(film.comesTo(5));
    for (int i = 0; i < 5; ++i) {
      film->pull(1);
      QVERIFY(film.comesTo(5));
    }
  }

  void aFlushBetweenBurstsReleasesThePush() {
    PushedFilm film;
    QVERIFY(film.playUntilResting());
    film->pull(2);
    film->beginFlush();
    // The push that waited was refused, and the film has ended with it.
    QVERIFY(film.staysAt(0));
  }

  void aRefillWaitsForItsTurnUntilItIsUrgent() {
    RefillTurns turns(1);
    PushedFilm film(End::Far, &turns);
    QVERIFY(film.playUntilResting());
    QVERIFY(turns.take(RefillTurns::Need::CanWait));  // another film
    film->pull(5);
    QVERIFY(film.staysAt(3));
    film->pull(1);
    QVERIFY(film.comesTo(8));
    QTRY_COMPARE(turns.taken(), 1);
    turns.giveBack();
    film->pull(5);
    QVERIFY(film.comesTo(8));
    QTRY_COMPARE(turns.taken(), 0);
  }

  void aTurnIsGivenBackWhenTheRefillEnds_data() {
    QTest::addColumn<int>("how");
    QTest::newRow("pause") << 0;
    QTest::newRow("flush") << 1;
    QTest::newRow("end") << 2;
    QTest::newRow("close") << 3;
    QTest::newRow("slow decoder") << 4;
  }

  void aTurnIsGivenBackWhenTheRefillEnds() {
    QFETCH(int, how);
    RefillTurns turns(1);
    PushedFilm film(End::Far, &turns);
    QVERIFY(film.playUntilResting());
    film.pushByHand();
    film->pull(5);
    QVERIFY(film.comesTo(4));
    QCOMPARE(turns.taken(), 1);
    if (how == 0) {
      film->setPlaying(false);
      film->pull(1);
    } else if (how == 1) {
      film->beginFlush();
    } else if (how == 2) {
      film->markEnd(100'000 * kMs);
    } else if (how == 3) {
      film->close();
    } else {
      for (int i = 0; i < 5; ++i) {
        film->pull(1);
        QCOMPARE(turns.taken(), 1);
        film.pushOne();
        QVERIFY(film.comesTo(4));
      }
      film->pull(1);
    }
    QCOMPARE(turns.taken(), 0);
  }

  void closeReleasesForGood() {
    ClockedQueue queue({25, 1});
    std::thread pusher([&] {
      for (int i = 0; queue.push(picture(i, i * 40 * kMs)); ++i) {
      }
    });
    queue.close();
    pusher.join();
    QVERIFY(!queue.push(picture(0, 0)));
  }

  void threadsAtOnce() {
    ClockedQueue queue({1000, 1});
    queue.setPlaying(true);
    std::atomic<bool> stop{false};
    std::thread pusher([&] {
      for (int i = 0; !stop; ++i)
        queue.push(picture(i % 200, i * kMs));
    });
    std::thread control([&] {
      for (int i = 0; i < 200; ++i) {
        queue.setHold(i % 3 == 0);
        queue.beginFlush();
        queue.setPlaying(i % 2 == 0);
        queue.endFlush();
        queue.isDrained();
      }
      queue.setHold(false);
      queue.setPlaying(true);
    });
    int fresh = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (fresh < 500 && std::chrono::steady_clock::now() < deadline)
      fresh += queue.pull(1).fresh ? 1 : 0;
    control.join();
    stop = true;
    queue.close();
    pusher.join();
    QCOMPARE(fresh, 500);
  }
};

QTEST_GUILESS_MAIN(VideoQueueTest)
#include "tst_video_queue.moc"
