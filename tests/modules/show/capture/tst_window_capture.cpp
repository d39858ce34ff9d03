// A window is shown wherever it lies and whatever lies over it, and it is found again.
#include "CaptureRig.h"
#include "PaintedWindow.h"
#include "support/VirtualDisplay.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr quint32 kBlue = 0x2040C0;
constexpr quint32 kGreen = 0x10A020;
constexpr quint32 kRed = 0xC02010;
constexpr QRect kPlace{100, 50, 200, 100};
constexpr QPoint kInside{150, 60};

CaptureRequest requestFor(const QString& id, const QString& title, const QString& program) {
  CaptureRequest request;
  request.kind = CaptureKind::Window;
  request.windowId = id;
  request.windowTitle = title;
  request.windowProgram = program;
  return request;
}

CaptureRequest requestFor(const PaintedWindow& window) {
  return requestFor(window.id(), QStringLiteral("title"), QStringLiteral("Program"));
}

}  // namespace

class tst_window_capture : public QObject {
  Q_OBJECT

 private slots:
  void init() {
    display_ = std::make_unique<VirtualDisplay>();
    QVERIFY(display_->start({640, 360}));
    qputenv("DISPLAY", display_->name().toLatin1());
  }

  void showsItWithNothingElse() {
    PaintedWindow window(kPlace, kBlue, "title", "Program");
    CaptureRig rig(requestFor(window));
    QVERIFY(rig.waitForPixel(kInside, kBlue));
    QCOMPARE(rig.picture().size(), kPlace.size());
    window.setColor(kGreen);
    QVERIFY(rig.waitForPixel(kInside, kGreen));
  }

  void goesOnWhenCovered() {
    PaintedWindow window(kPlace, kBlue, "title", "Program");
    CaptureRig rig(requestFor(window));
    QVERIFY(rig.waitForPixel(kInside, kBlue));
    PaintedWindow cover({0, 0, 640, 360}, kRed, "cover", "Other");
    window.setColor(kGreen);
    QVERIFY(rig.waitForPixel(kInside, kGreen));
    QVERIFY(rig.waitForPictures(5));
    QVERIFY(rig.waitForPixel(kInside, kGreen));
  }

  void goesOnWhenMoved() {
    PaintedWindow window(kPlace, kBlue, "title", "Program");
    CaptureRig rig(requestFor(window));
    QVERIFY(rig.waitForPixel(kInside, kBlue));
    // Most of it lies beside the screen.
    window.setPlace({600, 330, 200, 100});
    window.setColor(kGreen);
    QVERIFY(rig.waitForPixel(kInside, kGreen));
    QCOMPARE(rig.picture().size(), kPlace.size());
    QVERIFY(rig.end().isEmpty());
  }

  void followsItsSize() {
    PaintedWindow window(kPlace, kBlue, "title", "Program");
    CaptureRig rig(requestFor(window));
    QVERIFY(rig.waitForPixel(kInside, kBlue));
    window.setPlace({100, 50, 320, 241});
    QVERIFY(rig.waitForSize({320, 241}));
    QVERIFY(rig.waitForPixel({310, 230}, kBlue));
    window.setPlace({100, 50, 64, 48});
    QVERIFY(rig.waitForSize({64, 48}));
  }

  void waitsWhileItIsHidden() {
    PaintedWindow window(kPlace, kBlue, "title", "Program");
    CaptureRig rig(requestFor(window));
    QVERIFY(rig.waitForPixel(kInside, kBlue));
    window.hide();
    window.setColor(kGreen);
    window.show();
    QVERIFY(rig.waitForPixel(kInside, kGreen));
    QVERIFY(rig.end().isEmpty());
  }

  void tellsThatItWasClosed() {
    auto window = std::make_unique<PaintedWindow>(kPlace, kBlue, "title", "Program");
    const CaptureRequest request = requestFor(*window);
    CaptureRig rig(request);
    QVERIFY(rig.waitForPixel(kInside, kBlue));
    window.reset();
    QCOMPARE(rig.waitForEnd(), QStringLiteral("window was closed"));
    CaptureRig again(request);
    QCOMPARE(again.waitForEnd(), QStringLiteral("window is not open"));
  }

  void isFoundByTitleAndProgram() {
    const PaintedWindow other(kPlace, kRed, "another", "Program");
    const PaintedWindow same(kPlace, kBlue, "title", "Program");
    const PaintedWindow foreign(kPlace, kGreen, "title", "Foreign");
    CaptureRig rig(requestFor(QStringLiteral("0x99"), QStringLiteral("title"), QStringLiteral("Program")));
    QVERIFY(rig.waitForPixel(kInside, kBlue));
  }

  void anotherWindowOfTheProgramIsNotShown() {
    const PaintedWindow foreign(kPlace, kGreen, "title", "Foreign");
    const PaintedWindow another(kPlace, kRed, "another", "Program");
    CaptureRig rig(requestFor(QStringLiteral("0x99"), QStringLiteral("title"), QStringLiteral("Program")));
    QCOMPARE(rig.waitForEnd(), QStringLiteral("window is not open"));
  }

  void isKnownByItsNumberWhenItsTitleHasChanged() {
    const PaintedWindow window(kPlace, kBlue, "another", "Program");
    CaptureRig rig(requestFor(window.id(), QStringLiteral("title"), QStringLiteral("Program")));
    QVERIFY(rig.waitForPixel(kInside, kBlue));
  }

  // After a restart the number may belong to another program.
  void numberOfAnotherProgramDoesNotCount() {
    const PaintedWindow foreign(kPlace, kGreen, "title", "Foreign");
    CaptureRig rig(requestFor(foreign.id(), QStringLiteral("title"), QStringLiteral("Program")));
    QCOMPARE(rig.waitForEnd(), QStringLiteral("window is not open"));
  }

  void windowWithoutClassIsFoundByItsTitleOnly() {
    const PaintedWindow other(kPlace, kRed, "another", "");
    CaptureRig missing(requestFor(QStringLiteral("0x99"), QStringLiteral("title"), QString()));
    QCOMPARE(missing.waitForEnd(), QStringLiteral("window is not open"));
    const PaintedWindow same(kPlace, kBlue, "title", "");
    CaptureRig rig(requestFor(QStringLiteral("0x99"), QStringLiteral("title"), QString()));
    QVERIFY(rig.waitForPixel(kInside, kBlue));
  }

  void deadServerEndsIt() {
    PaintedWindow window(kPlace, kBlue, "title", "Program");
    CaptureRig rig(requestFor(window));
    QVERIFY(rig.waitForPictures(1));
    display_.reset();
    QCOMPARE(rig.waitForEnd(), QStringLiteral("x display is gone"));
  }

 private:
  std::unique_ptr<VirtualDisplay> display_;
};

QTEST_GUILESS_MAIN(tst_window_capture)
#include "tst_window_capture.moc"
