// The conversion to RGB against the exact formula, for every luma, many chromas, and every width to 70.
#include <QtTest>
#include <cmath>

#include "engine/frame/RgbRow.h"
#include "support/EveryInstructionSet.h"

class RgbRowTest : public QObject {
  Q_OBJECT

  static int exact(double value) { return qBound(0, static_cast<int>(std::lround(value)), 255); }

 private slots:
  void isWithinOneOfTheExactConversion() {
    for (int u = 0; u < 256; u += 15)
      for (int v = 0; v < 256; v += 15)
        for (int y = 0; y < 256; ++y) {
          const std::uint8_t luma = y, blueness = u, redness = v;
          std::uint32_t pixel = 0;
          korvia::rowToRgb(&luma, &blueness, &redness, &pixel, 1);
          const double l = (y - 16) * 255.0 / 219;
          const double b = (u - 128) * 255.0 / 224;
          const double r = (v - 128) * 255.0 / 224;
          QVERIFY(qAbs(qRed(pixel) - exact(l + 1.5748 * r)) <= 1);
          QVERIFY(qAbs(qGreen(pixel) - exact(l - 0.187324 * b - 0.468124 * r)) <= 1);
          QVERIFY(qAbs(qBlue(pixel) - exact(l + 1.8556 * b)) <= 1);
          QCOMPARE(qAlpha(pixel), 255);
        }
  }

  void aRowIsConvertedAsItsPixelsAre() {
    constexpr int kWidth = 203;
    std::vector<std::uint8_t> y(kWidth), u(kWidth), v(kWidth);
    std::uint32_t seed = 1;
    for (int x = 0; x < kWidth; ++x)
      for (std::vector<std::uint8_t>* row : {&y, &u, &v}) {
        seed = seed * 1664525 + 1013904223;
        (*row)[x] = static_cast<std::uint8_t>(seed >> 24);
      }
    std::vector<std::uint32_t> pixels(kWidth);
    korvia::rowToRgb(y.data(), u.data(), v.data(), pixels.data(), kWidth);
    for (int x = 0; x < kWidth; ++x) {
      std::uint32_t pixel = 0;
      korvia::rowToRgb(&y[x], &u[x], &v[x], &pixel, 1);
      QCOMPARE(pixels[x], pixel);
    }
  }

  void everyWidthWritesItsPixelsAndNoMore() {
    const std::vector<std::uint8_t> y(70, 235), c(70, 128);
    for (int width = 0; width <= 70; ++width) {
      std::vector<std::uint32_t> pixels(72, 7);
      korvia::rowToRgb(y.data(), c.data(), c.data(), pixels.data(), width);
      for (int x = 0; x < 72; ++x)
        QCOMPARE(pixels[x], x < width ? 0xFFFFFFFFU : 7U);
    }
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<RgbRowTest>(argc, argv);
}

#include "tst_rgb_row.moc"
