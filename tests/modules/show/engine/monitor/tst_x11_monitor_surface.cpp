// Pictures in real windows of a display, with shared memory and without.
#include <QtTest>

#include "KorviaShowObjectID.h"
#include "engine/monitor/MonitorHub.h"
#include "engine/monitor/X11MonitorSurface.h"
#include "support/MixPictures.h"
#include "support/VirtualDisplay.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kPicture{320, 180};

FrameRef grey(int luma) {
  return frameOf(kPicture, [luma](int plane, int, int) { return plane == 0 ? luma : 128; });
}

/// Windows on the display, made over a connection that is not the monitors'.
class Windows {
 public:
  Windows() : connection_(xcb_connect(nullptr, nullptr)) {}
  ~Windows() { xcb_disconnect(connection_); }
  Windows(const Windows&) = delete;
  Windows& operator=(const Windows&) = delete;

  tagKorviaWindowInfo open(int width, int height) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    const xcb_window_t window = xcb_generate_id(connection_);
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0,
                      static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL,
                      &screen->white_pixel);
    xcb_map_window(connection_, window);
    sync();
    tagKorviaWindowInfo info;
    info.right = width - 1;
    info.bottom = height - 1;
    info.winId = window;
    return info;
  }
  void close(const tagKorviaWindowInfo& info) {
    xcb_destroy_window(connection_, static_cast<xcb_window_t>(info.winId));
    sync();
  }

 private:
  void sync() {
    std::free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

  xcb_connection_t* connection_;
};

}  // namespace

class X11MonitorSurfaceTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<VirtualDisplay> display_;

  void startDisplay(const QStringList& arguments) {
    display_ = std::make_unique<VirtualDisplay>();
    QVERIFY(display_->start({640, 480}, arguments));
    qputenv("DISPLAY", display_->name().toLatin1());
  }
  QRgb middleOf(const tagKorviaWindowInfo& info) const {
    const QImage image = display_->grabWindow(info.winId);
    return image.isNull() ? 0 : image.pixel(image.width() / 2, image.height() / 2) & 0xFFFFFF;
  }

 private slots:
  void cleanup() { display_.reset(); }

  void picturesAppear_data() {
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("shared memory") << QStringList();
    QTest::newRow("no shared memory") << QStringList{"-extension", "MIT-SHM"};
  }
  void picturesAppear() {
    QFETCH(QStringList, arguments);
    startDisplay(arguments);
    Windows windows;
    const tagKorviaWindowInfo info = windows.open(400, 300);
    const auto factory = X11MonitorSurfaceFactory::connect();
    QVERIFY(factory);
    const auto surface = factory->create(info);
    QVERIFY(surface->isLost());
    surface->show(*grey(235), {});
    factory->flush();
    QVERIFY(!surface->isLost());
    QCOMPARE(middleOf(info), QRgb(0xFFFFFF));
    surface->show(*grey(16), {});
    factory->flush();
    QCOMPARE(middleOf(info), QRgb(0));
  }

  void aWindowThatWasCoveredWantsItsPictureAgain() {
    startDisplay({});
    Windows windows;
    const tagKorviaWindowInfo info = windows.open(400, 300);
    const auto factory = X11MonitorSurfaceFactory::connect();
    const auto surface = factory->create(info);
    surface->show(*grey(128), {});
    factory->flush();
    factory->flush();
    QVERIFY(!surface->isLost());
    windows.close(windows.open(200, 200));
    QTRY_VERIFY((factory->flush(), surface->isLost()));
    surface->show(*grey(128), {});
    factory->flush();
    QVERIFY(!surface->isLost());
  }

  void aHubShowsItsPicturesInItsWindows() {
    startDisplay({});
    Windows windows;
    tagKorviaShowWindowPackInfo pack;
    pack.pgm = windows.open(400, 300);
    pack.media[0] = windows.open(200, 100);
    StageClock stages;
    MonitorHub hub(stages, [] { return X11MonitorSurfaceFactory::connect(); });
    hub.open(pack);
    const auto frame = [&](int pgm, int strip) {
      hub.show(MonitorHub::Pgm, grey(pgm));
      hub.show(MonitorHub::FirstMedia, grey(strip));
      hub.commit();
    };
    // The second window lies over the first, at the left upper corner: the middle of the first is free.
    frame(235, 16);
    QTRY_COMPARE(middleOf(pack.pgm), QRgb(0xFFFFFF));
    QTRY_COMPARE(middleOf(pack.media[0]), QRgb(0));
    frame(16, 235);
    QTRY_COMPARE(middleOf(pack.pgm), QRgb(0));
    QTRY_COMPARE(middleOf(pack.media[0]), QRgb(0xFFFFFF));
    // Another window, white like all new ones, takes the place of program's.
    tagKorviaWindowInfo other = windows.open(300, 200);
    hub.resizeObject(PGMObject, other);
    frame(16, 235);
    QTRY_COMPARE(middleOf(other), QRgb(0));
    hub.close();
  }

  void aWindowThatIsGoneIsHarmless() {
    startDisplay({});
    Windows windows;
    const tagKorviaWindowInfo info = windows.open(400, 300);
    const auto factory = X11MonitorSurfaceFactory::connect();
    const auto surface = factory->create(info);
    windows.close(info);
    for (int frame = 0; frame < 30; ++frame) {
      surface->show(*grey(frame), {});
      factory->flush();
    }
    // It is not seen any more, so it takes no pictures.
    QVERIFY(surface->isLost());
  }
};

QTEST_GUILESS_MAIN(X11MonitorSurfaceTest)
#include "tst_x11_monitor_surface.moc"
