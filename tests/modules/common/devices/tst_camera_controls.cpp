// The window with the controls of a camera.
#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>
#include <QtTest>

#include "KorviaCommonUtil.h"
#include "devices/CameraControls.h"

using namespace korvia;

namespace {

struct Log {
  QList<QPair<quint32, int>> changes;
  bool isClosed = false;
};

class FakePort final : public CameraControlPort {
 public:
  explicit FakePort(Log& log) : log_(log) {}
  ~FakePort() override { log_.isClosed = true; }
  std::vector<CameraControl> controls() override {
    return {{1, "Brightness", CameraControl::Kind::Number, -10, 10, 2, 4, {}, {}},
            {2, "Automatic", CameraControl::Kind::Switch, 0, 1, 1, 1, {}, {}},
            {3, "Mains", CameraControl::Kind::Menu, 0, 2, 1, 2, {"off", "60 Hz"}, {0, 2}}};
  }
  bool set(quint32 id, int value) override {
    log_.changes.append({id, value});
    return true;
  }

 private:
  Log& log_;
};

}  // namespace

class CameraControlsTest : public QObject {
  Q_OBJECT

 private slots:
  void eachControlHasAField() {
    Log log;
    std::unique_ptr<QWidget> window(makeCameraControlWindow("Camera", std::make_unique<FakePort>(log)));
    QCOMPARE(window->windowTitle(), QString("Camera"));
    auto* number = window->findChild<QSpinBox*>();
    QCOMPARE(number->value(), 4);
    QCOMPARE(number->minimum(), -10);
    QCOMPARE(number->singleStep(), 2);
    auto* toggle = window->findChild<QCheckBox*>();
    QVERIFY(toggle->isChecked());
    auto* menu = window->findChild<QComboBox*>();
    QCOMPARE(menu->currentText(), QString("60 Hz"));
    QVERIFY(log.changes.isEmpty());
    number->setValue(6);
    toggle->setChecked(false);
    menu->setCurrentIndex(0);
    QCOMPARE(log.changes, (QList<QPair<quint32, int>>{{1, 6}, {2, 0}, {3, 0}}));
    QVERIFY(!log.isClosed);
    window.reset();
    QVERIFY(log.isClosed);
  }

  void whatIsNoCameraHasNoWindow() {
    QVERIFY(!KorviaCommonUtil::showDShowDeviceSettingPage(true, "Camera", "v4l2:by-id/not-there"));
    QVERIFY(!KorviaCommonUtil::showDShowDeviceSettingPage(true, "Camera", "v4l2:/dev/null"));
    QVERIFY(!KorviaCommonUtil::showDShowDeviceSettingPage(true, "", ""));
    QVERIFY(!KorviaCommonUtil::showDShowDeviceSettingPage(false, "Mic", "alsa:hw:0"));
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
  }
};

QTEST_MAIN(CameraControlsTest)
#include "tst_camera_controls.moc"
