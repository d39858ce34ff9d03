// A live source in simulated time: its clock drifts, its pictures come with jitter, stall, come in bursts,
// restart their stamps or come too fast. What is measured is the true latency, which only the simulation
// knows.
#include <QtTest>
#include <random>
#include <vector>

#include "engine/source/LiveClock.h"
#include "engine/source/VideoQueue.h"

using korvia::LiveClock;
using korvia::VideoQueue;

namespace {

constexpr std::int64_t kMs = 1'000'000;
constexpr std::int64_t kSecond = 1'000 * kMs;
constexpr std::int64_t kFrame = 40 * kMs;
constexpr std::int64_t kTarget = 120 * kMs;
constexpr std::int64_t kTransit = 60 * kMs;
// A picture is shown up to three quarters of a frame before and after it is due, so that it meets its sound;
// the rest is error of the measurement.
constexpr std::int64_t kLeastLatency = kTarget - 36 * kMs;
constexpr std::int64_t kMostLatency = kTarget + 36 * kMs;

struct Picture {
  std::int64_t stampNs = 0;
  std::int64_t undelayedNs = 0;  // when it would come without jitter
  std::int64_t arrivalNs = 0;
};

struct Shown {
  int number = -1;
  bool fresh = false;
  bool missed = false;
  std::int64_t latencyNs = 0;  // true
};

/// A source of 25 pictures a second by its own clock, and a show of 25 by ours.
class Simulation {
 public:
  Simulation(double ppm, std::int64_t jitterNs)
      : perPictureNs_(kFrame / (1 + ppm * 1e-6)), jitterNs_(jitterNs) {}

  /// Pictures that the source makes from now on for so long.
  void make(std::int64_t durationNs) {
    const auto count = static_cast<int>(static_cast<double>(durationNs) / perPictureNs_ + 0.5);
    std::uniform_int_distribution<std::int64_t> jitter(0, jitterNs_);
    for (int i = 0; i < count; ++i) {
      Picture picture;
      picture.undelayedNs = kTransit + static_cast<std::int64_t>(madeNs_);
      picture.stampNs = stampNs_;
      // Pictures do not overtake each other.
      picture.arrivalNs = picture.undelayedNs + jitter(random_);
      if (!pictures_.empty())
        picture.arrivalNs = std::max(picture.arrivalNs, pictures_.back().arrivalNs);
      pictures_.push_back(picture);
      madeNs_ += perPictureNs_;
      stampNs_ += kFrame;
    }
  }
  /// The source makes nothing for so long; its stamps go on, or stand still.
  void pause(std::int64_t durationNs, bool stampsGoOn) {
    madeNs_ += static_cast<double>(durationNs);
    stampNs_ += stampsGoOn ? durationNs : 0;
  }
  /// The network holds what was made in the last `durationNs` and then delivers it at once.
  void delayLast(std::int64_t durationNs) {
    const std::int64_t until = pictures_.back().arrivalNs;
    for (Picture& picture : pictures_) {
      if (picture.arrivalNs > until - durationNs)
        picture.arrivalNs = until;
    }
  }
  void setStamp(std::int64_t stampNs) { stampNs_ = stampNs; }

  /// Ticks through all pictures; what each tick showed.
  std::vector<Shown> run() {
    std::vector<Shown> all;
    std::uniform_int_distribution<std::int64_t> wakeUp(0, 3 * kMs);
    while (next_ < pictures_.size()) {
      tickNs_ += kFrame;
      const std::int64_t nowNs = tickNs_ + wakeUp(random_);
      for (; next_ < pictures_.size() && pictures_[next_].arrivalNs <= nowNs; ++next_) {
        const Picture& picture = pictures_[next_];
        queue_.push(
            {{}, clock_.arrive(picture.stampNs, picture.arrivalNs), static_cast<std::int64_t>(next_)});
      }
      const VideoQueue::Pull pull = queue_.pull(clock_.advance(1, nowNs));
      Shown shown{-1, pull.fresh, pull.missed, 0};
      if (next_ > 0) {
        shown.number = static_cast<int>(pull.mediaNs);
        shown.latencyNs = tickNs_ - pictures_[static_cast<std::size_t>(shown.number)].undelayedNs;
      }
      all.push_back(shown);
      drift_.push_back(clock_.figures().driftPpm);
    }
    return all;
  }

