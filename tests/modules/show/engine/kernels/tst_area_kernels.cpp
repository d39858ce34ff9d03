// The kernels of shrunk and shifted rows against their formulas, over all short lengths.
#include <QtTest>

#include <cmath>
#include <random>
#include <vector>

#include "engine/kernels/AreaKernels.h"
#include "engine/kernels/RowKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

std::vector<std::uint8_t> noise(int count, unsigned seed) {
  std::mt19937 random(seed);
  std::vector<std::uint8_t> row(static_cast<std::size_t>(count));
  for (std::uint8_t& value : row)
    value = static_cast<std::uint8_t>(random());
  return row;
}

}  // namespace

class AreaKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void averages() {
    for (int count = 1; count <= 200; ++count) {
      const int rowCount = 1 + count % 9;
      std::vector<std::vector<std::uint8_t>> rows;
      std::vector<const std::uint8_t*> pointers;
      std::vector<std::uint16_t> weights;
      int total = 0;
      rows.reserve(static_cast<std::size_t>(rowCount));
      weights.reserve(static_cast<std::size_t>(rowCount));
      pointers.reserve(static_cast<std::size_t>(rowCount));
      for (int i = 0; i < rowCount; ++i) {
        rows.push_back(noise(count, static_cast<unsigned>(i)));
        weights.push_back(static_cast<std::uint16_t>(65 / rowCount + 1 + (i * 7 + count) % (190 / rowCount)));
        total += weights.back();
      }
      for (const auto& row : rows)
        pointers.push_back(row.data());
      QVERIFY(total <= 256);
      std::vector<std::uint8_t> out(static_cast<std::size_t>(count));
      averageRows(pointers.data(), weights.data(), rowCount, out.data(), count);
      for (std::size_t x = 0; x < out.size(); ++x) {
        double sum = 0;
        for (std::size_t i = 0; i < rows.size(); ++i)
          sum += rows[i][x] * weights[i];
        QVERIFY(std::abs(out[x] - sum / total) <= 0.53);
      }
    }
  }

  void rowsOfOneValueStayAtIt() {
    for (int total = 65; total <= 256; ++total)
      for (int value = 0; value < 256; ++value) {
        const std::vector<std::uint8_t> row(65, static_cast<std::uint8_t>(value));
        const std::uint8_t* rows[] = {row.data(), row.data()};
        const std::uint16_t weights[] = {60, static_cast<std::uint16_t>(total - 60)};
        std::vector<std::uint8_t> out(65);
        averageRows(rows, weights, 2, out.data(), 65);
        QVERIFY(out == row);
      }
  }

  void anAverageMayReplaceItsRow() {
    std::vector<std::uint8_t> row = noise(150, 3);
    const std::vector<std::uint8_t> before = row;
    const std::vector<std::uint8_t> other = noise(150, 4);
    const std::uint8_t* rows[] = {other.data(), row.data()};
    const std::uint16_t weights[] = {64, 192};
    averageRows(rows, weights, 2, row.data(), 150);
    for (std::size_t x = 0; x < row.size(); ++x)
      QCOMPARE(int(row[x]), (other[x] * 64 + before[x] * 192 + 128) >> 8);
  }

  void halves() {
    for (int count = 1; count <= 200; ++count)
      for (const int round : {0, 1}) {
        const std::vector<std::uint8_t> row = noise(count, 5);
        std::vector<std::uint8_t> out((row.size() + 1) / 2);
        halveRow(row.data(), count, round, out.data());
        for (std::size_t i = 0; i < row.size() / 2; ++i)
          QCOMPARE(int(out[i]), (row[2 * i] + row[2 * i + 1] + round) / 2);
        if (count % 2)
          QCOMPARE(out.back(), row.back());
      }
  }

  void shrinks() {
    for (int samples = 16; samples <= 120; ++samples)
      for (const double step : {1.0, 1.11, 1.5, 1.86, 1.999}) {
        const std::vector<std::uint8_t> row = noise(samples, 6);
        // One sample in part before the row, and one behind.
        const double begin = -0.4 * step;
        const int count = static_cast<int>(std::ceil(samples / step + 0.4));
        std::vector<ShrinkGroup> groups(static_cast<std::size_t>(count));
        const int used = fillShrinkGroups(begin, step, samples, samples, count, groups.data());
        std::vector<std::uint8_t> out(static_cast<std::size_t>(count + ShrinkGroup::kLanes));
        shrinkRow(row.data(), groups.data(), used, out.data());
        for (int i = 0; i < count; ++i) {
          const double left = std::max(0.0, begin + i * step);
          const double right = std::min<double>(samples, begin + (i + 1) * step);
          double sum = 0;
          for (int x = static_cast<int>(left); x < right; ++x)
            sum += row[static_cast<std::size_t>(x)] * (std::min(right, x + 1.0) - std::max<double>(left, x));
          const double expected = sum / (right - left);
          const int got = out[static_cast<std::size_t>(i)];
          // A part that is hardly there counts in steps.
          if (right - left > 0.05)
            QVERIFY2(std::abs(got - expected) <= 2, qPrintable(QString("%1 for %2").arg(got).arg(expected)));
        }
      }
  }

  void mixesUnderLight() {
    for (int count = 1; count <= 200; ++count) {
      const std::vector<std::uint8_t> a = noise(count, 8);
      const std::vector<std::uint8_t> b = noise(count, 9);
      const std::vector<std::uint8_t> mask = noise(count, 10);
      std::vector<std::int8_t> light;
      for (const std::uint8_t value : noise(count, 11))
        light.push_back(static_cast<std::int8_t>(value - 128));
      std::vector<std::uint8_t> out(a.size());
      mixMaskedLitRow(a.data(), b.data(), mask.data(), light.data(), out.data(), count);
      for (std::size_t x = 0; x < out.size(); ++x) {
        const int mixed = static_cast<int>(std::lround((a[x] * (255 - mask[x]) + b[x] * mask[x]) / 255.0));
        const int lit = mixed + static_cast<int>(std::floor((mixed - 16) * light[x] / 128.0 + 0.5));
        QCOMPARE(int(out[x]), std::clamp(lit, 0, 255));
      }
    }
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<AreaKernelsTest>(argc, argv);
}

#include "tst_area_kernels.moc"
