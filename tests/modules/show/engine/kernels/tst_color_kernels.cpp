// The colour kernels against their formulas, for every length to 70 and odd starts; nothing past the end may
// change.
#include <QtTest>
#include <cmath>
#include <functional>

#include "engine/kernels/ColorKernels.h"
#include "support/EveryInstructionSet.h"

using namespace korvia;

namespace {

constexpr int kLengthMax = 70;
constexpr std::uint8_t kUntouched = 99;

using Rows = std::array<const std::uint8_t*, 4>;

/// Four rows of noise with all the corner values among it.
class Noise {
 public:
  Noise() {
    std::uint32_t seed = 1;
    for (std::vector<std::uint8_t>& row : rows_) {
      row.resize(200);
      for (std::uint8_t& sample : row) {
        seed = seed * 1664525 + 1013904223;
        constexpr std::uint8_t kCorners[] = {0, 255, 16, 235, 128, 127, 240, 15};
        sample = seed >> 29 == 0 ? kCorners[(seed >> 20) % 8] : static_cast<std::uint8_t>(seed >> 21);
      }
    }
  }
  /// The rows from different places on, most of them odd.
  Rows from(int start) const {
    Rows rows{};
    for (std::size_t i = 0; i < rows.size(); ++i)
      rows[i] = rows_[i].data() + start + i;
    return rows;
  }

 private:
  std::array<std::vector<std::uint8_t>, 4> rows_;
};

int weighed(int a, int b, int weight) {
  return static_cast<int>(std::floor((a * (255 - weight) + b * weight) / 255.0 + 0.5));
}

int held(int value) {
  return qBound(0, value, 255);
}

using Kernel = std::function<void(const Rows&, std::uint8_t* out, int count)>;
using Formula = std::function<int(const Rows&, int x)>;

/// Empty, or what differs first.
QString firstDifference(const Kernel& kernel, const Formula& formula) {
  const Noise noise;
  for (int count = 0; count <= kLengthMax; ++count)
    for (int start = 0; start < 4; ++start) {
      const Rows in = noise.from(start);
      alignas(64) std::uint8_t out[128];
      memset(out, kUntouched, sizeof out);
      kernel(in, out + start, count);
      for (int x = 0; x < 128; ++x) {
        const bool inside = x >= start && x < start + count;
        const int expected = inside ? formula(in, x - start) : kUntouched;
        if (out[x] != expected)
          return QString("%1 for %2 at %3, length %4, start %5")
              .arg(out[x])
              .arg(expected)
              .arg(x)
              .arg(count)
              .arg(start);
      }
    }
  return {};
}

}  // namespace

class ColorKernelsTest : public QObject {
  Q_OBJECT

 private slots:
  void thresholdFollowsItsFormula() {
    for (const auto& [gain, threshold] :
         {std::pair{1, 0}, {2, 470}, {2, -223}, {2, 200}, {4, 940}, {4, 300}, {8, 1880}, {8, -127}}) {
      const int g = gain;
      const int t = threshold;
      QCOMPARE(
          firstDifference(
              [&](const Rows& in, std::uint8_t* out, int count) { thresholdRow(in[0], g, t, out, count); },
              [&](const Rows& in, int x) { return held(g * qBound(16, int(in[0][x]), 235) - t); }),
          QString());
    }
  }

  void brighterFollowsItsFormula() {
    QCOMPARE(firstDifference(
                 [](const Rows& in, std::uint8_t* out, int count) { brighterRow(in[0], in[1], out, count); },
                 [](const Rows& in, int x) { return held(128 + 4 * (in[1][x] - in[0][x])); }),
             QString());
  }

  void keysFadeByTheirFormula() {
    for (const auto& [rise, fall] : {std::pair{0, 0}, {256, 256}, {256, 0}, {0, 256}, {101, 37}}) {
      const int r = rise;
      const int f = fall;
      QCOMPARE(firstDifference(
                   [&](const Rows& in, std::uint8_t* out, int count) {
                     memcpy(out, in[0], static_cast<std::size_t>(count));
                     fadeKeyRow(r, f, out, count);
                   },
                   [&](const Rows& in, int x) { return (in[0][x] * r + (255 - in[0][x]) * f + 128) / 256; }),
               QString());
    }
  }

  void weightsOfEdgesAndShadesFollowTheirFormulas() {
    QCOMPARE(firstDifference([](const Rows& in, std::uint8_t* out, int count) { edgeRow(in[0], out, count); },
                             [](const Rows& in, int x) { return in[0][x] * (255 - in[0][x]) / 256; }),
             QString());
    for (const int depth : {0, 1, 200, 256})
      QCOMPARE(firstDifference(
                   [&](const Rows& in, std::uint8_t* out, int count) { shadeRow(in[0], depth, out, count); },
                   [&](const Rows& in, int x) { return (255 - in[0][x]) * depth / 256; }),
               QString());
  }

  void chromaTakesTheMeanOfFour() {
    const Noise noise;
    for (int width = 1; width <= 2 * kLengthMax; ++width)
      for (int start = 0; start < 3; ++start) {
        const Rows in = noise.from(start);
        std::uint8_t out[128];
        memset(out, kUntouched, sizeof out);
        chromaMeanRow(in[0], in[1], out + start, width);
        for (int x = 0; x < (width + 1) / 2; ++x) {
          const int right = qMin(2 * x + 1, width - 1);
          const int sum = in[0][2 * x] + in[0][right] + in[1][2 * x] + in[1][right];
          QCOMPARE(int(out[start + x]), (sum + 2) / 4);
        }
        QCOMPARE(int(out[start + (width + 1) / 2]), int(kUntouched));
      }
  }