  LiveClock& clock() { return clock_; }
  VideoQueue& queue() { return queue_; }
  std::int64_t timeNs() const { return tickNs_; }
  /// The measured drift at each tick.
  const std::vector<double>& drift() const { return drift_; }

 private:
  const double perPictureNs_;
  const std::int64_t jitterNs_;
  std::mt19937 random_{20};
  LiveClock clock_{{25, 1}, kTarget};
  VideoQueue queue_{VideoQueue::Live()};
  std::vector<Picture> pictures_;
  std::vector<double> drift_;
  std::size_t next_ = 0;
  double madeNs_ = 7 * kMs;
  std::int64_t stampNs_ = 1'000'000 * kSecond;
  std::int64_t tickNs_ = 0;
};

constexpr std::size_t ticksIn(std::int64_t ns) {
  return static_cast<std::size_t>(ns / kFrame);
}

/// Pictures left out and ticks that repeated one, from a tick on.
struct Cadence {
  int skipped = 0;
  int repeated = 0;
  int missed = 0;

  Cadence(const std::vector<Shown>& shown, std::size_t from, std::size_t to) {
    for (std::size_t i = std::max<std::size_t>(1, from); i < std::min(to, shown.size()); ++i) {
      skipped += std::max(0, shown[i].number - shown[i - 1].number - 1);
      repeated += shown[i].fresh ? 0 : 1;
      missed += shown[i].missed ? 1 : 0;
    }
  }
};

struct Band {
  std::int64_t leastNs = INT64_MAX;
  std::int64_t mostNs = INT64_MIN;

  Band(const std::vector<Shown>& shown, std::size_t from, std::size_t to) {
    for (std::size_t i = from; i < std::min(to, shown.size()); ++i) {
      leastNs = std::min(leastNs, shown[i].latencyNs);
      mostNs = std::max(mostNs, shown[i].latencyNs);
    }
  }
  bool isNearTarget() const { return leastNs >= kLeastLatency && mostNs <= kMostLatency; }
  QByteArray text() const {
    return QByteArray::number(qint64(leastNs / 1000)) + " to " + QByteArray::number(qint64(mostNs / 1000)) +
           " us";
  }
};

}  // namespace

class LiveQueueTest : public QObject {
  Q_OBJECT

 private slots:
  void theClockTellsWhenDataWillBeShown() {
    korvia::FrameRate rate;
    rate.numerator = 25;
    LiveClock clock(rate, kTarget);
    QVERIFY(!clock.shownNs(0));
    clock.arrive(7 * kSecond, 100 * kSecond);
    QVERIFY(!clock.shownNs(7 * kSecond));  // no tick has passed
    clock.advance(1, 100 * kSecond);
    QCOMPARE(clock.shownNs(7 * kSecond).value(), 100 * kSecond + kTarget);
    QCOMPARE(clock.shownNs(9 * kSecond).value(), 102 * kSecond + kTarget);
    clock.advance(1, 100 * kSecond + kFrame);
    QCOMPARE(clock.shownNs(9 * kSecond).value(), 102 * kSecond + kTarget);
    clock.beginStamps();
    QVERIFY(!clock.shownNs(9 * kSecond));  // nothing of the new connection has come
  }

  void driftIsMeasuredAndFollowed_data() {
    QTest::addColumn<double>("ppm");
    QTest::addColumn<int>("jitterMs");
    QTest::newRow("200 ppm fast") << 200.0 << 40;
    QTest::newRow("200 ppm slow") << -200.0 << 40;
    QTest::newRow("50 ppm fast, calm") << 50.0 << 2;
    QTest::newRow("no drift, much jitter") << 0.0 << 90;
    QTest::newRow("100 ppm slow, much jitter") << -100.0 << 90;
  }

