// Two queues on one clock, standing for a film's pictures and sound, stay in step whatever happens to the
// film.
#include <QtTest>
#include <thread>

#include "engine/source/VideoQueue.h"

using korvia::ClockReading;
using korvia::MediaClock;
using korvia::TimedFrame;
using korvia::VideoQueue;

namespace {

constexpr std::int64_t kMs = 1'000'000;

struct Tick {
  int pictureMs = -1;
  int soundMs = -1;
  bool fresh = false;  // the picture

  friend bool operator==(const Tick&, const Tick&) = default;
};

char* toString(const Tick& tick) {
  return qstrdup(qPrintable(
      QStringLiteral("%1 / %2%3").arg(tick.pictureMs).arg(tick.soundMs).arg(tick.fresh ? "" : " repeated")));
}

struct Film {
  MediaClock clock{{25, 1}};
  VideoQueue pictures{clock, {50, 0, 50}};
  VideoQueue sound{clock, {100, 0, 100}};

  static void fill(VideoQueue& queue, int fromMs, int toMs, int stepMs, int offsetMs = 0) {
    for (int ms = fromMs; ms < toMs; ms += stepMs)
      queue.push({{}, (offsetMs + ms) * kMs, ms * kMs});
  }
  /// Pictures and sound from one place to another; the place stands on the time line `offsetMs` later.
  void fill(int fromMs, int toMs, int offsetMs = 0) {
    fill(pictures, fromMs, toMs, 40, offsetMs);
    fill(sound, fromMs, toMs, 20, offsetMs);
  }
  void flush() {
    const std::uint64_t epoch = clock.flush();
    pictures.beginFlush(epoch);
    sound.beginFlush(epoch);
    pictures.endFlush();
    sound.endFlush();
  }
  Tick tick(int ticks = 1) {
    const ClockReading reading = clock.advance(ticks);
    const VideoQueue::Pull picture = pictures.pull(reading);
    const VideoQueue::Pull heard = sound.pull(reading);
    return {static_cast<int>(picture.mediaNs / kMs), static_cast<int>(heard.mediaNs / kMs), picture.fresh};
  }
};

}  // namespace

class MediaClockTest : public QObject {
  Q_OBJECT

 private slots:
  void playPauseAndHoldKeepStep() {
    Film film;
    film.fill(0, 800);
    film.clock.setPlaying(true);
    QCOMPARE(film.tick(), (Tick{0, 0, true}));
    QCOMPARE(film.tick(), (Tick{40, 40, true}));
    QCOMPARE(film.tick(3), (Tick{160, 160, true}));
    film.clock.setPlaying(false);
    for (int i = 0; i < 5; ++i)
      QCOMPARE(film.tick(), (Tick{160, 160, false}));
    film.clock.setPlaying(true);
    QCOMPARE(film.tick(), (Tick{200, 200, true}));
    film.clock.setHold(true);
    for (int i = 0; i < 5; ++i)
      QCOMPARE(film.tick(), (Tick{200, 200, false}));
    film.clock.setHold(false);
    QCOMPARE(film.tick(), (Tick{240, 240, true}));
  }

  void afterASeekBothWaitForEachOther() {
    for (const bool playing : {true, false}) {
      Film film;
      film.fill(0, 800);
      film.clock.setPlaying(playing);
      film.tick();
      film.flush();
      QVERIFY(!film.tick().fresh);
      Film::fill(film.pictures, 90'000, 90'400, 40);
      QVERIFY(!film.tick().fresh);
      QVERIFY(!film.tick(10).fresh);
      Film::fill(film.sound, 90'000, 90'400, 20);
      QCOMPARE(film.tick(), (Tick{90'000, 90'000, true}));
      film.clock.setPlaying(true);
      QCOMPARE(film.tick(), (Tick{90'040, 90'040, true}));
    }
  }

  // The sound begins 21 ms before the pictures, as the priming of an encoder does. Each picture has its tick.
  void picturesKeepTheirTicksBesideEarlierSound() {
    Film film;
    Film::fill(film.pictures, 21, 400, 40);
    Film::fill(film.sound, 0, 400, 20);
    film.clock.setPlaying(true);
    QCOMPARE(film.clock.advance(1).timeNs, -19 * kMs);
    for (int i = 0; i < 5; ++i)
      QCOMPARE(film.clock.advance(1).timeNs, (21 + i * 40) * kMs);
  }

