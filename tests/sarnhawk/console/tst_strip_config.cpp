// The window with the settings of a channel.
#include <QLabel>
#include <QtTest>

#include "KorviaShowEvents.h"
#include "StripDesk.h"
#include "console/GWidgetDisplayObject.h"
#include "console/GWidgetDisplayObjectConfig.h"

class StripConfigTest : public QObject {
  Q_OBJECT

 private slots:
  void configButtonShowsItsChannel() {
    StripDesk desk;
    desk.slot(1).kind = SourceKindMovie;
    desk.slot(1).moviePath = "d:\\films\\opener.mp4";
    desk.strip(0x11)->onClicked_configPushButton();
    auto* window = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    QVERIFY(window->isVisible());
    QCOMPARE(window->windowTitle(), QString("Media Config - 1"));
    QCOMPARE(window->findChild<QLabel*>("_mediaInfoLabel")->text(), QString("Movie - opener.mp4"));
    desk.strip(0x100)->onClicked_configPushButton();
    QCOMPARE(window->windowTitle(), QString("Stage Config - 0"));
    window->hide();
    window->show();
    QTest::keyClick(window, Qt::Key_Escape);
    QVERIFY(!window->isVisible());
  }

  void configWindowIgnoresItsCloseAndHides() {
    StripDesk desk;
    desk.strip(0x11)->onClicked_configPushButton();
    const QPointer<GWidgetDisplayObjectConfig> window =
        desk.console->findChild<GWidgetDisplayObjectConfig*>();
    QVERIFY(window->isVisible());
    QCloseEvent event;
    QCoreApplication::sendEvent(window, &event);
    QVERIFY(!event.isAccepted());
    QVERIFY(!window->isVisible());
    desk.strip(0x11)->onClicked_configPushButton();
    QVERIFY(window->isVisible());
  }

  void configWindowStaysInPlaceForTheSameChannel() {
    StripDesk desk;
    desk.strip(0x11)->onClicked_configPushButton();
    auto* window = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    window->hide();
    window->move(3, 4);
    desk.strip(0x11)->onClicked_configPushButton();
    QVERIFY(window->isVisible());
    QCOMPARE(window->pos(), QPoint(3, 4));
  }

  void minimisedConfigWindowComesBack() {
    StripDesk desk;
    desk.strip(0x11)->onClicked_configPushButton();
    auto* window = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    for (const int id : {0x11, 0x12}) {
      window->showMinimized();
      desk.strip(id)->onClicked_configPushButton();
      QVERIFY(window->isVisible());
      QVERIFY(!window->isMinimized());
    }
  }

  void visibleConfigWindowFollowsThePreview() {
    StripDesk desk;
    desk.strip(0x11)->onClicked_configPushButton();
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x12);
    auto* window = desk.console->findChild<GWidgetDisplayObjectConfig*>();
    QCOMPARE(window->windowTitle(), QString("Media Config - 2"));
    window->hide();
    desk.report(ShowEventSelectChannel, qulonglong{0x1001}, 0x10);
    QCOMPARE(window->windowTitle(), QString("Media Config - 2"));
  }
};

QTEST_MAIN(StripConfigTest)
#include "tst_strip_config.moc"
