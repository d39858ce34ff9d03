// RGB to BT.709 limited: known code values, transparency, odd sizes.
#include <QtTest>

#include "engine/frame/PictureFrame.h"

using namespace korvia;

using Codes = std::array<std::uint8_t, 3>;

class PictureFrameTest : public QObject {
  Q_OBJECT

 private slots:
  void knownColors() {
    QCOMPARE(codeValues(0xFF000000), (Codes{16, 128, 128}));
    QCOMPARE(codeValues(0xFFFFFFFF), (Codes{235, 128, 128}));
    QCOMPARE(codeValues(0xFFFF0000), (Codes{63, 102, 240}));
    QCOMPARE(codeValues(0xFF00FF00), (Codes{173, 42, 26}));
    QCOMPARE(codeValues(0xFF0000FF), (Codes{32, 240, 118}));
    QCOMPARE(codeValues(0xFF808080), (Codes{126, 128, 128}));
  }

  void everyGreyIsGrey() {
    for (int grey = 0; grey < 256; ++grey) {
      const Codes codes = codeValues(qRgb(grey, grey, grey));
      QCOMPARE(int(codes[0]), qRound(16 + grey * 219 / 255.0));
      QCOMPARE(int(codes[1]), 128);
      QCOMPARE(int(codes[2]), 128);
    }
  }

  void agreesWithTheDefinition() {
    for (int r = 0; r < 256; r += 15) {
      for (int g = 0; g < 256; g += 15) {
        for (int b = 0; b < 256; b += 15) {
          const double y = 0.2126 * r + 0.7152 * g + 0.0722 * b;
          const double expected[3] = {16 + y * 219 / 255, 128 + (b - y) / 1.8556 * 224 / 255,
                                      128 + (r - y) / 1.5748 * 224 / 255};
          const Codes codes = codeValues(qRgb(r, g, b));
          for (std::size_t i = 0; i < 3; ++i)
            QVERIFY2(std::abs(codes[i] - expected[i]) < 0.52,
                     qPrintable(QString("%1 %2 %3").arg(r).arg(g).arg(b)));
        }
      }
    }
  }

  void transparencyIsOverBlack() {
    QCOMPARE(codeValues(0x00FFFFFF), (Codes{16, 128, 128}));
    QCOMPARE(codeValues(0x80FFFFFF), (Codes{126, 128, 128}));
    QImage image(2, 2, QImage::Format_ARGB32);
    image.fill(qRgba(255, 255, 255, 128));
    const FrameRef frame = frameFromImage(image);
    QCOMPARE(int(frame->plane(Frame::Y)[0]), 126);
    QCOMPARE(int(frame->plane(Frame::U)[0]), 128);
  }

  void alphaIsKeptWhereItIsAskedFor() {
    QImage image(3, 2, QImage::Format_ARGB32);
    image.fill(qRgba(255, 255, 255, 128));
    image.setPixel(2, 1, qRgba(0, 0, 0, 255));
    QVERIFY(!frameFromImage(image)->hasAlpha());
    const FrameRef frame = frameFromImage(image, FrameAlpha::Plane);
    QCOMPARE(int(frame->plane(Frame::A)[0]), 128);
    QCOMPARE(int(frame->plane(Frame::A)[frame->stride(Frame::A) + 2]), 255);
    QCOMPARE(int(frame->plane(Frame::Y)[0]), 126);
    image = QImage(1, 1, QImage::Format_RGB32);
    image.fill(0x00FFFFFF);
    QCOMPARE(int(frameFromImage(image, FrameAlpha::Plane)->plane(Frame::A)[0]), 255);
  }

  void chromaIsTheMeanOfFour() {
    QImage image(3, 3, QImage::Format_RGB32);
    image.fill(Qt::black);
    image.setPixel(0, 0, qRgb(255, 0, 0));
    image.setPixel(2, 2, qRgb(0, 0, 255));
    const FrameRef frame = frameFromImage(image);
    QCOMPARE(frame->width(), 3);
    QCOMPARE(int(frame->plane(Frame::Y)[0]), 63);
    QCOMPARE(int(frame->plane(Frame::Y)[1]), 16);
    // A quarter of red, and the whole of blue in the corner that stands alone.
    QCOMPARE(int(frame->plane(Frame::V)[0]), 156);
    QCOMPARE(int(frame->plane(Frame::U)[frame->stride(Frame::U) + 1]), 240);
  }

  void onePixel() {
    QImage image(1, 1, QImage::Format_RGB32);
    image.fill(Qt::white);
    const FrameRef frame = frameFromImage(image);
    QCOMPARE(int(frame->plane(Frame::Y)[0]), 235);
    QCOMPARE(int(frame->plane(Frame::U)[0]), 128);
  }

  void nullImageGivesNoFrame() { QVERIFY(!frameFromImage(QImage())); }
};

QTEST_GUILESS_MAIN(PictureFrameTest)
#include "tst_picture_frame.moc"
