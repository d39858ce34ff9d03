// The mask kernels and the non-temporal copy against their formulas, for every length to 140; nothing past
// the end may change.
#include <QtTest>
#include <cmath>
#include <vector>

#include "engine/kernels/MaskKernels.h"
#include "engine/kernels/RowKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

std::vector<std::uint8_t> noise(int count, std::uint32_t seed) {
  std::vector<std::uint8_t> samples(static_cast<std::size_t>(count));
  for (std::uint8_t& sample : samples) {
    seed = seed * 1664525 + 1013904223;
    sample = static_cast<std::uint8_t>(seed >> 24);
  }
  return samples;
}

constexpr int kLengths = 140;

/// A row to write to, in which no sample past those asked for may change.
struct Target {
  alignas(64) std::uint8_t samples[256];
  Target() { memset(samples, 99, sizeof samples); }
  bool endsAt(int count) const {
    return std::all_of(samples + count, samples + 256, [](std::uint8_t sample) { return sample == 99; });
  }
};

/// A mask is the rounded value; a float may round a half the other way.
bool follows(int mask, double value) {
  return std::abs(mask - std::clamp(value, 0.0, 255.0)) <= 0.501;
}

}  // namespace

class MaskKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void slopedMaskFollowsItsFormula() {
    float level[kLengths];
    float slope[kLengths];
    for (int x = 0; x < kLengths; ++x) {
      level[x] = static_cast<float>(7 * x - 100);
      slope[x] = 1 + static_cast<float>(x % 5) / 4;
    }
    level[3] = 1e30F;
    level[4] = -1e30F;
    for (int count = 0; count <= kLengths; ++count) {
      Target target;
      slopedMaskRow(level, slope, 33.5F, target.samples, count);
      for (int x = 0; x < count; ++x)
        QVERIFY(follows(target.samples[x], level[x] - 33.5 * slope[x]));
      QVERIFY(target.endsAt(count));
    }
  }

  void discMaskFollowsItsFormula() {
    DiscRow disc;
    disc.first = -60.5F;
    disc.step = 2;
    disc.ySquare = 90;
    disc.level = 500;
    disc.slope = 9;
    for (int count = 0; count <= kLengths; ++count) {
      Target target;
      discMaskRow(disc, target.samples, count);
      for (int x = 0; x < count; ++x)
        QVERIFY(follows(target.samples[x], 500 - 9 * std::sqrt((2 * x - 60.5) * (2 * x - 60.5) + 90)));
      QVERIFY(target.endsAt(count));
    }
  }

  void spokeMaskFollowsItsFormula() {
    SpokeRow spoke;
    spoke.first = -0.4F;
    spoke.step = 0.02F;
    spoke.spoke = 0.3F;
    spoke.level = 120;
    spoke.slope = 300;
    const auto expected = [](int x) {
      const double tangent = -0.4 + 0.02 * x;
      return 120 + 300 * (tangent - 0.3) / (1 + tangent * 0.3);
    };
    std::uint8_t whole[kLengths + 64];
    spokeMaskRow(spoke, whole, 0, kLengths);
    for (int begin = 0; begin < kLengths; ++begin) {
      Target target;
      spokeMaskRow(spoke, target.samples, begin, kLengths);
      for (int x = 0; x < begin; ++x)
        QCOMPARE(int(target.samples[x]), 99);
      for (int x = begin; x < kLengths; ++x) {
        QVERIFY(std::abs(target.samples[x] - std::clamp(expected(x), 0.0, 255.0)) < 0.52);
        QCOMPARE(target.samples[x], whole[x]);
      }
      for (int x = kLengths + 64; x < 256; ++x)
        QCOMPARE(int(target.samples[x]), 99);
    }
  }

  void cappedMaskFollowsItsFormula() {
    const std::vector<std::uint8_t> row = noise(kLengths, 3);
    for (int count = 0; count <= kLengths; ++count)
      for (const int most : {0, 1, 100, 255}) {
        Target target;
        cappedMaskRow(row.data(), static_cast<std::uint8_t>(most), target.samples, count);
        for (int x = 0; x < count; ++x)
          QCOMPARE(int(target.samples[x]), std::min<int>(row[static_cast<std::size_t>(x)], most));
        QVERIFY(target.endsAt(count));
      }
  }

  void blendedMaskFollowsItsFormula() {
    const std::vector<std::uint8_t> a = noise(kLengths, 1);
    const std::vector<std::uint8_t> b = noise(kLengths, 2);
    for (int count = 0; count <= kLengths; ++count)
      for (const int weight : {0, 1, 77, 128, 255, 256}) {
        Target target;
        blendedMaskRow(a.data(), b.data(), weight, target.samples, count);
        for (int x = 0; x < count; ++x) {
          const auto i = static_cast<std::size_t>(x);
          QCOMPARE(int(target.samples[x]), (a[i] * (256 - weight) + b[i] * weight + 128) / 256);
        }
        QVERIFY(target.endsAt(count));
      }
  }

  void blocksAreTold_data() {
    QTest::addColumn<int>("fill");
    QTest::addColumn<int>("place");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("kind");
    QTest::newRow("all old") << 0 << 0 << 0 << 0;
    QTest::newRow("all new") << 255 << 0 << 255 << 255;
    QTest::newRow("all between") << 7 << 0 << 7 << 1;
    QTest::newRow("both") << 0 << 63 << 255 << 1;
    QTest::newRow("hardly new") << 0 << 40 << 1 << 1;
    QTest::newRow("hardly old") << 255 << 20 << 254 << 1;
    QTest::newRow("first is new") << 0 << 0 << 255 << 1;
  }
  void blocksAreTold() {
    QFETCH(int, fill);
    QFETCH(int, place);
    QFETCH(int, value);
    QFETCH(int, kind);
    // The block that is looked at comes first, in the middle and last; the others are all new.
    for (int block = 0; block < 3; ++block) {
      std::vector<std::uint8_t> mask(192, 255);
      std::fill_n(mask.begin() + block * 64, 64, static_cast<std::uint8_t>(fill));
      mask[static_cast<std::size_t>(block * 64 + place)] = static_cast<std::uint8_t>(value);
      std::uint8_t kinds[4] = {9, 9, 9, 9};
      maskBlockKinds(mask.data(), 192, kinds);
      for (int i = 0; i < 3; ++i)
        QCOMPARE(int(kinds[i]), i == block ? kind : 255);
      QCOMPARE(int(kinds[3]), 9);
    }
  }

  void aBlockBegunIsTold() {
    for (int count = 1; count < 64; ++count) {
      std::vector<std::uint8_t> mask(static_cast<std::size_t>(64 + count), 0);
      std::uint8_t kinds[3] = {9, 9, 9};
      maskBlockKinds(mask.data(), 64 + count, kinds);
      QCOMPARE(int(kinds[1]), 0);
      mask.back() = 255;
      maskBlockKinds(mask.data(), 64 + count, kinds);
      QCOMPARE(int(kinds[1]), count == 1 ? 255 : 1);
      QCOMPARE(int(kinds[2]), 9);
    }
  }

  void aNonTemporalCopyIsTheRow() {
    const std::vector<std::uint8_t> from = noise(kLengths + 3, 4);
    for (int count = 0; count <= kLengths; ++count)
      for (int start = 0; start < 3; ++start) {
        Target target;
        copyRowNonTemporal(from.data() + start, target.samples + start, count);
        for (int x = 0; x < count; ++x)
          QCOMPARE(target.samples[start + x], from[static_cast<std::size_t>(start + x)]);
        for (int x = 0; x < start; ++x)
          QCOMPARE(int(target.samples[x]), 99);
        QVERIFY(target.endsAt(start + count));
      }
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<MaskKernelsTest>(argc, argv);
}

#include "tst_mask_kernels.moc"
