// The blur kernels against their formulas, in rows that end with their last sample.
#include <QtTest>
#include <array>
#include <cmath>
#include <vector>

#include "engine/kernels/BlurKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

using Row = std::vector<std::uint8_t>;

class Draw {
 public:
  int below(int range) {
    seed_ = seed_ * 1664525 + 1013904223;
    return static_cast<int>((seed_ >> 8) % static_cast<quint32>(range));
  }
  /// Samples of all values, with the extremes more frequent than the others.
  Row row(int count) {
    Row row(static_cast<std::size_t>(count));
    for (std::uint8_t& sample : row) {
      const int kind = below(8);
      sample = static_cast<std::uint8_t>(kind == 0 ? 0 : kind == 1 ? 255 : below(256));
    }
    return row;
  }

 private:
  quint32 seed_ = 5;
};

/// Every short length and some that fill more than a block of the loops.
std::vector<int> lengths() {
  std::vector<int> all;
  all.reserve(73);
  for (int i = 1; i <= 70; ++i)
    all.push_back(i);
  all.insert(all.end(), {257, 600, 1203});
  return all;
}

int clamped(const Row& row, int x) {
  return row[static_cast<std::size_t>(qBound(0, x, static_cast<int>(row.size()) - 1))];
}

QByteArray at(int count, int x, double got, double expected) {
  return QString("%1 for %2 at %3 of %4").arg(got).arg(expected).arg(x).arg(count).toUtf8();
}

}  // namespace

class BlurKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void shrinksToMeans() {
    Draw draw;
    for (const int count : lengths())
      for (const int weight : {0, 1, 77, 128, 255, 256}) {
        std::array<Row, kShrink> a;
        std::array<Row, kShrink> b;
        std::array<const std::uint8_t*, kShrink> rowsA;
        std::array<const std::uint8_t*, kShrink> rowsB;
        for (std::size_t i = 0; i < kShrink; ++i) {
          a[i] = draw.row(count);
          b[i] = draw.row(count);
          rowsA[i] = a[i].data();
          rowsB[i] = b[i].data();
        }
        Row out(static_cast<std::size_t>((count + 3) / 4));
        mixShrunkRow(rowsA, rowsB, weight, out.data(), count);
        for (int i = 0; i < static_cast<int>(out.size()); ++i) {
          double sum = 0;
          for (std::size_t line = 0; line < kShrink; ++line)
            for (int x = 4 * i; x < 4 * i + 4; ++x)
              sum += clamped(a[line], x) * (256 - weight) + clamped(b[line], x) * weight;
          const double got = out[static_cast<std::size_t>(i)];
          QVERIFY2(qAbs(got - sum / 4096) <= 0.51, at(count, i, got, sum / 4096));
        }
        Row alone(out.size());
        mixShrunkRow(rowsA, rowsA, weight, alone.data(), count);
        mixShrunkRow(rowsA, rowsB, 0, out.data(), count);
        QCOMPARE(alone, out);
      }
  }

  void enlargesBetweenSamples() {
    Draw draw;
    for (const int count : lengths())
      for (int outCount = 4 * count - 3; outCount <= 4 * count; ++outCount) {
        const Row upper = draw.row(count);
        const Row lower = draw.row(count);
        const int weight = draw.below(9);
        Row out(static_cast<std::size_t>(outCount));
        enlargeRow(upper.data(), lower.data(), weight, count, out.data(), outCount);
        for (int x = 0; x < outCount; ++x) {
          const double place = (x + 0.5) / 4 - 0.5;
          const int left = static_cast<int>(std::floor(place));
          const auto between = [&](const Row& row) {
            return clamped(row, left) * (left + 1 - place) + clamped(row, left + 1) * (place - left);
          };
          const double expected = (between(upper) * (8 - weight) + between(lower) * weight) / 8;
          const double got = out[static_cast<std::size_t>(x)];
          QVERIFY2(qAbs(got - expected) <= 0.5, at(count, x, got, expected));
        }
      }
  }

  void softensByItsFormula() {
    Draw draw;
    for (const int count : lengths())
      for (const int weight : {0, 3, 128, 256}) {
        const Row a = draw.row(count);
        const Row b = draw.row(count);
        const Row soft = draw.row(count);
        const Row mask = draw.row(count);
        Row out(static_cast<std::size_t>(count));
        softenRow(a.data(), b.data(), weight, soft.data(), mask.data(), out.data(), count);
        for (std::size_t x = 0; x < out.size(); ++x) {
          const int sharp = (a[x] * (256 - weight) + b[x] * weight + 128) / 256;
          const int expected = qRound((sharp * (255 - mask[x]) + soft[x] * mask[x]) / 255.0);
          QCOMPARE(int(out[x]), expected);
        }
      }
  }

  void averagesThree() {
    Draw draw;
    for (const int count : lengths()) {
      const Row a = draw.row(count);
      const Row b = draw.row(count);
      const Row c = draw.row(count);
      Row out(static_cast<std::size_t>(count));
      averageOfThreeRow(a.data(), b.data(), c.data(), out.data(), count);
      for (std::size_t x = 0; x < out.size(); ++x)
        QCOMPARE(int(out[x]), qRound((a[x] + b[x] + c[x]) / 3.0));
    }
  }

  void averagesTaps() {
    Draw draw;
    for (const int count : lengths()) {
      std::vector<Row> rows;
      rows.reserve(8);
      for (int i = 0; i < 8; ++i)
        rows.push_back(draw.row(count + 1));
      std::array<RowTap, kTapCount> taps;
      for (RowTap& tap : taps)
        tap = {rows[static_cast<std::size_t>(draw.below(8))].data(),
               rows[static_cast<std::size_t>(draw.below(8))].data(),
               static_cast<std::uint16_t>(draw.below(16)), static_cast<std::uint16_t>(draw.below(16))};
      Row out(static_cast<std::size_t>(count));
      averageTapsRow(taps, out.data(), count);
      for (std::size_t x = 0; x < out.size(); ++x) {
        double sum = 0;
        for (const RowTap& tap : taps)
          sum += ((tap.upper[x] * (16 - tap.right) + tap.upper[x + 1] * tap.right) * (16 - tap.down) +
                  (tap.lower[x] * (16 - tap.right) + tap.lower[x + 1] * tap.right) * tap.down) /
                 256.0;
        const double expected = sum / kTapCount;
        QVERIFY2(qAbs(out[x] - expected) <= 0.63, at(count, static_cast<int>(x), out[x], expected));
      }
      const Row flat(static_cast<std::size_t>(count) + 1, 255);
      for (RowTap& tap : taps)
        tap.upper = tap.lower = flat.data();
      averageTapsRow(taps, out.data(), count);
      QCOMPARE(out, Row(static_cast<std::size_t>(count), 255));
    }
  }

  void averagesABox() {
    Draw draw;
    for (const int count : lengths())
      for (const int radius256 : {0, 1, 255, 256, 640, 12 * 256, 40 * 256 + 77}) {
        const int border = radius256 / 256 + 1;
        const Row row = draw.row(count + 2 * border);
        std::vector<std::uint32_t> sums(row.size() + 1);
        Row out(static_cast<std::size_t>(count));
        boxRow(row.data(), radius256, sums.data(), out.data(), count);
        const double fraction = radius256 % 256 / 256.0;
        for (int x = 0; x < count; ++x) {
          double sum = 0;
          for (int i = -border; i <= border; ++i)
            sum += clamped(row, x + border + i) * (qAbs(i) == border ? fraction : 1.0);
          const double expected = sum / (1 + radius256 / 128.0);
          const double got = out[static_cast<std::size_t>(x)];
          QVERIFY2(qAbs(got - expected) <= 0.501, at(count, x, got, expected));
        }
        const Row flat(row.size(), 201);
        boxRow(flat.data(), radius256, sums.data(), out.data(), count);
        QCOMPARE(out, Row(static_cast<std::size_t>(count), 201));
      }
  }

  void addsRows() {
    Draw draw;
    for (const int count : lengths()) {
      const Row row = draw.row(count);
      std::vector<std::uint16_t> sums(row.size(), 65000);
      addRow(row.data(), sums.data(), count);
      for (std::size_t x = 0; x < sums.size(); ++x)
        QCOMPARE(int(sums[x]), 65000 + row[x]);
    }
  }

  void weighsColumns() {
    Draw draw;
    for (const int count : lengths()) {
      std::array<Row, 5> rows;
      std::array<const std::uint8_t*, 5> data;
      for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i] = draw.row(count);
        data[i] = rows[i].data();
      }
      std::vector<std::uint16_t> out(static_cast<std::size_t>(count));
      binomialColumns(data, out.data(), count);
      for (std::size_t x = 0; x < out.size(); ++x)
        QCOMPARE(int(out[x]), rows[0][x] + 4 * rows[1][x] + 6 * rows[2][x] + 4 * rows[3][x] + rows[4][x]);
    }
  }

  void sharpensByItsFormula() {
    Draw draw;
    for (const int count : lengths())
      for (const int spacing : {1, 2, 5})
        for (const int gain256 : {0, 100, 1280, 16383}) {
          const Row row = draw.row(count);
          std::vector<std::uint16_t> columns(static_cast<std::size_t>(count) +
                                             4 * static_cast<std::size_t>(spacing));
          for (std::uint16_t& column : columns)
            column = static_cast<std::uint16_t>(draw.below(4081));
          Row out(row.size());
          sharpenRow(row.data(), columns.data(), spacing, gain256, 16, 235, out.data(), count);
          for (std::size_t x = 0; x < out.size(); ++x) {
            constexpr int kWeights[] = {1, 4, 6, 4, 1};
            double sum = 0;
            for (std::size_t i = 0; i < 5; ++i)
              sum += kWeights[i] * columns[x + i * static_cast<std::size_t>(spacing)];
            const double all = row[x] - sum / 256;
            const double difference = all - qBound(-1.5, all, 1.5);
            const double gain = gain256 / 256.0;
            const double expected =
                qBound(qMin(16.0, double(row[x])), row[x] + difference * gain, qMax(235.0, double(row[x])));
            QVERIFY2(qAbs(out[x] - expected) <= 0.5 + gain / 128,
                     at(count, static_cast<int>(x), out[x], expected));
          }
          if (gain256 == 0)
            QCOMPARE(out, row);
        }
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<BlurKernelsTest>(argc, argv);
}

#include "tst_blur_kernels.moc"
