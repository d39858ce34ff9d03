// Sizes, flags and ticks of the desk's windows and sliders.
#include <QSlider>
#include <QStackedWidget>
#include <QToolButton>
#include <QtTest>

#include "ConsoleDesk.h"
#include "console/GFloatWidgetToolButton.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "console/StripChooser.h"

class DeskWindowsTest : public QObject {
  Q_OBJECT

 private slots:
  void configWindowStaysOnTopAndCanBeMinimised() {
    ConsoleDesk desk;
    const GWidgetDisplayObjectConfig window(desk.console);
    QCOMPARE(window.windowType(), Qt::Window);
    const Qt::WindowFlags flags = window.windowFlags();
    QVERIFY(flags.testFlag(Qt::WindowStaysOnTopHint));
    QVERIFY(flags.testFlag(Qt::WindowMinimizeButtonHint));
    QVERIFY(!flags.testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(!flags.testFlag(Qt::WindowCloseButtonHint));
    QCOMPARE(window.size(), QSize(755, 276));
    QCOMPARE(window.windowTitle(), QString("Config"));
    const auto* stack = window.findChild<QStackedWidget*>("stackedWidget");
    QVERIFY(stack);
    QVERIFY(stack->indexOf(window.findChild<QWidget*>("_mediaConfigPage")) == 0);
    QVERIFY(stack->indexOf(window.findChild<QWidget*>("_stageConfigPage")) == 1);
  }

  void floatIsAFramelessWindowOfOneSize() {
    ConsoleDesk desk;
    const GFloatWidgetToolButton window(&desk.frame);
    QVERIFY(window.isWindow());
    QVERIFY(window.windowFlags().testFlag(Qt::FramelessWindowHint));
    QCOMPARE(window.minimumSize(), QSize(40, 40));
    QCOMPARE(window.maximumSize(), QSize(40, 40));
    QCOMPARE(window.button()->iconSize(), QSize(32, 32));
    QVERIFY(!window.button()->icon().isNull());
  }

  void stripHasAWindowHandleFromTheStart() {
    ConsoleDesk desk;
    const StripChooser chooser;
    QWidget holder;
    const GWidgetDisplayObject strip(desk.console, &chooser, MediaChannel, &holder);
    QVERIFY(strip.internalWinId() != 0);
  }

  void slidersShowTheirTicks() {
    ConsoleDesk desk;
    desk.create();
    const auto* seek = desk.child<QSlider>("_seekMediaHorizontalSlider");
    QCOMPARE(seek->orientation(), Qt::Horizontal);
    QCOMPARE(seek->tickPosition(), QSlider::TicksAbove);
    for (const char* name : {"_pvmVolumeVerticalSlider", "_pgmVolumeVerticalSlider"}) {
      const auto* volume = desk.child<QSlider>(name);
      QCOMPARE(volume->orientation(), Qt::Vertical);
      QCOMPARE(volume->minimum(), 0);
      QCOMPARE(volume->maximum(), 100);
      QCOMPARE(volume->tickPosition(), QSlider::TicksBothSides);
    }
  }
};

QTEST_MAIN(DeskWindowsTest)
#include "tst_desk_windows.moc"
