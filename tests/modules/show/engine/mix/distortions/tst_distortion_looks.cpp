// What a viewer sees of the distortions, read from two ramps: a sample of a bent ramp tells from which
// column, and from which row, it comes. The numbers were worked out by hand.
#include <QtTest>
#include <algorithm>
#include <cmath>

#include "engine/mix/TransitionCatalog.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kBandedSwirl = 62;
constexpr int kCircleStretch = 63;
constexpr int kCrumble = 65;
constexpr int kRadialWiggle = 67;
constexpr int kRipple = 69;
constexpr int kWave = 70;
constexpr int kMagnify = 71;
constexpr int kWovenGlass = 72;

constexpr FrameSize kSize{200, 200};
constexpr double kMiddle = 99.5;

FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, double position) {
  TransitionScratch scratch;
  MutableFrame out(new Frame(from->size()));
  transitionFor(effect)->mix(*from, *to, {position, 7}, scratch, *out);
  return std::move(out).publish();
}

int lumaAt(const FrameRef& frame, int x, int y) {
  return planeOf(*frame, Frame::Y).row(y)[x];
}

constexpr int kRampBegin = 28;

FrameRef rampOfColumns() {
  return frameOf(kSize, [](int plane, int x, int) { return plane != 0 ? 128 : kRampBegin + x; });
}

FrameRef rampOfRows() {
  return frameOf(kSize, [](int plane, int, int y) { return plane != 0 ? 128 : kRampBegin + y; });
}

/// Where the samples of a bent picture come from.
class Origins {
 public:
  Origins(int effect, double position)
      : columns_(mixed(effect, rampOfColumns(), rampOfColumns(), position)),
        rows_(mixed(effect, rampOfRows(), rampOfRows(), position)) {}

  int column(int x, int y) const { return lumaAt(columns_, x, y) - kRampBegin; }
  int row(int x, int y) const { return lumaAt(rows_, x, y) - kRampBegin; }
  double distance(int x, int y) const { return std::hypot(column(x, y) - kMiddle, row(x, y) - kMiddle); }
  /// Clockwise, from the right.
  double angle(int x, int y) const { return std::atan2(row(x, y) - kMiddle, column(x, y) - kMiddle); }

 private:
  FrameRef columns_;
  FrameRef rows_;
};

bool isNear(double got, double expected, double tolerance) {
  return std::abs(got - expected) <= tolerance;
}

}  // namespace

class DistortionLooksTest : public QObject {
  Q_OBJECT

 private slots:
  void rippleMovesAlongTheRadius() {
    const Origins origins(kRipple, 0.5);
    // Waves of 24 samples, 3.8 high: outwards and inwards by turns, and not across.
    int largest = 0;
    int smallest = 0;
    int turns = 0;
    int last = 1;
    for (int x = 112; x < 196; ++x) {
      const int outwards = origins.column(x, 99) - x;
      QVERIFY(isNear(origins.row(x, 99), 99, 1));
      // The left side is its mirror image, and the picture stands on its side as well.
      QVERIFY(isNear(origins.column(199 - x, 99) - (199 - x), -outwards, 1.5));
      QVERIFY(isNear(origins.row(99, x) - x, outwards, 1.5));
      QVERIFY(isNear(origins.column(99, x), 99, 1));
      largest = std::max(largest, outwards);
      smallest = std::min(smallest, outwards);
      if (outwards * last < 0) {
        last = -last;
        ++turns;
      }
    }
    QVERIFY2(largest >= 2 && largest <= 4, QByteArray::number(largest));
    QVERIFY2(smallest <= -2 && smallest >= -4, QByteArray::number(smallest));
    QVERIFY2(turns >= 6 && turns <= 8, QByteArray::number(turns));
  }

  void waveMovesWholeRows() {
    const Origins origins(kWave, 0.5);
    // Waves of 64 rows, 10 wide.
    const struct {
      int row;
      int shift;
    } kRows[] = {{0, 0}, {16, 10}, {32, 0}, {48, -10}, {64, 0}, {80, 10}, {112, -10}};
    for (const auto& expected : kRows) {
      for (const int x : {20, 100, 180}) {
        QVERIFY2(isNear(origins.column(x, expected.row) - x, expected.shift, 1),
                 QByteArray::number(origins.column(x, expected.row) - x));
        QCOMPARE(origins.row(x, expected.row), expected.row);
      }
    }
  }

  void swirlTurnsRingsAgainstEachOther() {
    const Origins origins(kBandedSwirl, 0.5);
    const struct {
      int distance;
      double angle;
    } kRings[] = {{28, 0}, {42, -1.1}, {57, 0}, {71, 1.1}, {85, 0}};
    for (const auto& ring : kRings) {
      const int x = 99 + ring.distance;
      QVERIFY2(isNear(origins.angle(x, 99), ring.angle, 0.25),
               QByteArray::number(ring.distance) + ": " + QByteArray::number(origins.angle(x, 99)));
      // A ring stays a ring, also where it is turned most.
      if (ring.angle != 0) {
        QVERIFY(isNear(origins.distance(x, 99), ring.distance, 4));
        QVERIFY(isNear(origins.distance(99, 199 - x), ring.distance, 4));
      }
    }
  }