  void driftIsMeasuredAndFollowed() {
    QFETCH(double, ppm);
    QFETCH(int, jitterMs);
    constexpr std::int64_t kLasts = 45 * 60 * kSecond;
    Simulation simulation(ppm, jitterMs * kMs);
    simulation.make(kLasts);
    const std::vector<Shown> shown = simulation.run();

    const std::size_t settled = ticksIn(20 * kSecond);
    const Band band(shown, settled, shown.size());
    double worst = 0;
    for (std::size_t i = ticksIn(180 * kSecond); i < shown.size(); ++i)
      worst = std::max(worst, std::abs(simulation.drift()[i] - ppm));
    const Cadence cadence(shown, settled, shown.size());
    qInfo("latency %s, drift off by at most %.1f ppm, %d skipped, %d repeated", band.text().constData(),
          worst, cadence.skipped, cadence.repeated);
    QVERIFY2(band.isNearTarget(), band.text());
    QVERIFY2(worst < 20, QByteArray::number(worst));
    // Drift moves the pictures by so many frames; the first one may need half a frame more.
    const double frames = ppm * 1e-6 * static_cast<double>(kLasts) / kFrame;
    QVERIFY2(std::abs(cadence.skipped - std::max(0.0, frames)) <= 1.5, QByteArray::number(cadence.skipped));
    QVERIFY2(std::abs(cadence.repeated - std::max(0.0, -frames)) <= 1.5,
             QByteArray::number(cadence.repeated));
    QCOMPARE(cadence.missed, 0);
    QCOMPARE(simulation.clock().figures().reanchors, std::int64_t{0});
    QVERIFY(std::abs(simulation.clock().figures().latencyNs - kTarget) < 2 * kMs);
  }

  void stallThatLosesPicturesHoldsTheLast() {
    Simulation simulation(30, 20 * kMs);
    simulation.make(60 * kSecond);
    simulation.pause(3 * kSecond, true);
    simulation.make(60 * kSecond);
    const std::vector<Shown> shown = simulation.run();
    const std::size_t from = ticksIn(59 * kSecond);
    const Cadence stall(shown, from, ticksIn(64 * kSecond));
    // Pictures may be shown a little earlier after it than before.
    QVERIFY2(std::abs(stall.repeated - 75) <= 1, QByteArray::number(stall.repeated));
    // The next picture is there one latency before it is due.
    const int missed = 75 - int(kTarget / kFrame);
    QVERIFY2(std::abs(stall.missed - missed) <= 1, QByteArray::number(stall.missed));
    // The first picture after it is on target already.
    const Band after(shown, ticksIn(63 * kSecond) + 6, shown.size());
    QVERIFY2(after.isNearTarget(), after.text());
    QCOMPARE(simulation.clock().figures().reanchors, std::int64_t{0});
  }

  void burstAfterAStallIsSkippedNotPlayedFast() {
    Simulation simulation(-30, 20 * kMs);
    simulation.make(63 * kSecond);
    simulation.delayLast(3 * kSecond);
    simulation.make(60 * kSecond);
    const std::vector<Shown> shown = simulation.run();
    const std::size_t burst = ticksIn(63 * kSecond + kTransit) + 1;
    const Cadence stall(shown, ticksIn(59 * kSecond), burst);
    QVERIFY2(stall.missed >= 68 && stall.missed <= 76, QByteArray::number(stall.missed));
    const Cadence after(shown, burst + 2, shown.size());
    QVERIFY2(after.skipped == 0 && after.missed == 0 && after.repeated <= 2,
             QByteArray::number(after.skipped));
    const Band band(shown, burst + 2, shown.size());
    QVERIFY2(band.isNearTarget(), band.text());
    QCOMPARE(simulation.clock().figures().reanchors, std::int64_t{0});
  }

