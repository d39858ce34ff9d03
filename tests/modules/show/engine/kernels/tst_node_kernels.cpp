// Masks from levels at nodes against their formula.
#include <QtTest>
#include <algorithm>
#include <vector>

#include "engine/kernels/NodeKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

int between(int a, int b, int weight, int cellBits) {
  const int cell = 1 << cellBits;
  return (a * (cell - weight) + b * weight + cell / 2) >> cellBits;
}

}  // namespace

class NodeKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void masksFollowTheirFormula_data() {
    QTest::addColumn<int>("cellBits");
    QTest::addRow("cells of 4") << 2;
    QTest::addRow("cells of 8") << 3;
  }
  void masksFollowTheirFormula() {
    QFETCH(int, cellBits);
    quint32 seed = 3;
    const auto drawn = [&](int) {
      seed = seed * 1664525 + 1013904223;
      const int range = seed & 1 << 20 ? LevelRow::kMax : 300;
      return static_cast<std::int16_t>(static_cast<int>((seed >> 8) % static_cast<quint32>(2 * range + 1)) -
                                       range);
    };
    for (int count : {1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 17, 31, 32, 33, 64, 70, 255, 256, 257, 300}) {
      const int cells = (count + (1 << cellBits) - 1) >> cellBits;
      std::vector<std::int16_t> upper(static_cast<std::size_t>(cells + 1 + 16));
      std::vector<std::int16_t> lower(upper.size());
      for (std::size_t i = 0; i < upper.size(); ++i) {
        upper[i] = drawn(0);
        lower[i] = drawn(0);
      }
      upper[0] = LevelRow::kMax;
      lower[0] = -LevelRow::kMax;
      for (int down = 0; down < 1 << cellBits; ++down) {
        std::vector<std::uint8_t> mask(static_cast<std::size_t>(cells << cellBits) + 1, 77);
        maskFromNodes({upper.data(), lower.data(), cellBits, down}, mask.data(), count);
        for (int i = 0; i < count; ++i) {
          const auto node = static_cast<std::size_t>(i >> cellBits);
          const int left = between(upper[node], lower[node], down, cellBits);
          const int right = between(upper[node + 1], lower[node + 1], down, cellBits);
          const int level = between(left, right, i & ((1 << cellBits) - 1), cellBits);
          QCOMPARE(int(mask[static_cast<std::size_t>(i)]), std::clamp(level, 0, 255));
        }
        QCOMPARE(int(mask.back()), 77);
      }
    }
  }

  void takesEverySecondSample() {
    std::vector<std::uint8_t> row(200);
    for (std::size_t i = 0; i < row.size(); ++i)
      row[i] = static_cast<std::uint8_t>(i);
    for (int count = 0; count <= 70; ++count) {
      std::vector<std::uint8_t> out(71, 255);
      everySecond(row.data(), out.data(), count);
      for (int i = 0; i < count; ++i)
        QCOMPARE(int(out[static_cast<std::size_t>(i)]), 2 * i);
      QCOMPARE(int(out[static_cast<std::size_t>(count)]), 255);
    }
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<NodeKernelsTest>(argc, argv);
}

#include "tst_node_kernels.moc"
