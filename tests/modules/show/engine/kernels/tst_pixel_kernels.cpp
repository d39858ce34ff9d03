// Sampling of pixels along a line, and between neighbours, against their formulas, in pictures without a byte
// to spare.
#include <QtTest>
#include <cmath>
#include <vector>

#include "engine/kernels/PixelKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;
using namespace korvia::test;

namespace {

class Random {
 public:
  int next(int range) {
    seed_ = seed_ * 1664525 + 1013904223;
    return static_cast<int>((seed_ >> 8) % static_cast<quint32>(range));
  }
  std::vector<std::uint8_t> bytes(int count) {
    std::vector<std::uint8_t> all(static_cast<std::size_t>(count));
    for (std::uint8_t& byte : all)
      byte = static_cast<std::uint8_t>(next(256));
    return all;
  }

 private:
  quint32 seed_ = 5;
};

/// The channel of the pixels at a point in 1/65536 pixel, which is rounded to 1/256.
double exactly(const std::vector<std::uint8_t>& pixels, int bytes, int channel, QSize size, qint64 x,
               qint64 y) {
  const double placeX = qBound(0.0, std::floor((x + 128) / 256.0) / 256, size.width() - 1.0);
  const double placeY = qBound(0.0, std::floor((y + 128) / 256.0) / 256, size.height() - 1.0);
  const int column = qMin(static_cast<int>(placeX), size.width() - 2);
  const int line = qMin(static_cast<int>(placeY), size.height() - 2);
  const auto at = [&](int right, int below) {
    const int pixel = (line + below) * size.width() + column + right;
    return static_cast<double>(pixels[static_cast<std::size_t>(pixel * bytes + channel)]);
  };
  const double wx = placeX - column;
  const double wy = placeY - line;
  return (at(0, 0) * (1 - wx) + at(1, 0) * wx) * (1 - wy) + (at(0, 1) * (1 - wx) + at(1, 1) * wx) * wy;
}

}  // namespace

class PixelKernelsTest : public QObject {
  Q_OBJECT

  using Row = std::array<std::uint8_t, kPixelsMost>;

 private slots:
  void pixelsFollowTheirFormula() {
    Random random;
    for (int side = 2; side <= 40; ++side) {
      const QSize size(side, 42 - side);
      const std::vector<std::uint8_t> luma = random.bytes(size.width() * size.height() * 2);
      const std::vector<std::uint8_t> chroma = random.bytes(size.width() * size.height() * 4);
      const PixelPlane lumaPlane{luma.data(), size.width(), size.height()};
      const PixelPlane chromaPlane{chroma.data(), size.width(), size.height()};
      for (const int count : {1, 3, 15, 16, 17, 100, kPixelsMost}) {
        // The steps of a layer that is shown very small lead far beyond the picture.
        const int reach = count <= 17 && side % 2 == 0 ? 900 << 16 : 1 << 16;
        const PixelRamp ramp{random.next(50 << 16) - (5 << 16), random.next(50 << 16) - (5 << 16),
                             random.next(2 * reach) - reach, random.next(2 * reach) - reach};
        std::array<Row, 5> rows;
        sampleLumaPixels(lumaPlane, ramp, rows[0].data(), rows[1].data(), count);
        sampleChromaPixels(chromaPlane, ramp, rows[2].data(), rows[3].data(), rows[4].data(), count);
        for (int i = 0; i < count; ++i) {
          const qint64 x = ramp.x + qint64{i} * ramp.stepX;
          const qint64 y = ramp.y + qint64{i} * ramp.stepY;
          for (int row = 0; row < 5; ++row) {
            const bool isLuma = row < 2;
            const double expected =
                isLuma ? exactly(luma, 2, row, size, x, y) : exactly(chroma, 4, row - 2, size, x, y);
            const int got = rows[static_cast<std::size_t>(row)][static_cast<std::size_t>(i)];
            QVERIFY2(std::abs(got - expected) <= 0.51,
                     qPrintable(QString("row %1, point %2: %3, %4").arg(row).arg(i).arg(got).arg(expected)));
          }
        }
      }
    }
  }

  void onlyTheAskedPointsAreWritten() {
    Random random;
    const std::vector<std::uint8_t> luma = random.bytes(10 * 10 * 2);
    const std::vector<std::uint8_t> chroma = random.bytes(10 * 10 * 4);
    for (const int count : {0, 1, 5, 16, 255}) {
      std::array<Row, 5> rows;
      for (Row& row : rows)
        row.fill(7);
      sampleLumaPixels({luma.data(), 10, 10}, {}, rows[0].data(), rows[1].data(), count);
      sampleChromaPixels({chroma.data(), 10, 10}, {}, rows[2].data(), rows[3].data(), rows[4].data(), count);
      for (std::size_t row = 0; row < rows.size(); ++row) {
        const std::uint8_t first = row < 2 ? luma[row] : chroma[row - 2];
        for (int i = 0; i < kPixelsMost; ++i)
          QCOMPARE(rows[row][static_cast<std::size_t>(i)], i < count ? first : std::uint8_t{7});
      }
    }
  }

  void shiftedRowsFollowTheirFormula() {
    Random random;
    for (int count = 0; count <= 70; ++count) {
      const std::vector<std::uint8_t> upper = random.bytes(count + 1);
      const std::vector<std::uint8_t> lower = random.bytes(count + 1);
      for (const int weightX : {0, 1, 128, 200, 255}) {
        for (const int weightY : {0, 1, 77, 128, 255}) {
          std::vector<std::uint8_t> out(static_cast<std::size_t>(count));
          sampleShiftedRow(upper.data(), lower.data(), weightX, weightY, out.data(), count);
          for (int i = 0; i < count; ++i) {
            const auto at = static_cast<std::size_t>(i);
            const int top = upper[at] * (256 - weightX) + upper[at + 1] * weightX;
            const int bottom = lower[at] * (256 - weightX) + lower[at + 1] * weightX;
            QCOMPARE(int{out[at]}, (top * (256 - weightY) + bottom * weightY + 32768) >> 16);
          }
        }
      }
    }
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<PixelKernelsTest>(argc, argv);
}

#include "tst_pixel_kernels.moc"