  // The source itself paused: all that follows would be late for ever.
  void stallOfTheSourceReanchors() {
    Simulation simulation(0, 20 * kMs);
    simulation.make(60 * kSecond);
    simulation.pause(3 * kSecond, false);
    simulation.make(60 * kSecond);
    const std::vector<Shown> shown = simulation.run();
    QCOMPARE(simulation.clock().figures().reanchors, std::int64_t{1});
    const Band band(shown, ticksIn(65 * kSecond), shown.size());
    QVERIFY2(band.isNearTarget(), band.text());
    const Cadence after(shown, ticksIn(65 * kSecond), shown.size());
    QVERIFY(after.skipped == 0 && after.missed == 0 && after.repeated == 0);
  }

  void jumpOfTheStampsLosesNothing_data() {
    QTest::addColumn<qint64>("stampNs");
    QTest::newRow("restart") << qint64(0);
    QTest::newRow("wrap to before zero") << qint64(-95'443 * kSecond);
    QTest::newRow("ahead") << qint64(1'000'100 * kSecond);
  }

  void jumpOfTheStampsLosesNothing() {
    QFETCH(qint64, stampNs);
    Simulation simulation(100, 10 * kMs);
    simulation.make(300 * kSecond);
    simulation.setStamp(stampNs);
    simulation.make(300 * kSecond);
    const std::vector<Shown> shown = simulation.run();
    QCOMPARE(simulation.clock().figures().reanchors, std::int64_t{1});
    const Cadence jump(shown, ticksIn(290 * kSecond), ticksIn(320 * kSecond));
    QVERIFY(jump.skipped <= 1 && jump.repeated <= 1 && jump.missed == 0);
    const Band band(shown, ticksIn(20 * kSecond), shown.size());
    QVERIFY2(band.isNearTarget(), band.text());
    for (std::size_t i = ticksIn(120 * kSecond); i < shown.size(); ++i)
      QVERIFY(std::abs(simulation.drift()[i] - 100) < 20);
  }

  // Servers send a group of pictures at once to whoever connects.
  void burstAtTheStartSettles() {
    Simulation simulation(0, 5 * kMs);
    simulation.make(2 * kSecond);
    simulation.delayLast(2 * kSecond);
    simulation.make(60 * kSecond);
    const std::vector<Shown> shown = simulation.run();
    const Band band(shown, ticksIn(4 * kSecond), shown.size());
    QVERIFY2(band.isNearTarget(), band.text());
  }

  // The sound of a transport stream may come half a second before or after its pictures.
  void streamsHaveTheirOwnOrder() {
    LiveClock clock({25, 1}, kSecond);
    for (int number = 0; number < 400; ++number) {
      const std::int64_t nowNs = number * kFrame;
      clock.arrive(nowNs, nowNs, LiveClock::Stream::Picture);
      clock.arrive(nowNs - 800 * kMs, nowNs, LiveClock::Stream::Sound);
    }
    QCOMPARE(clock.figures().reanchors, std::int64_t{0});
  }

  void aNewConnectionContinuesTheTimeLine() {
    LiveClock clock({25, 1}, kTarget);
    std::int64_t nowNs = 0;
    for (; nowNs < 10 * kSecond; nowNs += kFrame)
      clock.arrive(nowNs, nowNs);
    clock.beginStamps();
    nowNs += 3 * kSecond;
    // Older stamps than before, which is less than a jump.
    const std::int64_t stampNs = nowNs - 3 * kSecond - 300 * kMs;
    QVERIFY(std::abs(clock.arrive(stampNs, nowNs) - nowNs) < 2 * kMs);
    QVERIFY(std::abs(clock.arrive(stampNs + kFrame, nowNs + kFrame) - nowNs - kFrame) < 2 * kMs);
    QCOMPARE(clock.figures().reanchors, std::int64_t{1});
  }

  void jitterBeyondTheTargetRaisesTheLatency() {
    LiveClock clock({25, 1}, kTarget);
    std::int64_t nowNs = 0;
    const auto run = [&](std::int64_t soundLateNs, std::int64_t durationNs) {
      for (const std::int64_t endNs = nowNs + durationNs; nowNs < endNs; nowNs += kFrame) {
        clock.arrive(nowNs, nowNs, LiveClock::Stream::Picture);
        clock.arrive(nowNs - soundLateNs, nowNs, LiveClock::Stream::Sound);
      }
    };
    run(kTarget - 20 * kMs, 30 * kSecond);
    QCOMPARE(clock.figures().extraNs, std::int64_t{0});
    run(kTarget + 150 * kMs, 2 * kSecond);
    run(0, 10 * kSecond);
    QCOMPARE(clock.figures().extraNs, std::int64_t{0});  // once only
    run(kTarget + 150 * kMs, 30 * kSecond);
    QVERIFY(clock.figures().extraNs >= 150 * kMs && clock.figures().extraNs < 200 * kMs);
    run(20 * kSecond, 30 * kSecond);
    QVERIFY(clock.figures().extraNs < 200 * kMs);  // that is no jitter
  }

  void newestWinsWhenTooManyCome() {
    LiveClock clock({25, 1}, kTarget);
    VideoQueue queue{VideoQueue::Live()};
    constexpr int kPerTick = 40;
    int number = 0;
    for (int tick = 1; tick <= 250; ++tick) {
      for (int i = 0; i < kPerTick; ++i, ++number)
        queue.push({{}, clock.arrive(number * kMs, number * kMs), number});
      const VideoQueue::Pull pull = queue.pull(clock.advance(1, tick * kFrame));
      QVERIFY(pull.fresh);
      QVERIFY(number - pull.mediaNs <= VideoQueue::Live().mostFrames);
    }
    const VideoQueue::Figures figures = queue.figures();
    QVERIFY(figures.latencyNs < kTarget);
    QCOMPARE(figures.dropped, std::int64_t(number - 250 - VideoQueue::Live().mostFrames + 1));
  }

  void stampsAtDoubleSpeedStayBounded() {
    LiveClock clock({25, 1}, kTarget);
    VideoQueue queue{VideoQueue::Live()};
    int number = 0;
    int fresh = 0;
    for (int tick = 1; tick <= 1'000; ++tick) {
      for (int i = 0; i < 2; ++i, ++number)
        queue.push({{}, clock.arrive(number * kFrame, number * kFrame / 2), number});
      const VideoQueue::Pull pull = queue.pull(clock.advance(1, tick * kFrame));
      fresh += pull.fresh ? 1 : 0;
      QVERIFY(number - pull.mediaNs <= VideoQueue::Live().mostFrames + 2);
    }
    QVERIFY2(fresh > 800, QByteArray::number(fresh));
  }

  void pushNeverWaits() {
    LiveClock clock({25, 1}, kTarget);
    VideoQueue queue{VideoQueue::Live()};
    for (int i = 0; i < 10'000; ++i)
      QVERIFY(queue.push({{}, clock.arrive(i * kFrame, i * kFrame), i}));
    QVERIFY(queue.figures().dropped >= 10'000 - VideoQueue::Live().mostFrames);
  }

  void holdKeepsThePictureAndLiveGoesOn() {
    Simulation simulation(0, 0);
    simulation.make(10 * kSecond);
    const int before = simulation.run().back().number;
    const std::int64_t missed = simulation.queue().figures().missed;
    simulation.clock().setHold(true);
    simulation.make(4 * kSecond);
    for (const Shown& shown : simulation.run())
      QCOMPARE(shown.number, before);
    simulation.clock().setHold(false);
    simulation.make(4 * kSecond);
    const std::vector<Shown> shown = simulation.run();
    const Band band(shown, 1, shown.size());
    QVERIFY2(band.isNearTarget(), band.text());
    QCOMPARE(Cadence(shown, 2, shown.size()).skipped, 0);
    QCOMPARE(simulation.queue().figures().missed, missed);
  }
};

QTEST_GUILESS_MAIN(LiveQueueTest)
#include "tst_live_queue.moc"
