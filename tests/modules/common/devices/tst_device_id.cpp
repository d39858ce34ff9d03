// Identifiers of devices over a replug.
#include <QtTest>

#include "devices/DeviceId.h"

using namespace korvia;

class DeviceIdTest : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    _folder = std::make_unique<QTemporaryDir>();
    _folders = {_folder->filePath("v4l"), _folder->filePath("asound")};
    QVERIFY(QDir(_folder->path()).mkpath("v4l/by-id"));
    QVERIFY(QDir(_folder->path()).mkpath("v4l/by-path"));
    QVERIFY(QDir(_folder->path()).mkpath("asound/card2"));
  }

  void cameraKeepsItsIdUnderAnotherNumber() {
    const QString before = plugIn("by-id/usb-maker_camera_123-video-index0", "video0");
    QCOMPARE(before, QString("v4l2:by-id/usb-maker_camera_123-video-index0"));
    QCOMPARE(cameraFile(before, _folders), QFileInfo(_folder->filePath("video0")).canonicalFilePath());
    QVERIFY(QFile::remove(_folder->filePath("v4l/by-id/usb-maker_camera_123-video-index0")));
    QCOMPARE(cameraFile(before, _folders), QString());
    QCOMPARE(plugIn("by-id/usb-maker_camera_123-video-index0", "video3"), before);
    QCOMPARE(cameraFile(before, _folders), QFileInfo(_folder->filePath("video3")).canonicalFilePath());
  }

  void cameraWithoutASerialNumberGoesByItsPlug() {
    QCOMPARE(plugIn("by-path/pci-0-usb-1", "video0"), QString("v4l2:by-path/pci-0-usb-1"));
  }

  void cameraWithoutALinkGoesByItsFile() {
    const QString file = makeFile("video7");
    const QString id = stableDeviceId("Camera", {{"device.path", file}}, _folders);
    QCOMPARE(id, "v4l2:" + file);
    QCOMPARE(cameraFile(id, _folders), QFileInfo(file).canonicalFilePath());
  }

  void soundCardGoesByItsName() {
    QFile name(_folder->filePath("asound/card2/id"));
    QVERIFY(name.open(QIODevice::WriteOnly));
    name.write("USBMic\n");
    name.close();
    const DeviceProperties card{{"device.api", "alsa"}, {"element.device", "hw:2,1"}};
    QCOMPARE(stableDeviceId("Mic", card, _folders), QString("alsa:hw:CARD=USBMic,DEV=1"));
    const DeviceProperties gone{{"device.api", "alsa"}, {"element.device", "hw:3"}};
    QCOMPARE(stableDeviceId("Mic", gone, _folders), QString("alsa:hw:3"));
  }

  void otherDevicesGoByWhatLasts() {
    const DeviceProperties pulse{{"device.api", "pulse"}, {"element.device", "alsa_input.usb-x"}};
    QCOMPARE(stableDeviceId("Mic", pulse, _folders), QString("pulse:alsa_input.usb-x"));
    const DeviceProperties card{{"device.api", "decklink"}, {"persistent-id", "77"}, {"element.device", "0"}};
    QCOMPARE(stableDeviceId("Card", card, _folders), QString("decklink:77"));
    QCOMPARE(stableDeviceId("Thing", {}, _folders), QString("device:Thing"));
    QCOMPARE(cameraFile("alsa:hw:2", _folders), QString());
    QCOMPARE(cameraFile("", _folders), QString());
  }

 private:
  QString makeFile(const QString& name) const {
    QFile file(_folder->filePath(name));
    return file.open(QIODevice::WriteOnly) ? file.fileName() : QString();
  }
  /// The identifier of a camera whose link points to the device file.
  QString plugIn(const QString& link, const QString& file) const {
    const QString path = makeFile(file);
    if (!QFile::link(path, _folder->filePath("v4l/" + link)))
      return QString();
    return stableDeviceId("Camera", {{"device.path", path}}, _folders);
  }

  std::unique_ptr<QTemporaryDir> _folder;
  DeviceFolders _folders;
};

QTEST_GUILESS_MAIN(DeviceIdTest)
#include "tst_device_id.moc"
