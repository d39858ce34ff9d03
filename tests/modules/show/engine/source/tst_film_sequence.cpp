// Which film follows: to the end or round and round, over films that are skipped, and by the buttons.
#include <QtTest>

#include "engine/source/FilmSequence.h"

using korvia::FilmSequence;

class FilmSequenceTest : public QObject {
  Q_OBJECT

 private slots:
  void endsAfterTheLastFilm() {
    FilmSequence films({"a", "b", "c"}, FilmSequence::AfterLast::Nothing);
    QCOMPARE(films.present(), QString("a"));
    QCOMPARE(films.following(0), QString("b"));
    QCOMPARE(films.following(1), QString("c"));
    QCOMPARE(films.following(2), QString());
    films.advance(1);
    QCOMPARE(films.present(), QString("c"));
    QCOMPARE(films.index(), 2);
    QCOMPARE(films.following(0), QString());
    films.goToFirst();
    QCOMPARE(films.present(), QString("a"));
  }

  void goesRound() {
    FilmSequence films({"a", "b", "c"}, FilmSequence::AfterLast::First);
    films.advance(1);
    QCOMPARE(films.following(0), QString("a"));
    QCOMPARE(films.following(1), QString("b"));
    films.advance(0);
    QCOMPARE(films.index(), 0);
  }

  void roundEachFilmIsTriedOnce() {
    FilmSequence films({"a", "b", "c"}, FilmSequence::AfterLast::First);
    QCOMPARE(films.following(2), QString("a"));
    QCOMPARE(films.following(3), QString());
    const FilmSequence alone({"a"}, FilmSequence::AfterLast::First);
    QCOMPARE(alone.following(0), QString("a"));
    QCOMPARE(alone.following(1), QString());
  }

  void buttonsGoRoundInAnyCase() {
    FilmSequence films({"a", "b", "c"}, FilmSequence::AfterLast::Nothing);
    films.step(-1);
    QCOMPARE(films.index(), 2);
    films.step(1);
    QCOMPARE(films.index(), 0);
    films.step(-5);
    QCOMPARE(films.index(), 1);
    films.step(7);
    QCOMPARE(films.index(), 2);
  }

  void emptySequenceHasNothing() {
    FilmSequence films({}, FilmSequence::AfterLast::First);
    films.step(1);
    films.step(-1);
    QCOMPARE(films.count(), 0);
    QCOMPARE(films.index(), 0);
    QCOMPARE(films.present(), QString());
    QCOMPARE(films.following(0), QString());
  }
};

QTEST_GUILESS_MAIN(FilmSequenceTest)
#include "tst_film_sequence.moc"
