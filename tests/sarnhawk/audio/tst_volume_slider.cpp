// What the operator's hand does to a volume: wheel, double click; and the tool tip.
#include <QWheelEvent>
#include <QtTest>

#include "audio/GVolumeSlider.h"

class VolumeSliderTest : public QObject {
  Q_OBJECT

 private:
  static void turn(QSlider& slider, int angle) {
    QWheelEvent wheel(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, angle), Qt::NoButton, Qt::NoModifier,
                      Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&slider, &wheel);
  }

 private slots:
  void wheelMovesByTwo() {
    GVolumeSlider slider;
    QCOMPARE(slider.value(), 100);
    turn(slider, 120);
    QCOMPARE(slider.value(), 100);
    turn(slider, -120);
    QCOMPARE(slider.value(), 98);
    turn(slider, -360);
    QCOMPARE(slider.value(), 92);
    turn(slider, 120);
    QCOMPARE(slider.value(), 94);
  }

  void partsOfANotchAddUp() {
    GVolumeSlider slider;
    for (int i = 0; i < 5; ++i)
      turn(slider, -30);
    QCOMPARE(slider.value(), 98);
  }

  void answersOfTheEngineLoseNoNotch() {
    GVolumeSlider slider;
    turn(slider, -120);
    turn(slider, -120);
    {
      const QSignalBlocker blocker(slider);
      slider.setValue(98);
    }
    turn(slider, -120);
    QCOMPARE(slider.value(), 94);
    // Later the slider counts from where it stands.
    QTest::qWait(350);
    slider.setValue(50);
    turn(slider, -120);
    QCOMPARE(slider.value(), 48);
  }

  void doubleClickGoesTo100() {
    GVolumeSlider slider;
    slider.resize(30, 200);
    slider.setValue(20);
    QSignalSpy values(&slider, &QSlider::valueChanged);
    QTest::mouseDClick(&slider, Qt::LeftButton);
    QCOMPARE(slider.value(), 100);
    QVERIFY(!slider.isSliderDown());
    QCOMPARE(values.last().first().toInt(), 100);
  }

  void toolTipTellsTheGain() {
    GVolumeSlider slider;
    QVERIFY(slider.toolTip().endsWith("0.0 dB"));
    slider.setValue(50);
    QVERIFY(slider.toolTip().endsWith(" -6.0 dB"));
    const QSignalBlocker blocker(slider);
    slider.setValue(0);
    QVERIFY(slider.toolTip().endsWith(QString::fromUtf8(" -\u221E dB")));
  }
};

QTEST_MAIN(VolumeSliderTest)
#include "tst_volume_slider.moc"
