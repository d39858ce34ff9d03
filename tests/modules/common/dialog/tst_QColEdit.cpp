// The colour editor: each way of choosing changes all others.
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QtTest>

#include "QColEdit.h"
#include "dialog/HueSaturationField.h"

class ColEditTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, _folder.path());
    QSettings("KorviaMix").clear();
  }

  void showsTheColorInEveryField() {
    QColEdit editor;
    editor.setColor(QColor(0, 128, 255, 64));
    QCOMPARE(spin(editor, "_redSpinBox")->value(), 0);
    QCOMPARE(spin(editor, "_greenSpinBox")->value(), 128);
    QCOMPARE(spin(editor, "_blueSpinBox")->value(), 255);
    QCOMPARE(spin(editor, "_alphaSpinBox")->value(), 64);
    QCOMPARE(hex(editor)->text(), QString("#0080FF40"));
    QCOMPARE(field(editor)->hue(), 209);
    QCOMPARE(field(editor)->saturation(), 255);
    QCOMPARE(editor.findChild<QSlider*>("_valueSlider")->value(), 255);
    editor.setColor(QColor());
    QCOMPARE(editor.color().rgba(), QColor(0, 128, 255, 64).rgba());
  }

  void fieldKeepsBrightnessAndAlpha() {
    QColEdit editor;
    editor.resize(560, 380);
    editor.show();
    editor.setColor(QColor(100, 0, 0, 50));
    HueSaturationField* place = field(editor);
    QTest::mouseClick(place, Qt::LeftButton, Qt::NoModifier, QPoint(place->width() / 3, 0));
    QVERIFY(qAbs(editor.color().hsvHue() - 120) <= 2);
    QCOMPARE(editor.color().hsvSaturation(), 255);
    QCOMPARE(editor.color().value(), 100);
    QCOMPARE(editor.color().alpha(), 50);
    QTest::mouseClick(place, Qt::LeftButton, Qt::NoModifier, QPoint(place->width() / 3, place->height() - 1));
    QVERIFY(editor.color().hsvSaturation() <= 2);
  }

  void markStaysWhereGreyHasNoHue() {
    QColEdit editor;
    editor.setColor(QColor::fromHsv(200, 255, 255));
    editor.findChild<QSlider*>("_valueSlider")->setValue(0);
    QCOMPARE(editor.color().rgb(), qRgb(0, 0, 0));
    editor.findChild<QSlider*>("_valueSlider")->setValue(255);
    QCOMPARE(editor.color().rgb(), QColor::fromHsv(200, 255, 255).rgb());
  }

  void readsHexadecimalText_data() {
    QTest::addColumn<QString>("text");
    QTest::addColumn<uint>("argb");
    QTest::newRow("with alpha") << "#0102037f" << 0x7f010203U;
    QTest::newRow("without alpha") << "#a0b0c0" << 0xffa0b0c0U;
    QTest::newRow("without hash") << "A0B0C0" << 0xffa0b0c0U;
    QTest::newRow("unfinished") << "#a0b0c" << 0xff112233U;
    QTest::newRow("letters") << "#gg0000" << 0xff112233U;
    QTest::newRow("empty") << "" << 0xff112233U;
  }
  void readsHexadecimalText() {
    QFETCH(QString, text);
    QFETCH(uint, argb);
    QColEdit editor;
    editor.setColor(QColor(0x11, 0x22, 0x33));
    hex(editor)->clear();
    QTest::keyClicks(hex(editor), text);
    QCOMPARE(editor.color().rgba(), QRgb{argb});
    QCOMPARE(hex(editor)->text(), text);
  }

  void numbersChangeTheColor() {
    QColEdit editor;
    QSignalSpy changed(&editor, &QColEdit::colorChanged);
    spin(editor, "_greenSpinBox")->setValue(200);
    spin(editor, "_alphaSpinBox")->setValue(10);
    QCOMPARE(editor.color().rgba(), qRgba(0, 200, 0, 10));
    QCOMPARE(changed.count(), 2);
  }

  void acceptedColorsAreOfferedAgain() {
    for (int n = 0; n < 16; ++n) {
      QColEdit editor;
      editor.setColor(QColor(n, 0, 0));
      editor.accept();
    }
    {
      QColEdit editor;
      editor.setColor(QColor(10, 0, 0));
      editor.accept();
      editor.setColor(QColor(1, 2, 3));
      editor.reject();
    }
    QColEdit editor;
    auto* recent = editor.findChild<QListWidget*>("_recentListWidget");
    QCOMPARE(recent->count(), 14);
    QCOMPARE(recent->item(0)->toolTip(), QString("#0A0000FF"));
    QCOMPARE(recent->item(1)->toolTip(), QString("#0F0000FF"));
    emit recent->itemPressed(recent->item(1));
    QCOMPARE(editor.color(), QColor(15, 0, 0));
  }

  void eyedropperTakesThePixelUnderTheClick() {
    QWidget target;
    target.setPalette(QColor(10, 200, 30));
    target.setGeometry(20, 20, 100, 100);
    target.show();
    QVERIFY(QTest::qWaitForWindowExposed(&target));
    QColEdit editor;
    editor.setColor(QColor(0, 0, 0, 99));
    editor.show();
    editor.findChild<QPushButton*>("_dropperPushButton")->click();
    auto* grabber = editor.findChild<QLabel*>("_swatchLabel");
    QCOMPARE(QWidget::mouseGrabber(), grabber);
    const QPoint place = target.mapToGlobal(QPoint(50, 50));
    QMouseEvent press(QEvent::MouseButtonPress, grabber->mapFromGlobal(place), place, Qt::LeftButton,
                      Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(grabber, &press);
    QCOMPARE(QWidget::mouseGrabber(), nullptr);
    QCOMPARE(editor.color().rgba(), qRgba(10, 200, 30, 99));
    QVERIFY(!editor.findChild<QPushButton*>("_dropperPushButton")->isChecked());
  }

  void escapeEndsTheEyedropperFirst() {
    QColEdit editor;
    editor.show();
    editor.findChild<QPushButton*>("_dropperPushButton")->click();
    QTest::keyClick(&editor, Qt::Key_Escape);
    QCOMPARE(QWidget::mouseGrabber(), nullptr);
    QVERIFY(editor.isVisible());
    QTest::keyClick(&editor, Qt::Key_Escape);
    QVERIFY(!editor.isVisible());
  }

 private:
  static QSpinBox* spin(const QColEdit& editor, const char* name) {
    return editor.findChild<QSpinBox*>(QLatin1String(name));
  }
  static QLineEdit* hex(const QColEdit& editor) { return editor.findChild<QLineEdit*>("_hexLineEdit"); }
  static HueSaturationField* field(const QColEdit& editor) { return editor.findChild<HueSaturationField*>(); }

  const QTemporaryDir _folder;
};

QTEST_MAIN(ColEditTest)
#include "tst_QColEdit.moc"
