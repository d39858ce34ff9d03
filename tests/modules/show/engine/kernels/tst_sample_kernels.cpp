// Sampling at any point against its formula, in planes without a sample to spare.
#include <QtTest>
#include <cmath>
#include <cstring>

#include "engine/kernels/SampleKernels.h"
#include "support/EveryInstructionSet.h"
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

/// Once folded at the edges, then limited.
double mirrored(double place, int count) {
  const double end = count - 1;
  return qMax(end - qAbs(end - qAbs(place)), 0.0);
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

  void bentRowsFollowTheirFormula_data() {
    QTest::addColumn<int>("cellBits");
    QTest::addColumn<int>("fractionBits");
    QTest::addRow("luma") << 3 << 8;
    QTest::addRow("chroma") << 2 << 9;
    QTest::addRow("finer") << 3 << 12;
  }
  void bentRowsFollowTheirFormula() {
    QFETCH(int, cellBits);
    QFETCH(int, fractionBits);
    const int cell = 1 << cellBits;
    quint32 seed = 5;
    const auto drawn = [&](int range) {
      seed = seed * 1664525 + 1013904223;
      return static_cast<int>((seed >> 8) % static_cast<quint32>(range));
    };
    for (int width = 1; width <= 70; ++width) {
      const FrameSize size{width, 71 - width};
      const FrameRef pictures[] = {withoutSpare(*noise(size, static_cast<quint32>(width))),
                                   withoutSpare(*noise(size, static_cast<quint32>(width + 100)))};
      const PlaneView planes[] = {planeOf(*pictures[0], Frame::Y), planeOf(*pictures[1], Frame::Y)};
      std::array<std::array<std::int32_t, 80>, 4> nodes{};
      for (std::array<std::int32_t, 80>& row : nodes)
        for (std::int32_t& node : row)
          node = (drawn(40 << 8) - (20 << 8)) << (fractionBits - 8);
      nodes[0][1] = 1 << 24;
      nodes[3][2] = -(1 << 24);
      for (int down = 0; down < cell; ++down) {
        const int y = drawn(size.height);
        const BentRow bent{nodes[0].data(), nodes[1].data(), nodes[2].data(), nodes[3].data(), cellBits, down,
                           fractionBits};
        std::array<std::array<std::uint8_t, 71>, 2> out{};
        out[0].fill(99);
        out[1].fill(99);
        const BentTarget targets[] = {{planes[0], out[0].data()}, {planes[1], out[1].data()}};
        sampleBentRow(targets, 2, y, bent, width);
        for (int i = 0; i < width; ++i) {
          const auto at = [&](const std::int32_t* upper, const std::int32_t* lower) {
            const double right = (i % cell) / static_cast<double>(cell);
            const double below = down / static_cast<double>(cell);
            const int node = i / cell;
            const double units = (upper[node] * (1 - right) + upper[node + 1] * right) * (1 - below) +
                                 (lower[node] * (1 - right) + lower[node + 1] * right) * below;
            // Places are rounded to 1/256, halves up.
            return std::floor(units / (1 << (fractionBits - 8)) + 0.5) / 256;
          };
          const double px = mirrored(i + at(bent.upperX, bent.lowerX), size.width);
          const double py = mirrored(y + at(bent.upperY, bent.lowerY), size.height);
          for (std::size_t target = 0; target < 2; ++target) {
            const double exact = exactly(planes[target], px, py);
            const int sample = out[target][static_cast<std::size_t>(i)];
            QVERIFY2(qAbs(sample - exact) <= 0.5 + 1e-9,
                     qPrintable(QString("%1 for %2").arg(sample).arg(exact)));
          }
        }
        QCOMPARE(int(out[0][static_cast<std::size_t>(width)]), 99);
        QCOMPARE(int(out[1][static_cast<std::size_t>(width)]), 99);
      }
    }
  }

  void longRowsBendAsShortOnesDo() {
    // Longer than what is worked through at a time.
    const FrameRef picture = noise({600, 20}, 5);
    const PlaneView plane = planeOf(*picture, Frame::Y);
    std::array<std::int32_t, 100> right{};
    std::array<std::int32_t, 100> down{};
    right.fill(5 * kSampleOne);
    down.fill(-2 * kSampleOne);
    const BentRow bent{right.data(), down.data(), right.data(), down.data(), 3, 4, kSampleFractionBits};
    std::array<std::uint8_t, 600> out{};
    const BentTarget target{plane, out.data()};
    sampleBentRow(&target, 1, 9, bent, 600);
    QCOMPARE(std::memcmp(out.data(), plane.row(7) + 5, 595), 0);
    // The last ones are mirrored at the edge.
    for (std::size_t i = 0; i < 5; ++i)
      QCOMPARE(int(out[595 + i]), int(plane.row(7)[598 - i]));
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<SampleKernelsTest>(argc, argv);
}

#include "tst_sample_kernels.moc"
