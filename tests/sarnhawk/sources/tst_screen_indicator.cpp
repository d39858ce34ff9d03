// The number of a screen, shown on that screen.
#include <QLabel>
#include <QScreen>
#include <QTimer>
#include <QtTest>

#include "ConsoleLook.h"
#include "sources/GDialogScreenIndicator.h"

class ScreenIndicatorTest : public QObject {
  Q_OBJECT

 private slots:
  // The sheet of the console sets the size of all fonts.
  void initTestCase() { applyConsoleLook(*qApp); }

  void showsTheNumberInTheMiddle() {
    GDialogScreenIndicator indicator(0, nullptr);
    QCOMPARE(indicator.windowType(), Qt::ToolTip);
    QCOMPARE(indicator.minimumSize(), QSize(640, 480));
    const auto* label = indicator.findChild<QLabel*>("_indicatorLabel");
    QCOMPARE(label->text(), QString("0"));
    QCOMPARE(label->lineWidth(), 10);
    QCOMPARE(label->alignment(), Qt::AlignCenter);
    indicator.showOnScreen();
    QVERIFY(indicator.isVisible());
    QCOMPARE(label->font().pointSize(), 240);
    QCOMPARE(label->font().weight(), 75);
    QCOMPARE(indicator.geometry().center(), QGuiApplication::primaryScreen()->geometry().center());
    const auto* timer = indicator.findChild<QTimer*>();
    QVERIFY(timer->isActive());
    QCOMPARE(timer->interval(), 5000);
    indicator.onWorkTimer();
    QVERIFY(!indicator.isVisible());
    QVERIFY(!timer->isActive());
  }

  void missingScreenShowsNothing() {
    GDialogScreenIndicator indicator(9, nullptr);
    indicator.showOnScreen();
    QVERIFY(!indicator.isVisible());
  }
};

QTEST_MAIN(ScreenIndicatorTest)
#include "tst_screen_indicator.moc"
