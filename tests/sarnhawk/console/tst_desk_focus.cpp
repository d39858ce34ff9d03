// Where the keyboard's focus goes while controls are disabled or hidden.
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QtTest>

#include "ControlsDesk.h"
#include "KorviaShowEvents.h"

class DeskFocusTest : public QObject {
  Q_OBJECT

 private slots:
  void finishedSwitchLeavesTheFocusWithTheLever() {
    ControlsDesk desk;
    QVERIFY(desk.activate());
    desk.lever()->setFocus(Qt::MouseFocusReason);
    desk.report(ShowEventSwitchPosition, 1.0F);
    QVERIFY(desk.focus() == desk.lever());
    desk.press(Qt::Key_Home);
    QCOMPARE(desk.slider("_pvmVolumeVerticalSlider")->value(), 100);
    QCOMPARE(desk.slider("_pgmVolumeVerticalSlider")->value(), 100);
    desk.settle();
    QCOMPARE(desk.show.count(ShowEventVolume), 0);
  }

  void transportThatIsOffForAMomentGetsItsFocusBack() {
    ControlsDesk desk;
    QVERIFY(desk.activate());
    desk.console->onWorkTimer();
    QSlider* seek = desk.slider("_seekMediaHorizontalSlider");
    seek->setFocus(Qt::MouseFocusReason);
    desk.show.removeSource(0);
    desk.console->onWorkTimer();
    QVERIFY(desk.focus() == &desk.frame);
    // The next in the tab order is the lever, which End would switch with.
    desk.press(Qt::Key_End);
    desk.settle();
    QVERIFY(desk.show.events().empty());
    desk.source = desk.show.addSource(0);
    desk.console->onWorkTimer();
    QVERIFY(desk.focus() == seek);
    desk.press(Qt::Key_End);
    QCOMPARE(desk.source->calls, QStringList{"seek 100"});
  }

  void focusThatWentElsewhereStaysThere() {
    ControlsDesk desk;
    QVERIFY(desk.activate());
    desk.console->onWorkTimer();
    desk.slider("_seekMediaHorizontalSlider")->setFocus(Qt::MouseFocusReason);
    desk.show.removeSource(0);
    desk.console->onWorkTimer();
    desk.child<QLineEdit>("_programNameLineEdit")->setFocus(Qt::MouseFocusReason);
    desk.show.addSource(0);
    desk.console->onWorkTimer();
    QVERIFY(desk.focus() == desk.child<QLineEdit>("_programNameLineEdit"));
  }

  void volumeSlidersGetTheFocusByAClickAlone() {
    ControlsDesk desk;
    QVERIFY(desk.activate());
    for (const char* name : {"_pvmVolumeVerticalSlider", "_pgmVolumeVerticalSlider"}) {
      QSlider* volume = desk.slider(name);
      QCOMPARE(volume->focusPolicy(), Qt::ClickFocus);
      QTest::mouseClick(volume, Qt::LeftButton);
      QVERIFY(desk.focus() == volume);
      desk.press(Qt::Key_Home);
      QCOMPARE(volume->value(), 0);
    }
    // Each neighbour that is disabled hands the focus on.
    for (QWidget* neighbour : desk.console->centralWidget()->findChildren<QWidget*>()) {
      if (!neighbour->isVisible() || !neighbour->isEnabled() || !(neighbour->focusPolicy() & Qt::TabFocus))
        continue;
      neighbour->setFocus(Qt::MouseFocusReason);
      neighbour->setEnabled(false);
      QVERIFY(desk.focus() != desk.slider("_pvmVolumeVerticalSlider"));
      QVERIFY(desk.focus() != desk.slider("_pgmVolumeVerticalSlider"));
      neighbour->setEnabled(true);
    }
  }

  void waitingRecordButtonHandsNoFocusToTheStream() {
    ControlsDesk desk;
    desk.frame.activateWindow();
    QPushButton* record = desk.button("_startRecordPushButton");
    record->setFocus(Qt::TabFocusReason);
    QTest::mouseClick(record, Qt::LeftButton);
    QVERIFY(!record->isEnabled());
    // Else the next press of the space bar would start a stream.
    QVERIFY(desk.frame.focusWidget() != desk.button("_startStreamPushButton"));
    QCOMPARE(record->focusPolicy(), Qt::NoFocus);
    QCOMPARE(desk.button("_startStreamPushButton")->focusPolicy(), Qt::NoFocus);
  }
};

QTEST_MAIN(DeskFocusTest)
#include "tst_desk_focus.moc"
