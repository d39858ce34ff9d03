// Pictures on widgets through their slot: the size, what happens to a widget that is behind or gone, and the
// hub over it.
#include <QApplication>
#include <QThread>
#include <QWidget>
#include <QtTest>

#include "KorviaShowObjectID.h"
#include "engine/monitor/MonitorHub.h"
#include "engine/monitor/WidgetMonitorSurface.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kPicture{320, 180};

FrameRef grey(int luma) {
  return frameOf(kPicture, [luma](int plane, int, int) { return plane == 0 ? luma : 128; });
}

class MonitorWidget : public QWidget {
  Q_OBJECT

 public:
  explicit MonitorWidget(const QSize& size) { resize(size); }
  tagKorviaWindowInfo info() const {
    tagKorviaWindowInfo info;
    info.right = width() - 1;
    info.bottom = height() - 1;
    info.winId = winId();
    return info;
  }

  QVector<int> shown;  // the green of each picture's middle
  QSize last;
  QThread* thread = nullptr;

 public slots:
  void setMonitorImage(const QImage& image) {
    shown.append(qGreen(image.pixel(image.rect().center())));
    last = image.size();
    thread = QThread::currentThread();
  }
};

}  // namespace

class WidgetMonitorSurfaceTest : public QObject {
  Q_OBJECT

 private slots:
  void aPictureComesInTheShapeOfTheFrame() {
    MonitorWidget widget({200, 200});
    WidgetMonitorSurface surface(widget.info());
    QVERIFY(surface.isLost());
    surface.show(*grey(235), {});
    QVERIFY(!surface.isLost());
    QTRY_COMPARE(widget.shown, QVector<int>{255});
    QCOMPARE(widget.last, QSize(200, 112));
    QCOMPARE(widget.thread, qApp->thread());
  }

  void aWidgetThatIsBehindGetsOnePictureAndLosesTheOthers() {
    MonitorWidget widget({64, 36});
    WidgetMonitorSurface surface(widget.info());
    surface.show(*grey(16), {});
    surface.show(*grey(126), {});
    QVERIFY2(surface.isLost(), "the second picture was not shown");
    QCoreApplication::processEvents();
    QCOMPARE(widget.shown, QVector<int>{0});
    // It has caught up: the next one comes.
    surface.show(*grey(235), {});
    QVERIFY(!surface.isLost());
    QCoreApplication::processEvents();
    QCOMPARE(widget.shown, (QVector<int>{0, 255}));
  }

  void aResizedWidgetWantsItsPictureAgain() {
    MonitorWidget widget({64, 36});
    WidgetMonitorSurface surface(widget.info());
    surface.show(*grey(16), {});
    QCoreApplication::processEvents();
    widget.resize(160, 90);
    surface.resize(widget.info());
    QVERIFY(surface.isLost());
    surface.show(*grey(16), {});
    QCoreApplication::processEvents();
    QCOMPARE(widget.last, QSize(160, 90));
  }

  void aWidgetThatIsGoneIsHarmless() {
    auto widget = std::make_unique<MonitorWidget>(QSize(64, 36));
    WidgetMonitorSurface surface(widget->info());
    surface.show(*grey(16), {});
    widget.reset();
    QCoreApplication::processEvents();
    surface.show(*grey(235), {});
    QCoreApplication::processEvents();
  }

  void aSurfaceThatIsGoneIsHarmless() {
    MonitorWidget widget({64, 36});
    auto surface = std::make_unique<WidgetMonitorSurface>(widget.info());
    surface->show(*grey(235), {});
    surface.reset();
    QTRY_COMPARE(widget.shown, QVector<int>{255});
  }

  void aWindowWithoutASizeTakesNothing() {
    MonitorWidget widget({64, 36});
    tagKorviaWindowInfo info = widget.info();
    info.right = info.left - 1;
    WidgetMonitorSurface surface(info);
    surface.show(*grey(235), {});
    QVERIFY(surface.isLost());
    QCoreApplication::processEvents();
    QCOMPARE(widget.shown, QVector<int>());
  }

  void aHubBringsTheNewestPictureToEachWidget() {
    MonitorWidget pgm({320, 180});
    MonitorWidget strip({160, 90});
    tagKorviaShowWindowPackInfo windows;
    windows.pgm = pgm.info();
    windows.media[2] = strip.info();
    StageClock stages;
    // On a desktop without X11 these are the surfaces that the hub makes by itself.
    MonitorHub hub(stages);
    hub.open(windows);
    const auto frame = [&](const FrameRef& toPgm, const FrameRef& toStrip) {
      hub.show(MonitorHub::Pgm, toPgm);
      hub.show(static_cast<MonitorHub::Window>(MonitorHub::FirstMedia + 2), toStrip);
      hub.commit();
    };
    frame(grey(16), grey(235));
    QTRY_VERIFY(!pgm.shown.isEmpty() && !strip.shown.isEmpty());
    QCOMPARE(pgm.shown, QVector<int>{0});
    QCOMPARE(strip.shown, QVector<int>{255});
    // While the console is busy, all but one picture are lost; the last is shown when it is offered again.
    const FrameRef last = grey(235);
    for (int i = 0; i < 20; ++i)
      frame(grey(60), {});
    const auto offered = [&] {
      frame(last, {});
      return pgm.shown.last() == 255;
    };
    QTRY_VERIFY(offered());
    hub.close();
    QCoreApplication::processEvents();
    QCOMPARE(pgm.shown.last(), 255);
    QCOMPARE(strip.shown.size(), 1);
  }
};

QTEST_MAIN(WidgetMonitorSurfaceTest)
#include "tst_widget_monitor_surface.moc"
