// Sampling at any point against its formula, in planes without a sample to spare.
#include <QtTest>
#include <cmath>
#include <cstring>

#include "engine/kernels/SampleKernels.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

double exactly(const PlaneView& plane, double x, double y) {
  x = qBound(0.0, x, plane.width - 1.0);
  y = qBound(0.0, y, plane.height - 1.0);
  const int column = qMin(static_cast<int>(x), qMax(0, plane.width - 2));
  const int line = qMin(static_cast<int>(y), qMax(0, plane.height - 2));
  const int right = qMin(column + 1, plane.width - 1);
  const int below = qMin(line + 1, plane.height - 1);
  const double wx = x - column;
  const double wy = y - line;
  return (plane.row(line)[column] * (1 - wx) + plane.row(line)[right] * wx) * (1 - wy) +
         (plane.row(below)[column] * (1 - wx) + plane.row(below)[right] * wx) * wy;
}

}  // namespace

class SampleKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void followsItsFormula() {
    quint32 seed = 11;
    const auto drawn = [&](int range) {
      seed = seed * 1664525 + 1013904223;
      return static_cast<int>((seed >> 8) % static_cast<quint32>(range));
    };
    for (int side = 1; side <= 70; ++side) {
      const FrameRef picture = withoutSpare(*noise({side, 71 - side}, static_cast<quint32>(side)));
      const PlaneView plane = planeOf(*picture, Frame::Y);
      for (int count = 0; count <= 70; ++count) {
        std::array<std::int32_t, 70> x{};
        std::array<std::int32_t, 70> y{};
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
          x[i] = drawn((side + 8) * kSampleOne) - 4 * kSampleOne;
          y[i] = drawn((79 - side) * kSampleOne) - 4 * kSampleOne;
        }
        if (count > 3) {
          x[0] = -(1 << 30);
          y[0] = 1 << 30;
          x[1] = (side - 1) * kSampleOne;
          y[1] = (70 - side) * kSampleOne;
          x[2] = 1 << 30;
        }
        std::array<std::uint8_t, 71> out{};
        out.fill(99);
        sampleRow(plane, x.data(), y.data(), out.data(), count);
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
          const double exact = exactly(plane, x[i] / 256.0, y[i] / 256.0);
          QVERIFY2(qAbs(out[i] - exact) <= 0.5 + 1e-9,
                   qPrintable(QString("%1 for %2").arg(out[i]).arg(exact)));
        }
        QCOMPARE(int(out[static_cast<std::size_t>(count)]), 99);
      }
    }
  }

  void wholePointsAreSamples() {
    const FrameRef picture = noise({50, 3}, 5);
    const PlaneView plane = planeOf(*picture, Frame::Y);
    std::array<std::int32_t, 50> x{};
    std::array<std::int32_t, 50> y{};
    for (std::size_t i = 0; i < x.size(); ++i) {
      x[i] = static_cast<std::int32_t>(i) * kSampleOne;
      y[i] = 2 * kSampleOne;
    }
    std::array<std::uint8_t, 50> out{};
    sampleRow(plane, x.data(), y.data(), out.data(), 50);
    QCOMPARE(std::memcmp(out.data(), plane.row(2), 50), 0);
  }
};

QTEST_GUILESS_MAIN(SampleKernelsTest)
#include "tst_sample_kernels.moc"
