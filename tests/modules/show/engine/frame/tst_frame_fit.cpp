// Where pictures lie in the render format, and what stands there and around.
#include <QtTest>

#include "engine/frame/FrameFit.h"

using namespace korvia;

namespace {

FrameRef flat(FrameSize size, std::uint8_t y, std::uint8_t u, std::uint8_t v, int alpha = -1) {
  MutableFrame frame(new Frame(size, alpha >= 0 ? FrameAlpha::Plane : FrameAlpha::None));
  const int values[4] = {y, u, v, alpha};
  for (int plane = 0; plane < (alpha >= 0 ? 4 : 3); ++plane)
    memset(
        frame->writablePlane(plane), values[plane],
        static_cast<std::size_t>(frame->stride(plane)) * static_cast<std::size_t>(frame->planeHeight(plane)));
  return std::move(frame).publish();
}

QByteArray rows(const Frame& frame, int plane) {
  QByteArray text;
  for (int y = 0; y < frame.planeHeight(plane); ++y) {
    for (int x = 0; x < frame.planeWidth(plane); ++x)
      text += QByteArray::number(frame.plane(plane)[y * frame.stride(plane) + x]) + ' ';
    text.back() = '\n';
  }
  return text;
}

}  // namespace

class FrameFitTest : public QObject {
  Q_OBJECT