  void theEarlierOneSetsTheTime() {
    Film film;
    Film::fill(film.pictures, 1'080, 1'400, 40);
    Film::fill(film.sound, 1'000, 1'400, 20);
    film.clock.setPlaying(true);
    // The first picture is on show rather than black.
    QCOMPARE(film.tick(), (Tick{1'080, 1'000, true}));
    QCOMPARE(film.tick(), (Tick{1'080, 1'040, false}));
    QCOMPARE(film.tick(), (Tick{1'080, 1'080, false}));
    QCOMPARE(film.tick(), (Tick{1'120, 1'120, true}));
  }

  void loopKeepsStep() {
    Film film;
    film.clock.setPlaying(true);
    for (int loop = 0; loop < 4; ++loop) {
      film.fill(0, 200, loop * 200);
      for (int ms = 0; ms < 200; ms += 40)
        QCOMPARE(film.tick(), (Tick{ms, ms, true}));
    }
  }

  void nobodyWaitsForAQueueWithoutData() {
    Film film;
    film.clock.setPlaying(true);
    Film::fill(film.pictures, 0, 400, 40);
    QVERIFY(!film.tick().fresh);
    film.sound.markEnd(0);
    QVERIFY(film.tick().fresh);
    QCOMPARE(film.tick().pictureMs, 40);
  }

  // Otherwise the two would wait for each other: the demultiplexer for room, the clock for sound.
  void nobodyWaitsForTheOtherWhenOneIsFull() {
    MediaClock clock({25, 1});
    VideoQueue pictures(clock, {2, 0, 2});
    VideoQueue sound(clock);
    clock.setPlaying(true);
    std::thread pusher([&] { Film::fill(pictures, 0, 120, 40); });
    bool shown = false;
    QTRY_VERIFY(shown = shown || pictures.pull(clock.advance(1)).fresh);
    pictures.close();
    pusher.join();
  }

  void lateDataAreWaitedForByBoth() {
    Film film;
    film.clock.setPlaying(true);
    Film::fill(film.pictures, 0, 40, 40);
    Film::fill(film.sound, 0, 40, 40);
    film.tick();
    film.tick(50);
    Film::fill(film.pictures, 40, 80, 40);
    Film::fill(film.sound, 40, 80, 40);
    QCOMPARE(film.tick(), (Tick{40, 40, true}));
    film.fill(80, 400);
    QCOMPARE(film.tick(), (Tick{80, 80, true}));
    QCOMPARE(film.tick(), (Tick{120, 120, true}));
  }

  void aReadingFromBeforeAFlushShowsNothingNew() {
    Film film;
    film.fill(0, 400);
    film.clock.setPlaying(true);
    film.tick();
    const ClockReading old = film.clock.advance(1);
    film.flush();
    film.fill(5'000, 5'400);
    QVERIFY(!film.pictures.pull(old).fresh);
    QVERIFY(!film.sound.pull(old).fresh);
    QCOMPARE(film.tick(), (Tick{5'000, 5'000, true}));
  }

  void threadsAtOnce() {
    Film film;
    film.clock.setPlaying(true);
    const auto feed = [](VideoQueue& queue, std::atomic<bool>& stop) {
      for (int ms = 0; !stop; ms += 40)
        queue.push({{}, ms * kMs, ms * kMs});
    };
    std::atomic<bool> stop{false};
    std::thread pictures([&] { feed(film.pictures, stop); });
    std::thread sound([&] { feed(film.sound, stop); });
    std::thread control([&] {
      for (int i = 0; i < 200; ++i) {
        film.clock.setHold(i % 3 == 0);
        film.clock.setPlaying(i % 2 == 0);
        film.flush();
      }
      film.clock.setHold(false);
      film.clock.setPlaying(true);
    });
    int fresh = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (fresh < 500 && std::chrono::steady_clock::now() < deadline)
      fresh += film.tick().fresh ? 1 : 0;
    control.join();
    stop = true;
    film.pictures.close();
    film.sound.close();
    pictures.join();
    sound.join();
    QCOMPARE(fresh, 500);
  }
};

QTEST_GUILESS_MAIN(MediaClockTest)
#include "tst_media_clock.moc"
