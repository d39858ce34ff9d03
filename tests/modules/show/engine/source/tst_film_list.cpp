// A list of films as the operator uses it: its buttons in every state, what it does at its end, and films in
// it that cannot be played.
#include <QtTest>

#include "SourceRig.h"

using namespace korvia;
using namespace korvia::test;

namespace {

QString clip(const char* name) {
  return QStringLiteral(MEDIA_DIR "/") + QLatin1String(name);
}

/// Films whose pictures count from 0, from 100 and from 200.
QStringList three() {
  return {clip("clip25.mp4"), clip("second.mkv"), clip("third.mp4")};
}

/// Ticks until a film plays whose pictures count from `first`. There is a picture at every tick.
bool playsFrom(SourceRig& rig, int first) {
  bool black = false;
  const bool plays = rig.tickUntil([&] {
    black = black || !rig.last();
    const int number = numberIn(rig.last());
    return rig->getPlayState() == Playing && number >= first && number < first + 50;
  });
  return plays && !black;
}

/// The picture of a list that stands still: the same one for some ticks.
int standsAt(SourceRig& rig) {
  const int number = numberIn(rig.tick());
  for (int i = 0; i < 5; ++i) {
    if (numberIn(rig.tick()) != number)
      return -1;
  }
  return number;
}

}  // namespace

class FilmListTest : public QObject {
  Q_OBJECT