  void invertingFollowsItsFormula() {
    for (const int ends : {0, 16 + 235, 2 * 128, 510})
      for (const int weight : {0, 77, 256})
        QCOMPARE(firstDifference(
                     [&](const Rows& in, std::uint8_t* out, int count) {
                       mixPartlyInvertedRow({in[0], in[1]}, {in[2], in[3]}, ends, weight, out, count);
                     },
                     [&](const Rows& in, int x) {
                       const int a = weighed(in[0][x], held(ends - in[0][x]), in[1][x]);
                       const int b = weighed(in[2][x], held(ends - in[2][x]), in[3][x]);
                       return (a * (256 - weight) + b * weight + 128) / 256;
                     }),
                 QString());
  }

  void mixTowardsFollowsItsFormula() {
    for (const int target : {0, 16, 128, 235, 255})
      QCOMPARE(
          firstDifference([&](const Rows& in, std::uint8_t* out,
                              int count) { mixTowardsRow(in[0], in[1], in[2], target, in[3], out, count); },
                          [&](const Rows& in, int x) {
                            return weighed(weighed(in[0][x], in[1][x], in[2][x]), target, in[3][x]);
                          }),
          QString());
  }

  void productOfLumaIsThatOfItsLight() {
    std::uint8_t a[256];
    std::uint8_t out[256];
    for (int i = 0; i < 256; ++i)
      a[i] = static_cast<std::uint8_t>(i);
    for (int other = 0; other < 256; ++other) {
      std::uint8_t b[256];
      memset(b, other, sizeof b);
      multiplyLumaRow(a, b, out, 256);
      for (int i = 0; i < 256; ++i) {
        const double exact = 16 + qMax(i - 16, 0) * qMax(other - 16, 0) / 219.0;
        QVERIFY(qAbs(out[i] - qMin(exact, 255.0)) <= 1.0);
        if (i >= 16 && other == 235)
          QCOMPARE(int(out[i]), i);
        if (i >= 16 && i <= 235 && other >= 16 && other <= 235)
          QVERIFY(out[i] >= 16 && out[i] <= qMin(i, other));
      }
    }
    QCOMPARE(firstDifference([](const Rows& in, std::uint8_t* to,
                                int count) { multiplyLumaRow(in[0], in[1], to, count); },
                             [](const Rows& in, int x) {
                               const int product = qMax(in[0][x] - 16, 0) * qMax(in[1][x] - 16, 0);
                               return held(16 + (product + 109) * 299 / 65536);
                             }),
             QString());
  }

  void productOfChromaFollowsTheLightOfTheOtherPicture() {
    const auto exactly = [](const Rows& in, int x) {
      const double sum =
          (in[0][x] - 128) * qMax(in[3][x] - 16, 0) + (in[1][x] - 128) * qMax(in[2][x] - 16, 0);
      return qBound(16.0, 128 + sum / 219, 240.0);
    };
    const Noise noise;
    const Rows in = noise.from(0);
    std::uint8_t out[128];
    multiplyChromaRow(in[0], in[1], in[2], in[3], out, 128);
    for (int x = 0; x < 128; ++x)
      QVERIFY2(qAbs(out[x] - exactly(in, x)) <= 1.5, qPrintable(QString::number(x)));
    QCOMPARE(
        firstDifference([](const Rows& rows, std::uint8_t* to,
                           int count) { multiplyChromaRow(rows[0], rows[1], rows[2], rows[3], to, count); },
                        [](const Rows& rows, int x) {
                          const auto tinted = [&](int chroma, int luma) {
                            return std::floor((rows[chroma][x] - 128) * qMax(rows[luma][x] - 16, 0) / 4.0);
                          };
                          const double sum = tinted(0, 3) + tinted(1, 2) + 27;
                          return qBound(16, 128 + static_cast<int>(std::floor(sum * 1197 / 65536)), 240);
                        }),
        QString());
    // White leaves the other picture's colour alone, black takes all of it.
    const std::uint8_t color[] = {16, 90, 128, 200, 240};
    const std::uint8_t none[] = {128, 128, 128, 128, 128};
    const std::uint8_t white[] = {235, 235, 235, 235, 235};
    const std::uint8_t black[] = {16, 16, 16, 16, 16};
    std::uint8_t product[5];
    multiplyChromaRow(color, none, white, white, product, 5);
    for (int i = 0; i < 5; ++i)
      QVERIFY(qAbs(product[i] - color[i]) <= 1);
    multiplyChromaRow(color, none, white, black, product, 5);
    for (const std::uint8_t chroma : product)
      QCOMPARE(int(chroma), 128);
  }

  void mixingOverTheMiddleFollowsItsFormula() {
    QCOMPARE(firstDifference([](const Rows& in, std::uint8_t* out,
                                int count) { mixOverRow(in[0], in[1], in[2], in[3], out, count); },
                             [](const Rows& in, int x) {
                               const int way = 2 * in[3][x];
                               return way <= 255 ? weighed(in[0][x], in[1][x], way)
                                                 : weighed(in[1][x], in[2][x], way - 255);
                             }),
             QString());
  }
};

int main(int argc, char** argv) {
  return korvia::test::runWithEveryInstructionSet<ColorKernelsTest>(argc, argv);
}

#include "tst_color_kernels.moc"
