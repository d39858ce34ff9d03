// The mark of a source that failed, ended or stands still, on its strip.
#include <QLabel>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaShowEvents.h"

namespace {

class OpenDesk : public ConsoleDesk {
 public:
  OpenDesk() { start(); }

  /// Lets the strip look at its source; the tool tip of the mark, or nothing while there is no mark.
  QString mark(int id) {
    strip(id)->onFrameTick();
    const auto* label = stripChild<QLabel>(id, "_sourceMarkLabel");
    return label->isVisible() ? label->toolTip() : QString();
  }
  QWidget* picture(int id) const { return stripChild<QWidget>(id, "_videoPreviewWidget"); }
  ScriptedSource* put(int index, const tagKorviaShowSourceInfo& info) {
    console->getConfig()->channels[static_cast<std::size_t>(index)].source = info;
    return show.addSource(index, info);
  }
};

tagKorviaShowSourceInfo sourceOf(int kind) {
  tagKorviaShowSourceInfo info;
  info.kind = kind;
  return info;
}

}  // namespace

class SourceMarkTest : public QObject {
  Q_OBJECT

 private slots:
  void failedSourceIsMarkedWithItsReason() {
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindImage));
    QCOMPARE(desk.mark(0x11), QString());
    source->playState = Error;
    QCOMPARE(desk.mark(0x11), QString("This source cannot be shown"));
    source->reason = "no such file";
    QCOMPARE(desk.mark(0x11), QString("Error: no such file"));
    // On preview or not.
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x11);
    QCOMPARE(desk.mark(0x11), QString("Error: no such file"));
    source->playState = Playing;
    QCOMPARE(desk.mark(0x11), QString());
    source->playState = Error;
    desk.mark(0x11);
    desk.show.removeSource(1);
    QCOMPARE(desk.mark(0x11), QString());
  }

  void endedSourceIsMarkedUntilItPlays() {
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindMovie));
    source->playState = Ended;
    QCOMPARE(desk.mark(0x11), QString("This source has ended"));
    source->playState = Playing;
    QCOMPARE(desk.mark(0x11), QString());
  }

  void sourceThatStandsStillIsMarked_data() {
    QTest::addColumn<int>("kind");
    QTest::addColumn<bool>("marked");
    for (const int kind : {1, 2, 3, 4, 7, 8, 18})
      QTest::newRow(qPrintable(QString::number(kind))) << kind << true;
    for (const int kind : {5, 6, 9, 12, 13, 14, 15})
      QTest::newRow(qPrintable(QString::number(kind))) << kind << false;
  }
  void sourceThatStandsStillIsMarked() {
    QFETCH(int, kind);
    QFETCH(bool, marked);
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(kind));
    source->frameCount = 10;
    QCOMPARE(desk.mark(0x11), QString());
    desk.passTime(1000);
    QCOMPARE(desk.mark(0x11), QString());
    desk.passTime(1);
    QCOMPARE(desk.mark(0x11), marked ? QString("No new picture for more than a second") : QString());
    ++source->frameCount;
    QCOMPARE(desk.mark(0x11), QString());
  }

  void filmOfLongPicturesIsMarkedWhenItIsLate() {
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindMovie));
    source->pictureDuration = 3 * 10'000;
    QCOMPARE(desk.mark(0x11), QString());
    desk.passTime(4000);
    QCOMPARE(desk.mark(0x11), QString());
    desk.passTime(1);
    QCOMPARE(desk.mark(0x11), QString("No new picture for more than a second"));
    ++source->frameCount;
    QCOMPARE(desk.mark(0x11), QString());
    source->pictureDuration = 400;
    desk.passTime(1041);
    QVERIFY(!desk.mark(0x11).isEmpty());
  }

  void sourceThatMayStandStillIsNotMarked_data() {
    QTest::addColumn<int>("state");
    for (const int state : {NothingSpecial, Opening, Buffering, Paused, Stopped})
      QTest::newRow(qPrintable(QString::number(state))) << state;
  }
  void sourceThatMayStandStillIsNotMarked() {
    QFETCH(int, state);
    OpenDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindMovie));
    desk.mark(0x11);
    source->playState = state;
    desk.passTime(5000);
    QCOMPARE(desk.mark(0x11), QString());
    // The second counts from when it plays.
    source->playState = Playing;
    QCOMPARE(desk.mark(0x11), QString());
    desk.passTime(1001);
    QVERIFY(!desk.mark(0x11).isEmpty());
  }

  void filmOnHoldIsNotMarked() {
    OpenDesk desk;
    tagKorviaShowSourceInfo info = sourceOf(SourceKindMovie);
    info.moviePGMAction = PGMActionPauseResume;
    desk.put(1, info);
    desk.mark(0x11);
    desk.strip(0x11)->applyOnAirRule(0x10);
    desk.passTime(5000);
    QCOMPARE(desk.mark(0x11), QString());
    desk.strip(0x11)->applyOnAirRule(0x11);
    QCOMPARE(desk.mark(0x11), QString());
    desk.passTime(1001);
    QVERIFY(!desk.mark(0x11).isEmpty());
  }

  void markCoversNoPictureAndLeavesTheTitleReadable() {
    OpenDesk desk;
    desk.put(1, sourceOf(SourceKindMovie))->playState = Error;
    const QRect pictureBefore = desk.picture(0x11)->geometry();
    QVERIFY(!desk.mark(0x11).isEmpty());
    desk.settle();
    QCOMPARE(desk.picture(0x11)->geometry(), pictureBefore);
    const auto* title = desk.stripChild<QLabel>(0x11, "_titleLabel");
    QVERIFY(title->width() >= title->fontMetrics().horizontalAdvance(title->text()));
    QVERIFY(!desk.stripChild<QLabel>(0x11, "_sourceMarkLabel")->pixmap(Qt::ReturnByValue).isNull());
  }

  void stagesAreNotMarked() {
    OpenDesk desk;
    desk.passTime(5000);
    QCOMPARE(desk.mark(0x100), QString());
  }
};

QTEST_MAIN(SourceMarkTest)
#include "tst_source_mark.moc"