 private slots:
  void tellsOfTheFilmOnShow() {
    SourceRig rig;
    rig.openFilmList({clip("clip25.mp4"), clip("large.mp4"), clip("long.mp4")}, EndActionStop);
    QCOMPARE(rig->getItemCount(), 3);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 10; }));
    QCOMPARE(rig->getItemIndex(), 0);
    QTRY_COMPARE(rig.durationMs(), qint64(2000));
    QCOMPARE(rig->figures().description, QString("clip25.mp4 (1/3), 320 x 180"));
    QVERIFY(rig.tickUntil([&] { return rig->getItemIndex() == 1; }));
    QTRY_COMPARE(rig->figures().description, QString("large.mp4 (2/3), 640 x 360"));
    QVERIFY(rig.tickUntil([&] { return rig->getItemIndex() == 2 && numberIn(rig.last()) >= 3; }));
    QTRY_COMPARE(rig.durationMs(), qint64(20'000));
    QVERIFY(rig.timeMs() < 2'000);
    rig->setPosition(50);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 250; }));
    QCOMPARE(rig->getItemIndex(), 2);
    QVERIFY(rig.position() >= 50);
  }

  void buttonsGoRoundWhilePlaying() {
    SourceRig rig;
    rig.openFilmList(three());
    QVERIFY(rig.tickUntilPicture(0));
    for (int index : {1, 2, 0}) {
      rig->next();
      QVERIFY(playsFrom(rig, index * 100));
      QCOMPARE(rig->getItemIndex(), index);
    }
    for (int index : {2, 1, 0}) {
      rig->prev();
      QVERIFY(playsFrom(rig, index * 100));
      QCOMPARE(rig->getItemIndex(), index);
    }
  }

  void buttonsPressedFastAddUp() {
    SourceRig rig;
    rig.openFilmList(three());
    QVERIFY(rig.tickUntilPicture(0));
    rig->next();
    rig->next();
    rig->next();
    rig->prev();
    QVERIFY(playsFrom(rig, 200));
    QCOMPARE(rig->getItemIndex(), 2);
  }

  void pausedStaysPausedAtTheFirstPicture() {
    SourceRig rig;
    rig.openFilmList(three());
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 5; }));
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    rig->next();
    QVERIFY(rig.tickUntilPicture(100));
    QCOMPARE(standsAt(rig), 100);
    QCOMPARE(rig->getPlayState(), int(Paused));
    QCOMPARE(rig.timeMs(), qint64(0));
    rig->prev();
    QVERIFY(rig.tickUntilPicture(0));
    QCOMPARE(rig->getPlayState(), int(Paused));
    rig->play();
    QVERIFY(playsFrom(rig, 0));
  }

  void stoppedStaysStoppedAtTheFirstPicture() {
    SourceRig rig;
    rig.openFilmList(three());
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 5; }));
    // The stop that follows the button at once does not swallow it.
    rig->next();
    rig->stop();
    QVERIFY(rig.tickUntil(Stopped));
    QVERIFY(rig.tickUntilPicture(100));
    rig->prev();
    QVERIFY(rig.tickUntilPicture(0));
    QCOMPARE(standsAt(rig), 0);
    QCOMPARE(rig->getPlayState(), int(Stopped));
    rig->play();
    QVERIFY(playsFrom(rig, 0));
  }

  void theNextFilmComesAfterTheOneThatWasChosen() {
    SourceRig rig;
    rig.openFilmList(three());
    QVERIFY(rig.tickUntilPicture(0));
    rig->prev();
    QVERIFY(playsFrom(rig, 200));
    QVERIFY(playsFrom(rig, 0));
    QVERIFY(playsFrom(rig, 100));
  }

  void holdKeepsTheFilmThatWasChosen() {
    SourceRig rig;
    rig.openFilmList(three());
    QVERIFY(rig.tickUntilPicture(0));
    rig->setHold(true);
    rig->next();
    QVERIFY(rig.tickUntilPicture(100));
    QCOMPARE(standsAt(rig), 100);
    rig->setHold(false);
    QVERIFY(playsFrom(rig, 101));
  }

  void endStops() {
    SourceRig rig;
    rig.openFilmList({clip("second.mkv"), clip("clip25.mp4")}, EndActionStop, 0x15);
    QVERIFY(rig.tickUntil(Ended));
    QCOMPARE(numberIn(rig->pullFrame(1)), 49);
    QCOMPARE(rig->getItemIndex(), 1);
    QVERIFY(rig.sink().notifies().empty());
    rig->play();
    QVERIFY(playsFrom(rig, 100));
    QCOMPARE(rig->getItemIndex(), 0);
  }

  void endStopsAndSwitches() {
    SourceRig rig;
    rig.openFilmList({clip("second.mkv"), clip("clip25.mp4")}, EndActionStopAndSwitch, 0x15);
    QVERIFY(rig.tickUntil(Ended));
    QCOMPARE(rig->getItemIndex(), 1);
    QTRY_COMPARE(rig.sink().notifies().size(), std::size_t(1));
    QCOMPARE(rig.sink().notifies()[0].param, 0x15);
  }

  void endLoops() {
    SourceRig rig;
    rig.openFilmList({clip("clip25.mp4"), clip("second.mkv")}, EndActionLoop);
    for (int round = 0; round < 2; ++round) {
      QVERIFY(playsFrom(rig, 0) || round == 0);
      QVERIFY(playsFrom(rig, 100));
    }
    QVERIFY(rig.sink().notifies().empty());
  }

  void buttonsAfterTheEndStop() {
    SourceRig rig;
    rig.openFilmList({clip("second.mkv"), clip("clip25.mp4")}, EndActionStop);
    QVERIFY(rig.tickUntil(Ended));
    rig->next();
    QVERIFY(rig.tickUntilPicture(100));
    QCOMPARE(rig->getPlayState(), int(Stopped));
    QCOMPARE(rig->getItemIndex(), 0);
  }

  void brokenFilmsAreSkipped() {
    WarningKeeper log;
    SourceRig rig;
    rig.openFilmList({clip("text.mp4"), clip("clip25.mp4"), clip("not_there.mp4"), clip("third.mp4")});
    QVERIFY(rig.tickUntilPicture(0));
    QCOMPARE(rig->getItemIndex(), 1);
    QCOMPARE(rig.failureReason(), QString());
    QVERIFY(playsFrom(rig, 200));
    QTRY_COMPARE(rig->getItemIndex(), 3);
    QCOMPARE(log.lines().size(), 2);
    // The buttons skip them in their own direction.
    rig->next();
    QVERIFY(playsFrom(rig, 0));
    rig->prev();
    QVERIFY(playsFrom(rig, 200));
    rig->prev();
    QVERIFY(playsFrom(rig, 0));
  }

  void aBrokenFilmIsLoggedOnceWhileTheListGoesRound() {
    WarningKeeper log;
    SourceRig rig;
    rig.openFilmList({clip("clip25.mp4"), clip("text.mp4"), clip("second.mkv")});
    for (int round = 0; round < 3; ++round) {
      QVERIFY(rig.tickUntilPicture(20));
      QVERIFY(rig.tickUntilPicture(120));
    }
    QCOMPARE(log.lines().size(), 1);
  }

  void aFilmThatFailsInTheMiddleIsLeft() {
    SourceRig rig;
    rig.openFilmList({clip("truncated.mp4"), clip("second.mkv")}, EndActionStop);
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 0; }));
    QVERIFY(playsFrom(rig, 100));
    QVERIFY(rig.tickUntil(Ended));
  }

  void nothingButBrokenFilmsIsAnError() {
    WarningKeeper log;
    SourceRig rig;
    rig.openFilmList({clip("not_there.mp4"), clip("text.mp4"), clip("sound_only.m4a")});
    QVERIFY(rig.tickUntil(Error));
    QCOMPARE(log.lines().size(), 3);
    QVERIFY(!rig.failureReason().isEmpty());
    QVERIFY(log.lines().last().endsWith(" : " + rig.failureReason()));
    QVERIFY(!rig->pullFrame(1));
    QCOMPARE(rig.linkRate(), 0.0F);
    // Each button is another attempt.
    rig->prev();
    QTRY_COMPARE(log.lines().size(), 6);
    QVERIFY(rig.tickUntil(Error));
    rig->play();
    QTRY_COMPARE(log.lines().size(), 9);
    QVERIFY(rig.tickUntil(Error));
    rig->stop();
    QVERIFY(rig.tickUntil(Stopped));
  }

  void theEmptyListIsAnError() {
    WarningKeeper log;
    SourceRig rig;
    rig.openFilmList({});
    QVERIFY(rig.tickUntil(Error));
    QCOMPARE(rig.failureReason(), QString("the list is empty"));
    QCOMPARE(log.lines().size(), 1);
    QCOMPARE(rig->getItemCount(), 0);
    QCOMPARE(rig->getItemIndex(), 0);
    rig->next();
    rig->prev();
    rig->setPosition(50);
    rig->play();
    QTRY_COMPARE(log.lines().size(), 2);
    QVERIFY(rig.tickUntil(Error));
    QVERIFY(!rig->pullFrame(1));
  }

  void aSingleFilmHasNoNeighbours() {
    SourceRig rig;
    rig.openFilm(clip("long.mp4"));
    QVERIFY(rig.tickUntil([&] { return numberIn(rig.last()) >= 10; }));
    rig->pause();
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    const int number = numberIn(rig->pullFrame(1));
    rig->next();
    rig->prev();
    rig->play();
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(numberIn(rig.tick()), number + 1);
  }

  void closeWhileItGoesOn() {
    for (int i = 0; i < 6; ++i) {
      SourceRig rig;
      rig.openFilmList(three());
      if (i % 2)
        QVERIFY(rig.tickUntilPicture(0));
      rig->next();
      QElapsedTimer timer;
      timer.start();
      rig.close();
      QVERIFY(timer.elapsed() < 100);
      rig.drop();
      QVERIFY(waitForClosedSources(10'000));
    }
  }
};

QTEST_GUILESS_MAIN(FilmListTest)
#include "tst_film_list.moc"