 private slots:
  void rects_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<int>("aspectNumerator");
    QTest::addColumn<int>("aspectDenominator");
    QTest::addColumn<QVector<int>>("rect");
    QTest::newRow("same size") << 1920 << 1080 << 1 << 1 << QVector<int>{0, 0, 1920, 1080};
    QTest::newRow("same shape") << 640 << 360 << 1 << 1 << QVector<int>{0, 0, 1920, 1080};
    QTest::newRow("4:3") << 640 << 480 << 1 << 1 << QVector<int>{240, 0, 1440, 1080};
    QTest::newRow("wide") << 2048 << 858 << 1 << 1 << QVector<int>{0, 138, 1920, 804};
    QTest::newRow("upright") << 1080 << 1920 << 1 << 1 << QVector<int>{656, 0, 608, 1080};
    QTest::newRow("pal 16:9") << 720 << 576 << 64 << 45 << QVector<int>{0, 0, 1920, 1080};
    QTest::newRow("pal 4:3") << 720 << 576 << 16 << 15 << QVector<int>{240, 0, 1440, 1080};
    QTest::newRow("one pixel") << 1 << 1 << 1 << 1 << QVector<int>{420, 0, 1080, 1080};
    QTest::newRow("line") << 8192 << 1 << 1 << 1 << QVector<int>{0, 538, 1920, 2};
    QTest::newRow("column") << 1 << 8192 << 1 << 1 << QVector<int>{958, 0, 2, 1080};
    QTest::newRow("unknown aspect") << 640 << 480 << 0 << 0 << QVector<int>{0, 0, 1920, 1080};
  }

  void rects() {
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(int, aspectNumerator);
    QFETCH(int, aspectDenominator);
    QFETCH(QVector<int>, rect);
    const FrameRect got = fitRect({width, height}, aspectNumerator, aspectDenominator, {1920, 1080});
    QCOMPARE((QVector<int>{got.x, got.y, got.width, got.height}), rect);
  }

  void rectsAreEvenAndInside() {
    for (int width = 1; width <= 70; ++width) {
      for (int height = 1; height <= 70; ++height) {
        const FrameRect rect = fitRect({width, height}, 1, 1, {64, 36});
        QVERIFY(rect.x % 2 == 0 && rect.y % 2 == 0 && rect.width % 2 == 0 && rect.height % 2 == 0);
        QVERIFY(rect.width > 0 && rect.height > 0 && rect.x >= 0 && rect.y >= 0);
        QVERIFY(rect.x + rect.width <= 64 && rect.y + rect.height <= 36);
      }
    }
  }

  void pictureBetweenBlackBars() {
    const FrameRef picture = flat({2, 2}, 200, 90, 160);
    MutableFrame target(new Frame({8, 4}));
    fitFrame(*picture, fitRect({2, 2}, 1, 1, {8, 4}), *target);
    QCOMPARE(rows(*target, Frame::Y),
             QByteArray("16 16 200 200 200 200 16 16\n16 16 200 200 200 200 16 16\n"
                        "16 16 200 200 200 200 16 16\n16 16 200 200 200 200 16 16\n"));
    QCOMPARE(rows(*target, Frame::U), QByteArray("128 90 90 128\n128 90 90 128\n"));
    QCOMPARE(rows(*target, Frame::V), QByteArray("128 160 160 128\n128 160 160 128\n"));
  }

  void barsAboveAndBelow() {
    const FrameRef picture = flat({8, 4}, 200, 90, 160);
    MutableFrame target(new Frame({4, 6}));
    fitFrame(*picture, {0, 2, 4, 2}, *target);
    QCOMPARE(
        rows(*target, Frame::Y),
        QByteArray("16 16 16 16\n16 16 16 16\n200 200 200 200\n200 200 200 200\n16 16 16 16\n16 16 16 16\n"));
    QCOMPARE(rows(*target, Frame::U), QByteArray("128 128\n90 90\n128 128\n"));
  }

  void shrinkingAverages() {
    MutableFrame source(new Frame({4, 4}));
    const std::uint8_t luma[16] = {20, 40, 100, 100, 60, 80, 100, 100, 16, 16, 200, 200, 16, 16, 220, 220};
    for (int i = 0; i < 16; ++i)
      source->writablePlane(Frame::Y)[i / 4 * source->stride(Frame::Y) + i % 4] = luma[i];
    for (int plane : {Frame::U, Frame::V}) {
      const std::uint8_t values[4] = {100, 110, 120, 130};
      for (int i = 0; i < 4; ++i)
        source->writablePlane(plane)[i / 2 * source->stride(plane) + i % 2] = values[i];
    }
    const FrameRef picture = std::move(source).publish();
    MutableFrame target(new Frame({2, 2}));
    fitFrame(*picture, {0, 0, 2, 2}, *target);
    QCOMPARE(rows(*target, Frame::Y), QByteArray("50 100\n16 210\n"));
    QCOMPARE(rows(*target, Frame::U), QByteArray("115\n"));
  }

  void alphaFollowsThePicture() {
    MutableFrame target(new Frame({4, 2}, FrameAlpha::Plane));
    fitFrame(*flat({2, 2}, 200, 90, 160, 77), {2, 0, 2, 2}, *target);
    QCOMPARE(rows(*target, Frame::A), QByteArray("0 0 77 77\n0 0 77 77\n"));
    fitFrame(*flat({2, 2}, 200, 90, 160), {2, 0, 2, 2}, *target);
    QCOMPARE(rows(*target, Frame::A), QByteArray("0 0 255 255\n0 0 255 255\n"));
  }

  void everySizeStaysFlat() {
    for (int width = 1; width <= 70; ++width) {
      for (int height : {1, 2, 3, 17, 70}) {
        const FrameRef picture = flat({width, height}, 123, 45, 210);
        MutableFrame target(new Frame({32, 18}));
        const FrameRect rect = fitRect(picture->size(), 1, 1, target->size());
        fitFrame(*picture, rect, *target);
        for (int y = 0; y < 18; ++y) {
          for (int x = 0; x < 32; ++x) {
            const bool inside =
                x >= rect.x && x < rect.x + rect.width && y >= rect.y && y < rect.y + rect.height;
            // The scaler may be one code value off.
            const int luma = target->plane(Frame::Y)[y * target->stride(Frame::Y) + x];
            const int chroma = target->plane(Frame::V)[y / 2 * target->stride(Frame::V) + x / 2];
            QVERIFY(std::abs(luma - (inside ? 123 : 16)) <= (inside ? 1 : 0));
            QVERIFY(std::abs(chroma - (inside ? 210 : 128)) <= (inside ? 1 : 0));
          }
        }
      }
    }
  }

  void oddTargetIsFilledToItsEdge() {
    const FrameRef picture = flat({5, 5}, 123, 45, 210);
    MutableFrame target(new Frame({5, 5}));
    fitFrame(*picture, fitRect({5, 5}, 1, 1, {5, 5}), *target);
    QCOMPARE(rows(*target, Frame::U), QByteArray("45 45 45\n45 45 45\n45 45 45\n"));
    QCOMPARE(int(target->plane(Frame::Y)[4 * target->stride(Frame::Y) + 4]), 123);
  }
};

QTEST_GUILESS_MAIN(FrameFitTest)
#include "tst_frame_fit.moc"
