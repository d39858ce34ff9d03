// Small pictures of the show for whoever looks: their sizes, their pace, and silence when nobody looks.
#include <QtTest>
#include <array>
#include <atomic>
#include <condition_variable>
#include <mutex>

#include "engine/monitor/PictureTap.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;
using namespace std::chrono_literals;

namespace {

constexpr auto kProgram = KorviaShowPicture::Program;
constexpr auto kChannels = KorviaShowPicture::Channels;

class Viewer final : public IKorviaShowPictureSink {
 public:
  bool isWanted(KorviaShowPicture which) override { return wanted[static_cast<std::size_t>(which)]; }
  void onPicture(KorviaShowPicture which, const QImage& picture) override {
    std::unique_lock lock(mutex_);
    pictures_[static_cast<std::size_t>(which)] << picture;
    changed_.notify_all();
    changed_.wait_for(lock, 10s, [this] { return !held_; });
  }
  /// All pictures so far, when there are `count`.
  QList<QImage> waitFor(KorviaShowPicture which, int count) {
    std::unique_lock lock(mutex_);
    const QList<QImage>& pictures = pictures_[static_cast<std::size_t>(which)];
    changed_.wait_for(lock, 10s, [&] { return pictures.size() >= count; });
    return pictures;
  }
  /// The next pictures take until they are let go.
  void hold(bool held) {
    const std::lock_guard lock(mutex_);
    held_ = held;
    changed_.notify_all();
  }

  std::array<std::atomic<bool>, 2> wanted{true, true};

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::array<QList<QImage>, 2> pictures_;
  bool held_ = false;
};

/// White, with the chroma of grey.
FrameRef white(FrameSize size) {
  return frameOf(size, [](int plane, int, int) { return plane == 0 ? 235 : 128; });
}

bool isWhite(QRgb pixel) {
  return qRed(pixel) > 250 && qGreen(pixel) > 250 && qBlue(pixel) > 250;
}

}  // namespace

class PictureTapTest : public QObject {
  Q_OBJECT

 private slots:
  void programFitsIntoItsSize_data() {
    QTest::addColumn<QSize>("show");
    QTest::addColumn<QSize>("picture");
    QTest::newRow("16:9") << QSize(1920, 1080) << QSize(640, 360);
    QTest::newRow("4:3") << QSize(640, 480) << QSize(480, 360);
    QTest::newRow("upright") << QSize(1080, 1920) << QSize(202, 360);
    QTest::newRow("wide") << QSize(1000, 100) << QSize(640, 64);
    QTest::newRow("small") << QSize(32, 18) << QSize(640, 360);
  }

  void programFitsIntoItsSize() {
    QFETCH(QSize, show);
    QFETCH(QSize, picture);
    Viewer viewer;
    PictureTap tap;
    tap.setSink(&viewer);
    QVERIFY(tap.isDue(kProgram, now_));
    tap.showProgram(white({show.width(), show.height()}));
    const QImage image = viewer.waitFor(kProgram, 1).value(0);
    QCOMPARE(image.size(), picture);
    QVERIFY(isWhite(image.pixel(0, 0)));
    QVERIFY(isWhite(image.pixel(image.width() - 1, image.height() - 1)));
  }

  void channelsHaveTheirCells() {
    Viewer viewer;
    PictureTap tap;
    tap.setSink(&viewer);
    PictureTap::Channels channels;
    channels[1] = white({640, 360});
    channels[4] = white({400, 300});  // second row, first cell
    channels[11] = white({64, 36});
    tap.showChannels(channels);
    const QImage sheet = viewer.waitFor(kChannels, 1).value(0);
    QCOMPARE(sheet.size(), QSize(960, 405));
    const auto pixel = [&sheet](int cell, int x, int y) {
      return sheet.pixel(cell % 4 * 240 + x, cell / 4 * 135 + y);
    };
    for (const int cell : {0, 2, 3, 5, 6, 7, 8, 9, 10}) {
      for (const QPoint point : {QPoint(0, 0), QPoint(239, 134), QPoint(120, 67)})
        QCOMPARE(pixel(cell, point.x(), point.y()), qRgb(0, 0, 0));
    }
    for (const int cell : {1, 11}) {
      QVERIFY(isWhite(pixel(cell, 0, 0)));
      QVERIFY(isWhite(pixel(cell, 239, 134)));
    }
    // 4:3 is 180 wide, with black at both sides.
    QVERIFY(isWhite(pixel(4, 30, 0)) && isWhite(pixel(4, 209, 134)));
    QCOMPARE(pixel(4, 28, 67), qRgb(0, 0, 0));
    QCOMPARE(pixel(4, 211, 67), qRgb(0, 0, 0));
  }

  void picturesKeepTheirPace() {
    Viewer viewer;
    PictureTap tap;
    tap.setSink(&viewer);
    int programs = 0;
    int sheets = 0;
    for (int frame = 0; frame < 100; ++frame) {
      // The ticks of the engine are not quite even.
      const auto time = frame * 40ms + (frame % 3) * 2ms;
      programs += tap.isDue(kProgram, now_ + time) ? 1 : 0;
      sheets += tap.isDue(kChannels, now_ + time) ? 1 : 0;
    }
    QCOMPARE(programs, 20);
    QCOMPARE(sheets, 4);
  }

  void nothingIsMadeWhenNobodyLooks() {
    PictureTap tap;
    QVERIFY(!tap.isDue(kProgram, now_));
    Viewer viewer;
    viewer.wanted[0] = false;
    tap.setSink(&viewer);
    QVERIFY(!tap.isDue(kProgram, now_));
    QVERIFY(tap.isDue(kChannels, now_));
    // Who looks again gets a picture at once.
    viewer.wanted[0] = true;
    QVERIFY(tap.isDue(kProgram, now_));
    tap.setSink(nullptr);
    QVERIFY(!tap.isDue(kProgram, now_ + 10s));
  }

  void slowSinkGetsFewerPictures() {
    Viewer viewer;
    viewer.hold(true);
    PictureTap tap;
    tap.setSink(&viewer);
    QVERIFY(tap.isDue(kProgram, now_));
    tap.showProgram(white({64, 36}));
    QCOMPARE(viewer.waitFor(kProgram, 1).size(), 1);
    QVERIFY(!tap.isDue(kProgram, now_ + 1s));
    viewer.hold(false);
    QVERIFY(QTest::qWaitFor([&] { return tap.isDue(kProgram, now_ + 2s); }));
  }

  void sinkIsNotCalledAfterItsEnd() {
    PictureTap tap;
    {
      Viewer viewer;
      tap.setSink(&viewer);
      tap.showProgram(white({1920, 1080}));
      tap.setSink(nullptr);
    }
    tap.showProgram(white({64, 36}));
    Viewer next;
    tap.setSink(&next);
    tap.showProgram(white({64, 36}));
    QVERIFY(!next.waitFor(kProgram, 1).isEmpty());
  }

 private:
  const PictureTap::Clock::time_point now_ = PictureTap::Clock::now();
};

QTEST_GUILESS_MAIN(PictureTapTest)
#include "tst_picture_tap.moc"
