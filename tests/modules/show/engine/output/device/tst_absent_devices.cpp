// The installed elements on a machine without such devices: what is told, and that hours of retries hold
// nothing.
#include <gst/gst.h>

#include <QtTest>

#include "engine/audio/StereoBlock.h"
#include "engine/output/device/DevicePipeline.h"
#include "engine/output/device/SdiModes.h"
#include "engine/output/device/VirtualCamera.h"
#include "engine/source/GstInit.h"
#include "support/Holdings.h"

using namespace korvia;

class AbsentDevicesTest : public QObject {
  Q_OBJECT

 private:
  /// Why a device does not open.
  static QString failureOf(const DeviceSettings& settings) {
    DevicePicture picture{{64, 36}, {25, 1}};
    if (settings.kind == DeviceKind::Sdi)
      picture = findSdiMode(settings.sdiFormat)->picture;
    DevicePipeline pipeline(settings, picture, [] {});
    return pipeline.open("/dev/no-such-device") ? QString() : pipeline.failure();
  }
  static void verifyNothingIsHeld(const DeviceSettings& settings) {
    failureOf(settings);
    const int descriptors = holdingsNow().descriptors;
    const int threads = holdingsNow().threads;
    for (int i = 0; i < 10; ++i)
      failureOf(settings);
    QTRY_COMPARE(holdingsNow().descriptors, descriptors);
    QTRY_VERIFY(holdingsNow().threads <= threads);
  }

 private slots:
  void initTestCase() { startGStreamer(); }

  void withoutTheDeviceThereIsNoVirtualCamera() {
    DeviceSettings settings;
    QVERIFY(failureOf(settings).contains("/dev/no-such-device"));
    verifyNothingIsHeld(settings);
  }

  void withoutADriverThereIsNoCard() {
    GstElementFactory* factory = gst_element_factory_find("decklinkvideosink");
    if (!factory)
      QSKIP("the plugin decklink is not installed");
    gst_object_unref(factory);
    DeviceSettings settings;
    settings.kind = DeviceKind::Sdi;
    settings.cardIndex = 63;
    settings.sdiFormat = "1080i50";
    const QString failure = failureOf(settings);
    QVERIFY2(failure.contains("the card 63 does not open"), qPrintable(failure));
    verifyNothingIsHeld(settings);
  }

  void withoutThePluginThereIsNoNdi() {
    GstElementFactory* factory = gst_element_factory_find("ndisink");
    if (factory) {
      gst_object_unref(factory);
      QSKIP("the plugin ndi is installed");
    }
    DeviceSettings settings;
    settings.kind = DeviceKind::Ndi;
    settings.ndiName = "Studio";
    QCOMPARE(failureOf(settings), QString("the GStreamer plugin ndi is not installed"));
  }

  void lookingForAVirtualCameraHoldsNothing() {
    const QString found = findVirtualCamera();
    const int descriptors = holdingsNow().descriptors;
    for (int i = 0; i < 10; ++i)
      QCOMPARE(findVirtualCamera(), found);
    QCOMPARE(holdingsNow().descriptors, descriptors);
  }
};

QTEST_GUILESS_MAIN(AbsentDevicesTest)
#include "tst_absent_devices.moc"