  void radialWiggleKeepsEachDirection() {
    const Origins origins(kRadialWiggle, 0.5);
    double nearest = 1e9;
    double farthest = 0;
    for (int degrees = 3; degrees < 360; degrees += 5) {
      const double angle = degrees * 3.14159265 / 180;
      const int x = qRound(kMiddle + 60 * std::cos(angle));
      const int y = qRound(kMiddle + 60 * std::sin(angle));
      const double turned = origins.angle(x, y) - std::atan2(y - kMiddle, x - kMiddle);
      QVERIFY2(std::abs(std::remainder(turned, 2 * 3.14159265)) < 0.03, QByteArray::number(turned));
      nearest = std::min(nearest, origins.distance(x, y));
      farthest = std::max(farthest, origins.distance(x, y));
    }
    // Stretched or squeezed by up to 0.3, and not all alike.
    QVERIFY2(nearest >= 41 && nearest < 54, QByteArray::number(nearest));
    QVERIFY2(farthest <= 79 && farthest > 66, QByteArray::number(farthest));
  }

  void magnifyEnlargesTheMiddle() {
    const Origins origins(kMagnify, 0.5);
    // In the middle nearly five times.
    for (const auto& [x, expected] : {std::pair{120, 105}, {79, 94}, {140, 119}, {59, 80}})
      QVERIFY2(isNear(origins.column(x, 99), expected, 2), QByteArray::number(origins.column(x, 99)));
    // The lens has a radius of 92.
    for (const int place : {0, 5, 194, 199}) {
      QCOMPARE(origins.column(place, 99), place);
      QCOMPARE(origins.row(99, place), place);
    }
  }

  void circleStretchOpensACircleAndSqueezesTheSecondPicture() {
    const FrameRef flatOut = mixed(kCircleStretch, flat(kSize, 50), flat(kSize, 200), 0.5);
    for (const int distance : {0, 30, 64})
      QCOMPARE(lumaAt(flatOut, 99 + distance, 99), 200);
    for (const int distance : {78, 99})
      QCOMPARE(lumaAt(flatOut, 99 + distance, 99), 50);
    QCOMPARE(lumaAt(flatOut, 0, 0), 50);
    const FrameRef out = mixed(kCircleStretch, flat(kSize, 50), rampOfColumns(), 0.5);
    // What lies 59 beside the middle is seen at 50: nearer to the rim, the more.
    for (const auto& [x, expected] : {std::pair{149, 159}, {50, 40}, {119, 120}, {100, 100}})
      QVERIFY2(isNear(lumaAt(out, x, 99) - kRampBegin, expected, 2),
               QByteArray::number(lumaAt(out, x, 99) - kRampBegin));
  }

  void wovenGlassRefractsInOneDirectionInEachStrand() {
    // Strands of 28 samples, 8.5 deep; ramps of half a code for each sample.
    constexpr FrameSize kLarge{400, 400};
    const auto ramp = [&](bool ofRows) {
      return frameOf(
          kLarge, [ofRows](int plane, int x, int y) { return plane != 0 ? 128 : 20 + (ofRows ? y : x) / 2; });
    };
    const FrameRef columns = mixed(kWovenGlass, ramp(false), ramp(false), 0.5);
    const FrameRef rows = mixed(kWovenGlass, ramp(true), ramp(true), 0.5);
    const auto across = [&](int x, int y) { return lumaAt(columns, x, y) - 20 - x / 2; };
    const auto down = [&](int x, int y) { return lumaAt(rows, x, y) - 20 - y / 2; };
    // The first strand runs down: its left half shows what lies to the right of it, its right half the other.
    QVERIFY(across(7, 14) >= 2 && across(7, 14) <= 5);
    QVERIFY(across(22, 14) <= -2 && across(22, 14) >= -5);
    QVERIFY(std::abs(down(7, 14)) <= 1);
    QVERIFY(std::abs(down(22, 14)) <= 1);
    // The one beside it runs across.
    QVERIFY(down(42, 7) >= 2 && down(42, 7) <= 5);
    QVERIFY(down(42, 22) <= -2 && down(42, 22) >= -5);
    QVERIFY(std::abs(across(42, 7)) <= 1);
    QVERIFY(std::abs(across(42, 22)) <= 1);
  }

  void crumbleThrowsPiecesAtMostSoFar() {
    // Dark on the left, bright on the right. Pieces fly up to 40 samples and turn around themselves.
    constexpr FrameSize kLarge{640, 360};
    const FrameRef halves =
        frameOf(kLarge, [](int plane, int x, int) { return plane != 0 ? 128 : (x < 320 ? 50 : 200); });
    const FrameRef out = mixed(kCrumble, halves, halves, 0.5);
    int across = 0;
    for (int y = 0; y < kLarge.height; ++y) {
      for (int x = 0; x < kLarge.width; ++x) {
        const int luma = lumaAt(out, x, y);
        if (std::abs(x - 320) > 90)
          QCOMPARE(luma, x < 320 ? 50 : 200);
        else if (std::abs(x - 320) < 20 && std::abs(luma - (x < 320 ? 200 : 50)) < 20)
          ++across;
      }
    }
    // Of the 40 columns at the border a good part comes from the other side.
    QVERIFY2(across > 40 * 360 / 8 && across < 40 * 360 * 5 / 8, QByteArray::number(across));
  }
};

QTEST_GUILESS_MAIN(DistortionLooksTest)
#include "tst_distortion_looks.moc"
