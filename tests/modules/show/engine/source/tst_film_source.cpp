// A film through its whole life: every picture once, end actions, seeks, stop, pause, hold, loops without
// seam.
#include <QtTest>
#include <numeric>

#include "SourceRig.h"

using namespace korvia;
using namespace korvia::test;

namespace {

QString clip(const char* name) {
  return QStringLiteral(MEDIA_DIR "/") + QLatin1String(name);
}

/// Numbers of `count` ticks.
std::vector<int> numbers(SourceRig& rig, int count) {
  std::vector<int> shown;
  for (int i = 0; i < count; ++i)
    shown.push_back(numberIn(rig.tick()));
  return shown;
}

/// Steps between pictures that differ.
std::vector<int> stepsOf(const std::vector<int>& shown) {
  std::vector<int> steps;
  for (std::size_t i = 1; i < shown.size(); ++i)
    steps.push_back(shown[i] - shown[i - 1]);
  return steps;
}

}  // namespace

class FilmSourceTest : public QObject {
  Q_OBJECT

 private slots:
  void aLoopThatIsPausedAtItsSeamLastsLongerThanAnOpening() {
    // Raw H.264 cannot be sought, so a loop opens it anew; paused there, nothing is pulled from its queue.
    SourceRig rig;
    rig.openFilm(clip("bare.h264"), EndActionLoop);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    numbers(rig, 47);
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    QVERIFY(!QTest::qWaitFor([&] { return rig->getPlayState() != Paused; }, 11'000));
    rig->play();
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    const std::vector<int> shown = numbers(rig, 10);
    QVERIFY(std::find(shown.begin(), shown.end(), 3) != shown.end());
  }

  void playsByItselfEveryPictureOnce_data() {
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("durationMs");
    QTest::newRow("mp4") << "clip25.mp4" << 2000;
    QTest::newRow("transport stream") << "long.ts" << 10000;
    QTest::newRow("with sound that lasts longer") << "sound.mp4" << 4000;
    QTest::newRow("two pictures") << "two_pictures.mkv" << 1000;
    QTest::newRow("avi with b pictures") << "mpeg4.avi" << 2000;
  }

  void playsByItselfEveryPictureOnce() {
    QFETCH(QString, file);
    QFETCH(int, durationMs);
    SourceRig rig;
    rig.openFilm(clip(qPrintable(file)), EndActionStop);
    QVERIFY(rig->getPlayState() == Opening || rig->getPlayState() == Playing);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    std::vector<int> shown = numbers(rig, 22);
    QCOMPARE(shown.front(), 0);
    for (int step : stepsOf(shown))
      QCOMPARE(step, 1);
    QTRY_VERIFY2(std::abs(rig.durationMs() - durationMs) <= 100, QByteArray::number(rig.durationMs()));
    QCOMPARE(rig.timeMs() / 40, 21);
    QCOMPARE(rig->getItemCount(), 1);
    QCOMPARE(rig->getItemIndex(), 0);
    QCOMPARE(*rig->getSourceInfo(), int(SourceKindMovie));
    QCOMPARE(int(rig->getObjectId()), 0x13);
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QVERIFY(state.rate > 0);
  }

  void doubleRateShowsEverySecond() {
    SourceRig rig;
    rig.openFilm(clip("clip50.mp4"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QTRY_VERIFY(rig->figures().framesDecoded >= 8);
    std::vector<int> shown;
    for (int i = 0; i < 20; ++i) {
      const qint64 decoded = rig->figures().framesDecoded;
      shown.push_back(numberIn(rig->pullFrame(1)));
      if (i > 0)
        QTRY_VERIFY(rig->figures().framesDecoded >= decoded + 2);
    }
    for (int step : stepsOf(shown))
      QCOMPARE(step, 2);
  }

  void streamWithoutTimeStampsPlays() {
    SourceRig rig;
    rig.openFilm(clip("bare.h264"), EndActionStop);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    const std::vector<int> shown = numbers(rig, 30);
    QCOMPARE(shown.front(), 0);
    for (int step : stepsOf(shown))
      QCOMPARE(step, 1);
  }

  void aGapHoldsThePictureBeforeIt() {
    SourceRig rig;
    rig.openFilm(clip("gap.mkv"), EndActionStop);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    std::vector<int> expected(20);
    std::iota(expected.begin(), expected.end(), 0);
    QCOMPARE(numbers(rig, 20), expected);
    // The pictures behind the gap are decoded by now, and wait for their time: 10 s are 250 ticks.
    QTRY_VERIFY(rig->figures().framesDecoded >= 22);
    for (int tick = 0; tick < 250; ++tick)
      QCOMPARE(numberIn(rig->pullFrame(1)), 19);
    QCOMPARE(numbers(rig, 5), (std::vector<int>{20, 21, 22, 23, 24}));
    QVERIFY(std::abs(rig.timeMs() - 10'960) <= 40);
  }

  void unevenFilmKeepsItsTimes() {
    SourceRig rig;
    rig.openFilm(clip("uneven.mkv"), EndActionStop);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    std::vector<int> expected;
    for (int i = 0; i < 40; ++i)
      expected.push_back(i < 5 ? i : std::max(4, i / 7 * 7));
    QTRY_VERIFY(rig->figures().framesDecoded >= 4);
    QCOMPARE(numbers(rig, 40), expected);
  }

  void tellsHowLongItsPictureLasts() {
    SourceRig rig;
    rig.openFilm(clip("uneven.mkv"), EndActionStop);
    QVERIFY(rig.tickUntil(Playing));
    const auto tenthMs = [&rig] {
      tagKorviaSourceLinkState state;
      rig->getState(state);
      return state.pictureDuration;
    };
    QVERIFY(rig.tickUntil([&] { return tenthMs() == 400; }));
    QVERIFY(rig.tickUntil([&] { return tenthMs() == 7 * 400; }));
  }

  void endStops() {
    SourceRig rig;
    rig.openFilm(clip("clip25.mp4"), EndActionStop);
    QVERIFY(rig.tickUntil(Ended));
    QCOMPARE(numberIn(rig->pullFrame(1)), 49);
    QCOMPARE(rig.position(), qint64(100));
    QVERIFY(rig.sink().notifies().empty());
    rig->play();
    QVERIFY(rig.tickUntil(Playing));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) < 10 && numberIn(rig.last()) >= 0; }));
    QVERIFY(rig.tickUntil(Ended));
    QCOMPARE(numberIn(rig->pullFrame(1)), 49);
  }

  void endStopsAndSwitches() {
    SourceRig rig;
    rig.openFilm(clip("clip25.mp4"), EndActionStopAndSwitch, 0x15);
    QVERIFY(rig.tickUntil(Ended));
    QTRY_COMPARE(rig.sink().notifies().size(), std::size_t(1));
    QCOMPARE(rig.sink().notifies()[0].id, 0x13);
    QCOMPARE(rig.sink().notifies()[0].what, 2);
    QCOMPARE(rig.sink().notifies()[0].param, 0x15);
    QCOMPARE(numberIn(rig->pullFrame(1)), 49);
    for (int i = 0; i < 10; ++i)
      rig->pullFrame(1);
    QCOMPARE(rig.sink().notifies().size(), std::size_t(1));
  }

  void noNotifyAfterClose() {
    SourceRig rig;
    rig.openFilm(clip("clip25.mp4"), EndActionStopAndSwitch, 0x15);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 40; }));
    rig.close();
    for (int i = 0; i < 100; ++i)
      rig->pullFrame(1);
    QVERIFY(waitForClosedSources(10'000));
    QVERIFY(rig.sink().notifies().empty());
    QCOMPARE(rig->getPlayState(), int(NothingSpecial));
  }

  void loopsWithoutSeam() {
    SourceRig rig;
    rig.openFilm(clip("clip25.mp4"), EndActionLoop);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    // In real time, so that a seam would be seen.
    auto next = std::chrono::steady_clock::now();
    int last = -1;
    int loops = 0;
    int unusual = 0;
    for (int i = 0; i < 170; ++i) {
      next += std::chrono::milliseconds(40);
      std::this_thread::sleep_until(next);
      const FrameRef frame = rig->pullFrame(1);
      QVERIFY(frame);
      const int number = numberIn(frame);
      if (last >= 0) {
        loops += number < last ? 1 : 0;
        unusual += number != (last + 1) % 50 ? 1 : 0;
      }
      last = number;
    }
    QCOMPARE(loops, 3);
    QVERIFY2(unusual <= 1, QByteArray::number(unusual));
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void loopOfAVeryShortFilmGoesOn() {
    SourceRig rig;
    rig.openFilm(clip("short.mp4"), EndActionLoop);
    int changes = 0;
    int last = -1;
    QVERIFY(rig.tickUntil([&] {
      const int number = numberIn(rig.last());
      changes += number != last ? 1 : 0;
      last = number;
      return changes > 20;
    }));
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void pauseAndPlay() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 10; }));
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    const int number = numberIn(rig->pullFrame(1));
    for (int i = 0; i < 20; ++i)
      QCOMPARE(numberIn(rig->pullFrame(1)), number);
    rig->play();
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(numberIn(rig.tick()), number + 1);
  }

  void stopRewindsToTheFirstPicture() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 10; }));
    rig->stop();
    QVERIFY(rig.tickUntil(Stopped));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 0; }));
    QCOMPARE(rig.position(), qint64(0));
    QCOMPARE(rig.timeMs(), qint64(0));
    for (int i = 0; i < 5; ++i)
      QCOMPARE(numberIn(rig.tick()), 0);
    rig->play();
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(numberIn(rig.tick()), 1);
  }

  void buttonsDuringOpeningCount() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"));
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 0; }));
  }

  void seekIsExact() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    const std::pair<int, int> places[] = {{50, 250}, {25, 125}, {99, 495}, {1, 5}, {0, 0}, {100, 499}};
    for (const auto& [percent, number] : places) {
      rig->setPosition(percent);
      QVERIFY2(rig.tickUntil([&, n = number] { return numberIn(rig.last()) == n; }),
               QByteArray::number(percent));
      QTRY_COMPARE(rig.position(), qint64(percent));
      QCOMPARE(rig->getPlayState(), int(Paused));
    }
    rig->setPosition(-5);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 0; }));
    rig->setPosition(1'000);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 499; }));
  }

  void playGoesOnAfterASeek() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    rig->setPosition(50);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 250; }));
    const int number = numberIn(rig.tick());
    QVERIFY(number < 300);
    QCOMPARE(numberIn(rig.tick()), number + 1);
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void newestSeekWins() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"));
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    rig->pause();
    QElapsedTimer timer;
    timer.start();
    for (int percent = 0; percent <= 80; ++percent)
      rig->setPosition(percent);
    QVERIFY(timer.elapsed() < 100);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 400; }));
    for (int i = 0; i < 10; ++i)
      QCOMPARE(numberIn(rig.tick()), 400);
  }

  void seekAfterTheEndShowsThePictureThere() {
    SourceRig rig;
    rig.openFilm(clip("clip25.mp4"), EndActionStop);
    QVERIFY(rig.tickUntil(Ended));
    rig->setPosition(50);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 25; }));
    QCOMPARE(rig->getPlayState(), int(Paused));
    rig->play();
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 26; }));
  }

  void seekBehindTheLastPicture() {
    SourceRig rig;
    rig.openFilm(clip("sound.mp4"), EndActionStop);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    rig->setPosition(75);
    QVERIFY(rig.tickUntil(Ended));
    QCOMPARE(numberIn(rig->pullFrame(1)), 49);
  }

  void isDecodedFarAheadInSteadyPlayAndLessNearTheEnd() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"), EndActionStop);
    const auto queued = [&rig] { return rig->figures().framesQueued; };
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QTRY_COMPARE(queued(), qint64(5));
    QVERIFY(rig.tickUntil([&] { return queued() == 8; }));
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    rig->setPosition(97);
    QVERIFY(rig.tickUntilPicture(485));
    rig->play();
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    for (int i = 0; i < 5; ++i) {
      rig.tick();
      QTRY_COMPARE(queued(), qint64(5));
    }
  }

  void atRestItTellsTheRateThatPlayWillBring() {
    SourceRig rig;
    rig.openFilm(clip("clip24.mkv"), EndActionStop);
    QVERIFY(rig.tickUntilPicture(3));
    const auto nothingArrives = [&rig] { return rig->figures().framesPerSecond == 0; };
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    QTRY_VERIFY(nothingArrives());
    QVERIFY(qAbs(rig.linkRate() - 24) < 0.01);
    rig->stop();
    QVERIFY(rig.tickUntil(Stopped));
    QTRY_VERIFY(nothingArrives());
    QVERIFY(qAbs(rig.linkRate() - 24) < 0.01);
    rig->setHold(true);
    rig->play();
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QTRY_VERIFY(nothingArrives());
    QVERIFY(qAbs(rig.linkRate() - 24) < 0.01);
    rig->setHold(false);
    QVERIFY(rig.tickUntil(Ended));
    QTRY_VERIFY(nothingArrives());
    QCOMPARE(rig.linkRate(), 0.0F);
    rig.close();
    QCOMPARE(rig.linkRate(), 0.0F);
  }

  void holdFreezesWithoutPausing() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 5; }));
    rig->setHold(true);
    const int number = numberIn(rig->pullFrame(1));
    for (int i = 0; i < 20; ++i)
      QCOMPARE(numberIn(rig->pullFrame(1)), number);
    QCOMPARE(rig->getPlayState(), int(Playing));
    rig->setHold(false);
    QCOMPARE(numberIn(rig.tick()), number + 1);
  }

  void pictureOfTheRenderSizeIsNotCopied() {
    // A decoder's picture has padding of its own; one out of the pool starts its rows at the pool's stride.
    SourceRig same({320, 180});
    same.openFilm(clip("long.mp4"));
    QVERIFY(same.tickUntil([&] { return same.last(); }));
    const std::ptrdiff_t pooled =
        static_cast<std::ptrdiff_t>(same.last()->stride(Frame::Y)) * same.last()->planeHeight(Frame::Y);
    QVERIFY(same.last()->plane(Frame::U) - same.last()->plane(Frame::Y) != pooled);
    SourceRig other({160, 90});
    other.openFilm(clip("long.mp4"));
    QVERIFY(other.tickUntil([&] { return other.last(); }));
    QCOMPARE(other.last()->width(), 160);
    QCOMPARE(other.last()->plane(Frame::U) - other.last()->plane(Frame::Y),
             static_cast<std::ptrdiff_t>(other.last()->stride(Frame::Y)) * 90);
  }

  void pictureOutlivesItsFilm() {
    FrameRef kept;
    {
      SourceRig rig;
      rig.openFilm(clip("long.mp4"));
      QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) == 3; }));
      kept = rig.last();
    }
    QCOMPARE(numberIn(kept), 3);
  }

  void closeWhileBusy() {
    for (int i = 0; i < 10; ++i) {
      SourceRig rig;
      rig.openFilm(clip("long.mp4"));
      if (i % 3 == 1)
        QTRY_COMPARE(rig->getPlayState(), int(Playing));
      if (i % 3 == 2)
        rig->setPosition(50);
      QElapsedTimer timer;
      timer.start();
      rig.close();
      QVERIFY(timer.elapsed() < 100);
      rig.drop();
      QVERIFY(waitForClosedSources(10'000));
    }
  }
};

QTEST_GUILESS_MAIN(FilmSourceTest)
#include "tst_film_source.moc"
