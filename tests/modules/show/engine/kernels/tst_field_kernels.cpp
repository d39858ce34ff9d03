// The kernels of interlaced lines against their formulas, sample by sample, over all short widths.
#include <QtTest>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>
#include <vector>

#include "engine/kernels/FieldKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

constexpr int kWidest = 70;

using Row = std::vector<std::uint8_t>;

/// Six lines that end with their last sample. Each differs from the first by up to `spread`, so that all ways
/// of making a sample occur.
struct Lines {
  Lines(int width, int spread, unsigned seed) {
    std::mt19937 random(seed);
    const auto size = static_cast<std::size_t>(width);
    for (Row& row : rows)
      row.resize(size);
    for (std::size_t x = 0; x < size; ++x) {
      const int base = static_cast<int>(random() % 256);
      for (Row& row : rows) {
        const int step = static_cast<int>(random() % static_cast<unsigned>(2 * spread + 1)) - spread;
        row[x] = static_cast<std::uint8_t>(std::clamp(base + step, 0, 255));
      }
    }
  }

  FieldLines view() const {
    return {rows[0].data(), rows[1].data(), rows[2].data(), rows[3].data(), rows[4].data(), rows[5].data()};
  }

  std::array<Row, 6> rows;
};

/// Joined sample of a row as the header tells it: the line, or an edge, or the mean of the neighbours.
int joined(const FieldLines& lines, int x, int width) {
  const auto at = [width](const std::uint8_t* row, int place) {
    return int(row[std::clamp(place, 0, width - 1)]);
  };
  int moved = 0;
  for (int place = x - 1; place <= x + 1; ++place) {
    moved = std::max(moved, std::abs(at(lines.line, place) - at(lines.lineBefore, place)));
    moved = std::max(moved, std::abs(at(lines.above, place) - at(lines.aboveBefore, place)));
    moved = std::max(moved, std::abs(at(lines.below, place) - at(lines.belowBefore, place)));
  }
  const int line = at(lines.line, x);
  const int lowest = std::min(at(lines.above, x), at(lines.below, x));
  const int highest = std::max(at(lines.above, x), at(lines.below, x));
  if (moved <= 8 || (line >= lowest - 4 && line <= highest + 4))
    return line;
  // The pair of neighbours that differ least; straight down before falling before rising.
  int best = 0;
  for (const int shift : {-1, 1}) {
    const auto apart = [&](int s) { return std::abs(at(lines.above, x + s) - at(lines.below, x - s)); };
    if (apart(shift) < apart(best))
      best = shift;
  }
  return (at(lines.above, x + best) + at(lines.below, x - best) + 1) / 2;
}

}  // namespace

class FieldKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void joins() {
    int kept = 0;
    int all = 0;
    for (int width = 1; width <= kWidest; ++width) {
      for (const int spread : {3, 8, 20, 255}) {
        const Lines lines(width, spread, static_cast<unsigned>(width * 1000 + spread));
        Row out(static_cast<std::size_t>(width));
        joinField(lines.view(), 0, width, width, out.data());
        for (int x = 0; x < width; ++x) {
          const int got = out[static_cast<std::size_t>(x)];
          const int expected = joined(lines.view(), x, width);
          QVERIFY2(got == expected, qPrintable(QString("%1 instead of %2 at %3 of %4, spread %5")
                                                   .arg(got)
                                                   .arg(expected)
                                                   .arg(x)
                                                   .arg(width)
                                                   .arg(spread)));
          kept += got == lines.rows[0][static_cast<std::size_t>(x)] ? 1 : 0;
          ++all;
        }
      }
    }
    // Both ways are taken often.
    QVERIFY(kept > all / 5 && kept < all * 4 / 5);
  }

  void joinsAPartOfARowAndNothingBesideIt() {
    constexpr int kWidth = 70;
    const Lines lines(kWidth, 60, 5);
    for (int begin = 0; begin < kWidth; begin += 3) {
      for (int end = begin; end <= kWidth; end += 4) {
        Row out(kWidth, 77);
        joinField(lines.view(), begin, end, kWidth, out.data());
        for (int x = 0; x < kWidth; ++x) {
          const bool inside = x >= begin && x < end;
          QCOMPARE(int(out[static_cast<std::size_t>(x)]), inside ? joined(lines.view(), x, kWidth) : 77);
        }
      }
    }
  }

  void edgesAreFollowed() {
    // A white edge that falls by two columns from the line above to the line below: the line between gets it
    // halfway, not as a grey pair.
    constexpr int kWidth = 70;
    const Row black(kWidth, 16);
    Row above(kWidth, 235);
    Row below(kWidth, 235);
    std::fill_n(above.begin(), 30, std::uint8_t{16});
    std::fill_n(below.begin(), 32, std::uint8_t{16});
    // The line itself is brighter than both, and everything was black before.
    const Row line(kWidth, 255);
    Row out(kWidth);
    joinField({line.data(), above.data(), below.data(), black.data(), black.data(), black.data()}, 0, kWidth,
              kWidth, out.data());
    for (int x = 0; x < kWidth; ++x)
      QCOMPARE(int(out[static_cast<std::size_t>(x)]), x < 31 ? 16 : 235);
  }

  void sums() {
    for (int count = 1; count <= kWidest; ++count) {
      for (const int begin : {0, 1, 7}) {
        const Lines lines(begin + count, 255, static_cast<unsigned>(count));
        CombSums got{1, 2, 3};
        addCombSums(lines.view(), begin, count, got);
        CombSums expected{1, 2, 3};
        for (auto x = static_cast<std::size_t>(begin); x < static_cast<std::size_t>(begin + count); ++x) {
          const int around = lines.rows[1][x] + lines.rows[2][x];
          expected.now += static_cast<std::uint32_t>(std::abs(2 * lines.rows[0][x] - around));
          expected.before += static_cast<std::uint32_t>(std::abs(2 * lines.rows[3][x] - around));
          expected.moved += static_cast<std::uint32_t>(std::abs(lines.rows[0][x] - lines.rows[3][x]));
        }
        QCOMPARE(got.now, expected.now);
        QCOMPARE(got.before, expected.before);
        QCOMPARE(got.moved, expected.moved);
      }
    }
  }

  void sumsOfLongRowsDoNotOverflow() {
    for (const int count : {512, 1920, 8192, 16384}) {
      const Row white(static_cast<std::size_t>(count), 255);
      const Row black(static_cast<std::size_t>(count), 0);
      CombSums sums;
      addCombSums({white.data(), black.data(), black.data(), black.data(), black.data(), black.data()}, 0,
                  count, sums);
      QCOMPARE(sums.now, static_cast<std::uint32_t>(510 * count));
      QCOMPARE(sums.before, 0U);
      QCOMPARE(sums.moved, static_cast<std::uint32_t>(255 * count));
    }
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<FieldKernelsTest>(argc, argv);
}

#include "tst_field_kernels.moc"
