// The open buttons that float over the empty pictures of the strips.
#include <QToolButton>
#include <QtTest>

#include "StripDesk.h"
#include "console/GFloatWidgetToolButton.h"
#include "console/GWidgetDisplayObject.h"

class StripFloatsTest : public QObject {
  Q_OBJECT

 private slots:
  void floatStandsInTheMiddleOfAnEmptyPicture() {
    StripDesk desk;
    desk.strip(0x11)->onFrameTick();
    GFloatWidgetToolButton* button = desk.floatOf(1);
    QVERIFY(button->isVisible());
    QCOMPARE(button->size(), QSize(40, 40));
    const QWidget* picture = desk.picture(0x11);
    const QPoint centre =
        picture->mapToGlobal(QPoint((picture->width() - 1) / 2, (picture->height() - 1) / 2));
    const QPoint distance = button->pos() + QPoint(20, 20) - centre;
    QVERIFY2(distance.manhattanLength() <= 2, qPrintable(QString("%1").arg(distance.manhattanLength())));
    QVERIFY(button->windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(button->parentWidget(), &desk.frame);
    QVERIFY(!button->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  }

  void floatMovesWithTheWindow() {
    StripDesk desk;
    desk.strip(0x11)->onFrameTick();
    const QPoint before = desk.floatOf(1)->pos();
    desk.frame.move(desk.frame.pos() + QPoint(37, 21));
    desk.strip(0x11)->onFrameTick();
    QCOMPARE(desk.floatOf(1)->pos(), before + QPoint(37, 21));
  }

  void floatGivesWayToTheCloseButtonWhileThereIsASource() {
    StripDesk desk;
    QVERIFY(desk.button(0x11, "_closePushButton")->isHidden());
    desk.put(1, sourceOf(SourceKindMovie));
    desk.strip(0x11)->onFrameTick();
    QVERIFY(!desk.floatOf(1)->isVisible());
    QVERIFY(!desk.button(0x11, "_closePushButton")->isHidden());
    desk.show.removeSource(1);
    desk.strip(0x11)->onFrameTick();
    QVERIFY(desk.floatOf(1)->isVisible());
    QVERIFY(desk.button(0x11, "_closePushButton")->isHidden());
  }

  void floatWaitsForTheEngine() {
    ConsoleDesk desk;
    desk.create();
    desk.frame.show();
    desk.strip(0x11)->onFrameTick();
    const auto* button = desk.frame.findChildren<GFloatWidgetToolButton*>().at(1);
    QVERIFY(button->isVisible());
    QVERIFY(!button->button()->isEnabled());
    QVERIFY(desk.open());
    desk.strip(0x11)->onFrameTick();
    QVERIFY(button->button()->isEnabled());
  }

  void floatGoesWithTheWindow() {
    StripDesk desk;
    desk.strip(0x11)->onFrameTick();
    QVERIFY(desk.floatOf(1)->isVisible());
    desk.frame.hide();
    QVERIFY(!desk.floatOf(1)->isVisible());
    desk.strip(0x11)->onFrameTick();
    QVERIFY(!desk.floatOf(1)->isVisible());
    desk.frame.show();
    desk.strip(0x11)->onFrameTick();
    QVERIFY(desk.floatOf(1)->isVisible());
    desk.frame.showMinimized();
    QVERIFY(!desk.floatOf(1)->isVisible());
    desk.strip(0x11)->onFrameTick();
    QVERIFY(!desk.floatOf(1)->isVisible());
  }

  void floatComesBackFromAMinimisedWindowInFull() {
    StripDesk desk;
    desk.strip(0x11)->onFrameTick();
    // As window managers do with what belongs to a window that they minimise.
    desk.floatOf(1)->setWindowState(Qt::WindowMinimized);
    desk.frame.showMinimized();
    QVERIFY(!desk.floatOf(1)->isVisible());
    desk.frame.showNormal();
    desk.strip(0x11)->onFrameTick();
    QVERIFY(desk.floatOf(1)->isVisible());
    QVERIFY(!desk.floatOf(1)->isMinimized());
  }
};

QTEST_MAIN(StripFloatsTest)
#include "tst_strip_floats.moc"
