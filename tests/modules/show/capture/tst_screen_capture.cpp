// A screen is shown as it is, evenly, and its end is told.
#include "CaptureRig.h"
#include "PaintedWindow.h"
#include "support/VirtualDisplay.h"

using namespace korvia;
using namespace korvia::test;

namespace {

CaptureRequest screenRequest(int index = 0) {
  CaptureRequest request;
  request.kind = CaptureKind::Screen;
  request.screenIndex = index;
  return request;
}

}  // namespace

class tst_screen_capture : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    display_ = std::make_unique<VirtualDisplay>();
    QVERIFY(display_->start({640, 360}));
    qputenv("DISPLAY", display_->name().toLatin1());
  }

  void showsWhatIsOnIt() {
    PaintedWindow window({100, 50, 200, 100}, 0x2040C0, "title", "Program");
    CaptureRig rig(screenRequest());
    QVERIFY(rig.waitForPixel({150, 100}, 0x2040C0));
    QCOMPARE(rig.picture().size(), QSize(640, 360));
    QVERIFY(rig.waitForPixel({50, 20}, 0x000000));
    window.setColor(0x00FF00);
    QVERIFY(rig.waitForPixel({150, 100}, 0x00FF00));
  }

  void showsThePointer() {
    PaintedWindow window({0, 0, 640, 360}, 0x2040C0, "title", "Program");
    CaptureRig rig(screenRequest());
    window.movePointer(600, 300);
    QVERIFY(rig.waitForPixel({320, 180}, 0x2040C0));
    window.movePointer(320, 180);
    QTRY_VERIFY_WITH_TIMEOUT(hasOtherColorNear(rig.picture(), {320, 180}), kWaitMs);
    window.movePointer(600, 300);
    QTRY_VERIFY_WITH_TIMEOUT(!hasOtherColorNear(rig.picture(), {320, 180}), kWaitMs);
  }

  void stillScreenIsNotHandedOverAgain() {
    PaintedWindow window({100, 50, 200, 100}, 0x2040C0, "title", "Program");
    const CaptureRig rig(screenRequest());
    QVERIFY(rig.waitForPixel({150, 100}, 0x2040C0));
    const int before = rig.pictures();
    QVERIFY(rig.waitForPictures(20));
    QCOMPARE(rig.pictures(), before);
    window.setColor(0x00FF00);
    QVERIFY(rig.waitForPixel({150, 100}, 0x00FF00));
  }

  void stampsFollowTheRate() {
    CaptureRequest request = screenRequest();
    request.rateNumerator = 50;
    CaptureRig rig(request);
    QVERIFY(rig.waitForPictures(20));
    const auto stamps = rig.stamps();
    for (std::size_t i = 1; i < stamps.size(); ++i)
      QCOMPARE((stamps[i] - stamps[i - 1]) % 20'000'000, std::int64_t(0));
  }

  void deadServerEndsIt() {
    CaptureRig rig(screenRequest());
    QVERIFY(rig.waitForPictures(1));
    display_.reset();
    QCOMPARE(rig.waitForEnd(), QStringLiteral("x display is gone"));
  }

  void missingDisplayAndScreenAreTold() {
    CaptureRig wrongScreen(screenRequest(5));
    QCOMPARE(wrongScreen.waitForEnd(), QStringLiteral("no screen 5"));
    qunsetenv("DISPLAY");
    CaptureRig noDisplay(screenRequest());
    QCOMPARE(noDisplay.waitForEnd(), QStringLiteral("no x display"));
  }

 private:
  static bool hasOtherColorNear(const QImage& picture, const QPoint& place) {
    for (int y = 0; y < 8; ++y) {
      for (int x = 0; x < 8; ++x) {
        if ((picture.pixel(place.x() + x, place.y() + y) & 0xFFFFFF) != 0x2040C0)
          return true;
      }
    }
    return false;
  }

  std::unique_ptr<VirtualDisplay> display_;
};

QTEST_GUILESS_MAIN(tst_screen_capture)
#include "tst_screen_capture.moc"
