#include <QProxyStyle>
#include <QStyleOptionSlider>
#include <QtTest>

#include "console/GCleanlooksStyle.h"
#include "console/GSlider.h"

namespace {

QStyleOptionSlider leverOption() {
  QStyleOptionSlider option;
  option.rect = QRect(0, 0, 50, 300);
  option.orientation = Qt::Vertical;
  option.minimum = 0;
  option.maximum = 10000;
  option.upsideDown = true;
  option.sliderPosition = 5000;
  option.sliderValue = 5000;
  option.tickPosition = QSlider::TicksBothSides;
  option.tickInterval = 100;
  return option;
}

}  // namespace

class TestSlider : public QObject {
  Q_OBJECT

 private slots:
  void tickmarkOffsetIsHalfTheOverhangLess_data();
  void tickmarkOffsetIsHalfTheOverhangLess();
  void otherMetricsAreTheBaseStyles();
  void grooveAndHandleAreWidened_data();
  void grooveAndHandleAreWidened();
  void otherControlsAreTheBaseStyles();
  void sliderOwnsItsStyle();
  void sliderOutlivesItsStyleUnderAStyleSheet();
  void handleIsDrawnAtTheValue();

 private:
  QProxyStyle _base{QStringLiteral("fusion")};
};

void TestSlider::tickmarkOffsetIsHalfTheOverhangLess_data() {
  QTest::addColumn<int>("overhang");
  QTest::addColumn<int>("less");
  QTest::newRow("0") << 0 << 0;
  QTest::newRow("1") << 1 << 0;
  QTest::newRow("5") << 5 << 2;
  QTest::newRow("6") << 6 << 3;
}

void TestSlider::tickmarkOffsetIsHalfTheOverhangLess() {
  QFETCH(int, overhang);
  QFETCH(int, less);
  GCleanlooksStyle style(overhang);
  const QStyleOptionSlider option = leverOption();
  QCOMPARE(style.pixelMetric(QStyle::PM_SliderTickmarkOffset, &option),
           _base.pixelMetric(QStyle::PM_SliderTickmarkOffset, &option) - less);
}

void TestSlider::otherMetricsAreTheBaseStyles() {
  GCleanlooksStyle style(6);
  const QStyleOptionSlider option = leverOption();
  for (const auto metric : {QStyle::PM_SliderLength, QStyle::PM_SliderThickness, QStyle::PM_ButtonMargin})
    QCOMPARE(style.pixelMetric(metric, &option), _base.pixelMetric(metric, &option));
}

void TestSlider::grooveAndHandleAreWidened_data() {
  QTest::addColumn<int>("subControl");
  QTest::newRow("groove") << int(QStyle::SC_SliderGroove);
  QTest::newRow("handle") << int(QStyle::SC_SliderHandle);
}

void TestSlider::grooveAndHandleAreWidened() {
  QFETCH(int, subControl);
  const auto part = QStyle::SubControl(subControl);
  GCleanlooksStyle wide(6);
  GCleanlooksStyle plain(0);
  const QStyleOptionSlider option = leverOption();
  const QRect before = plain.subControlRect(QStyle::CC_Slider, &option, part);
  const QRect after = wide.subControlRect(QStyle::CC_Slider, &option, part);
  QVERIFY(!before.isEmpty());
  QCOMPARE(after.left(), before.left() - 6);
  QCOMPARE(after.right(), before.right() + 6);
  QCOMPARE(after.height(), before.height());
}

void TestSlider::otherControlsAreTheBaseStyles() {
  GCleanlooksStyle style(6);
  QStyleOptionSlider option = leverOption();
  QCOMPARE(style.subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarGroove),
           _base.subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarGroove, nullptr));
}

void TestSlider::sliderOwnsItsStyle() {
  auto* slider = new GSlider(6);
  const QPointer<QStyle> style = slider->style();
  QVERIFY(qobject_cast<GCleanlooksStyle*>(style));
  delete slider;
  QVERIFY(style.isNull());
}

void TestSlider::sliderOutlivesItsStyleUnderAStyleSheet() {
  QWidget window;
  window.setStyleSheet("QWidget { color: #d7dce3; font-size: 9pt; }");
  auto* slider = new GSlider(6, &window);
  slider->resize(50, 300);
  window.show();
  delete slider;
  QVERIFY(window.findChildren<GSlider*>().isEmpty());
}

void TestSlider::handleIsDrawnAtTheValue() {
  GSlider slider(6);
  QPalette dark;
  for (const auto role : {QPalette::Window, QPalette::Button, QPalette::Dark, QPalette::Midlight})
    dark.setColor(role, QColor(20, 23, 28));
  dark.setColor(QPalette::WindowText, QColor(215, 220, 227));
  dark.setColor(QPalette::BrightText, Qt::white);
  slider.setPalette(dark);
  slider.setOrientation(Qt::Vertical);
  slider.setRange(0, 10000);
  slider.resize(50, 301);
  slider.setValue(5000);
  const QImage middle = slider.grab().toImage();
  QVERIFY(qGray(middle.pixel(25, 150)) > 200);
  QVERIFY(qGray(middle.pixel(25, 10)) < 60);
  slider.setValue(10000);
  const QImage top = slider.grab().toImage();
  QVERIFY(qGray(top.pixel(25, 150)) < 60);
}

QTEST_MAIN(TestSlider)
#include "tst_slider.moc"
