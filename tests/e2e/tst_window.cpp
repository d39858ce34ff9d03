// The window is resized, taken off the screen and brought back while the show runs.
#include <QtTest>
#include <csignal>

#include "Desk.h"

using namespace korvia::test;

class TestWindow : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void cleanupTestCase();
  void init();
  void picturesFollowTheSize();
  void aRowOfSizesDoesNoHarm();
  void picturesComeBackAfterUnmapping();
  void picturesComeBackAfterMinimising();

 private:
  bool resize(const QSize& size);
  bool map(bool visible);
  /// The whole picture window holds a picture in the middle, and it moves.
  bool allPicturesRun();

  VirtualDisplay display_;
  std::unique_ptr<KorviaProcess> korvia_;
  std::unique_ptr<Desk> desk_;
  quint64 frame_ = 0;
};

void TestWindow::initTestCase() {
  // Larger than the desk, so that the window has room to grow; without a window manager it stays where it is.
  QVERIFY(display_.start({1920, 1080}));
  korvia_ = std::make_unique<KorviaProcess>(display_);
  desk_ = std::make_unique<Desk>(display_, *korvia_);
  QVERIFY(korvia_->startShow());
  const auto frame = display_.findWindow("Korvia Sarnhawk");
  QVERIFY(frame.has_value());
  frame_ = *frame;
  QVERIFY(display_.xdotool({"windowmove", QString::number(frame_), "0", "0"}).has_value());
  QVERIFY(allPicturesRun());
}

void TestWindow::init() {
  QVERIFY2(korvia_->isRunning(), qPrintable(korvia_->trouble()));
}

void TestWindow::cleanupTestCase() {
  korvia_->sendSignal(SIGTERM);
  QVERIFY(korvia_->waitForExit());
  QCOMPARE(korvia_->trouble(), QString());
}

bool TestWindow::resize(const QSize& size) {
  return display_
      .xdotool({"windowsize", QString::number(frame_), QString::number(size.width()),
                QString::number(size.height())})
      .has_value();
}

bool TestWindow::map(bool visible) {
  return display_.xdotool({visible ? "windowmap" : "windowunmap", QString::number(frame_)}).has_value();
}

bool TestWindow::allPicturesRun() {
  for (const quint64 window : {desk_->preview(), desk_->program(), desk_->strip(0)}) {
    if (!desk_->showsPicture(window) || !desk_->isMoving(window))
      return false;
  }
  return true;
}

void TestWindow::picturesFollowTheSize() {
  const QRect before = display_.geometryOf(desk_->program());
  const int from = korvia_->blackBox().lines().size();
  QVERIFY(resize({1900, 1060}));
  const int resized = korvia_->blackBox().waitFor(line("post", "ShowEventResizeWindow", {0x1002}), from);
  QVERIFY(resized >= 0);
  QVERIFY(korvia_->blackBox().waitFor(line("post", "ShowEventResizeWindow", {0x1001}), from) >= 0);
  QVERIFY(korvia_->blackBox().waitFor(line("post", "ShowEventResizeWindow", {0x10}), from) >= 0);
  QTRY_VERIFY(display_.geometryOf(desk_->program()).width() > before.width() + 100);
  QVERIFY(allPicturesRun());
  // The picture reaches all four corners of the larger window.
  const QImage picture = display_.grabWindow(desk_->program());
  for (const QPoint& corner : {QPoint(4, 4), QPoint(picture.width() - 5, 4), QPoint(4, picture.height() - 5),
                               QPoint(picture.width() - 5, picture.height() - 5)})
    QVERIFY2(qGray(picture.pixel(corner)) > 8, qPrintable(QString("%1,%2").arg(corner.x()).arg(corner.y())));
}

void TestWindow::aRowOfSizesDoesNoHarm() {
  for (int step = 0; step < 20; ++step)
    QVERIFY(resize({1280 + 30 * (step % 7), 720 + 40 * (step % 5)}));
  QVERIFY(resize({1024, 640}));
  QVERIFY(resize({1280, 720}));
  QVERIFY(desk_->runsOn(25));
  QVERIFY(allPicturesRun());
}

void TestWindow::picturesComeBackAfterUnmapping() {
  QVERIFY(map(false));
  QVERIFY(desk_->runsOn(40));
  QVERIFY(map(true));
  QVERIFY(allPicturesRun());
}

void TestWindow::picturesComeBackAfterMinimising() {
  QVERIFY(display_.click(place::kMinimizeButton));
  QVERIFY(desk_->runsOn(40));
  // What a window manager does for a minimised window, and for its return.
  QVERIFY(map(false));
  QVERIFY(map(true));
  QVERIFY(allPicturesRun());
}

QTEST_GUILESS_MAIN(TestWindow)
#include "tst_window.moc"
