// The row kernels against their formulas, for every length to 70 and odd starts; nothing past the end may
// change.
#include <QtTest>
#include <cmath>

#include "engine/kernels/RowKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

std::vector<std::uint8_t> noise(int count, std::uint32_t seed) {
  std::vector<std::uint8_t> samples(count);
  for (std::uint8_t& sample : samples) {
    seed = seed * 1664525 + 1013904223;
    sample = seed >> 24;
  }
  return samples;
}

}  // namespace

class RowKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void mixFollowsItsFormula() {
    const std::vector<std::uint8_t> a = noise(300, 1);
    const std::vector<std::uint8_t> b = noise(300, 2);
    for (int count = 0; count <= 70; ++count)
      for (int start = 0; start < 3; ++start)
        for (const int weight : {0, 1, 77, 128, 255, 256}) {
          alignas(64) std::uint8_t out[256];
          memset(out, 99, sizeof out);
          mixRow(a.data() + start, b.data() + 2 * start, weight, out + start, count);
          for (int x = 0; x < count; ++x)
            QCOMPARE(int(out[start + x]),
                     (a[start + x] * (256 - weight) + b[2 * start + x] * weight + 128) / 256);
          for (int x = 0; x < start; ++x)
            QCOMPARE(int(out[x]), 99);
          QCOMPARE(int(out[start + count]), 99);
        }
  }

  void maskedMixFollowsItsFormula() {
    const std::vector<std::uint8_t> a = noise(300, 1);
    const std::vector<std::uint8_t> b = noise(300, 2);
    std::vector<std::uint8_t> mask = noise(300, 6);
    mask[0] = mask[20] = 0;
    mask[1] = mask[21] = 255;
    for (int count = 0; count <= 140; ++count)
      for (int start = 0; start < 3; ++start) {
        alignas(64) std::uint8_t out[256];
        memset(out, 99, sizeof out);
        mixMaskedRow(a.data() + start, b.data() + 2 * start, mask.data(), out + start, count);
        for (int x = 0; x < count; ++x) {
          const double exact = (a[start + x] * (255 - mask[x]) + b[2 * start + x] * mask[x]) / 255.0;
          QCOMPARE(int(out[start + x]), int(std::floor(exact + 0.5)));
        }
        for (int x = 0; x < start; ++x)
          QCOMPARE(int(out[x]), 99);
        QCOMPARE(int(out[start + count]), 99);
      }
  }

  void blendingFollowsItsFormula() {
    const std::vector<std::uint8_t> top = noise(300, 3);
    const std::vector<std::uint8_t> under = noise(300, 4);
    std::vector<std::uint8_t> alpha = noise(300, 5);
    alpha[0] = alpha[20] = 0;
    alpha[1] = alpha[21] = 255;
    for (int count = 0; count <= 70; ++count)
      for (int start = 0; start < 3; ++start)
        for (const int black : {16, 128}) {
          std::uint8_t out[256];
          memset(out, 99, sizeof out);
          std::copy_n(under.data() + 2 * start, count, out + start);
          blendPremultipliedRow(top.data() + start, alpha.data(), black, out + start, count);
          for (int x = 0; x < count; ++x) {
            const double exact = top[start + x] + (under[2 * start + x] - black) * (255 - alpha[x]) / 255.0;
            QVERIFY(qAbs(out[start + x] - qBound(0.0, exact, 255.0)) <= 0.51);
          }
          for (int x = 0; x < start; ++x)
            QCOMPARE(int(out[x]), 99);
          QCOMPARE(int(out[start + count]), 99);
        }
  }

  void scalingTakesTheNeighboursByTheirDistance() {
    for (int from = 16; from <= 70; ++from) {
      const std::vector<std::uint8_t> row = noise(from, from);
      for (int to = (from + 1) / 2; to <= 70; ++to) {
        const ColumnTable table(from, to);
        if (!table.isUsable())
          continue;
        std::vector<std::uint8_t> out(80, 99);
        scaleRow(row.data(), table, out.data());
        for (int x = 0; x < to; ++x) {
          const double place = qBound(0.0, (x + 0.5) * from / to - 0.5, from - 1.0);
          const int left = static_cast<int>(place);
          const int right = qMin(left + 1, from - 1);
          const double exact = row[left] + (row[right] - row[left]) * (place - left);
          QVERIFY2(qAbs(out[x] - exact) <= 2.5,
                   qPrintable(QString("%1 to %2 at %3").arg(from).arg(to).arg(x)));
        }
        for (int x = (to + 7) / 8 * 8; x < 80; ++x)
          QCOMPARE(int(out[x]), 99);
      }
    }
  }

  void sizesOfMonitorsAreUsable() {
    for (const auto& [from, to] : {std::pair{960, 912}, {960, 544}, {480, 296}, {480, 912}, {960, 960}})
      QVERIFY(ColumnTable(from, to).isUsable());
    QVERIFY(!ColumnTable(1920, 300).isUsable());
    QVERIFY(!ColumnTable(8, 8).isUsable());
  }

  void theSameSizeIsTheSameRow() {
    const std::vector<std::uint8_t> row = noise(64, 9);
    std::vector<std::uint8_t> out(64);
    scaleRow(row.data(), ColumnTable(64, 64), out.data());
    QCOMPARE(out, row);
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<RowKernelsTest>(argc, argv);
}

#include "tst_row_kernels.moc"
