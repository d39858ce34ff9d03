// The distortions against their formulas at every sample, in double precision, on smooth pictures; and what
// their random numbers may do.
#include <QtTest>
#include <cmath>
#include <functional>

#include "engine/mix/SeededRandom.h"
#include "engine/mix/TransitionCatalog.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kBandedSwirl = 62;
constexpr int kCircleStretch = 63;
constexpr int kCloudReveal = 64;
constexpr int kCrumble = 65;
constexpr int kDissolve = 66;
constexpr int kRadialWiggle = 67;
constexpr int kRandomCircleReveal = 68;
constexpr int kRipple = 69;
constexpr int kWave = 70;
constexpr int kMagnifySmooth = 71;
constexpr int kTextureMap = 72;

constexpr double kPi = 3.14159265358979323846;

// A picture of 960 x 540 has nodes to 960 and 544.
constexpr FrameSize kSize{960, 540};
constexpr double kCenterX = 479.5;
constexpr double kCenterY = 269.5;
const double kReach = std::hypot(480.5, 274.5);

FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, MixPoint point) {
  TransitionScratch scratch;
  MutableFrame out(new Frame(from->size()));
  transitionFor(effect)->mix(*from, *to, point, scratch, *out);
  return std::move(out).publish();
}

/// The smooth pictures at any place of a plane, in samples of that plane.
double smooth(int picture, int plane, double x, double y) {
  const double scale = plane == 0 ? 1 : 2;
  const double u = x * scale;
  const double v = y * scale;
  return picture == 0 ? 110 + 40 * std::sin(u / 60 + plane) + 25 * std::cos(v / 70)
                      : 130 + 50 * std::cos(u / 80 + v / 75 + plane);
}

FrameRef smoothPicture(int picture) {
  return frameOf(kSize, [&](int plane, int x, int y) { return std::lround(smooth(picture, plane, x, y)); });
}

struct Place {
  double x;
  double y;
};

double mirrored(double place, int count) {
  const double end = count - 1;
  return qMax(end - qAbs(end - qAbs(place)), 0.0);
}

using Formula = std::function<double(int plane, int x, int y)>;

/// Largest and mean difference to the formula, at the samples whose columns and rows are multiples of `step`
/// of luma.
Difference differenceTo(const Formula& exactAt, const Frame& actual, int step) {
  Difference result;
  double largest = 0;
  int count = 0;
  for (int plane = 0; plane < 3; ++plane) {
    const PlaneView view = planeOf(actual, plane);
    const int every = plane == 0 ? step : qMax(step / 2, 1);
    for (int y = 0; y < view.height; y += every)
      for (int x = 0; x < view.width; x += every) {
        const double off = std::abs(view.row(y)[x] - exactAt(plane, x, y));
        largest = qMax(largest, off);
        result.mean += off;
        ++count;
      }
  }
  result.largest = static_cast<int>(std::ceil(largest));
  result.mean /= count;
  return result;
}

double softly(double t) {
  return t * t * (3 - 2 * t);
}

/// A picture, at a sample of a plane, moved by a displacement in samples of luma.
double moved(int picture, int plane, int x, int y, Place displacement) {
  const double scale = plane == 0 ? 1 : 2;
  const int width = plane == 0 ? kSize.width : kSize.chromaWidth();
  const int height = plane == 0 ? kSize.height : kSize.chromaHeight();
  return smooth(picture, plane, mirrored(x + displacement.x / scale, width),
                mirrored(y + displacement.y / scale, height));
}

double level(double position, double softness, double arrival) {
  return qBound(0.0, (position * (1 + softness) - arrival) / softness, 1.0);
}

/// How strong a bend is at a position.
double swellOf(double position) {
  const double way = 4 * position * (1 - position);
  return way * way * (3 - 2 * way);
}

Place swirl(double position, double x, double y) {
  const double radius = std::hypot(x - kCenterX, y - kCenterY);
  const double wave = std::sin(5 * kPi * radius / kReach);
  const double angle = swellOf(position) * 1.2 * wave / std::sqrt(wave * wave + 0.2);
  const double turned = std::atan2(y - kCenterY, x - kCenterX) + angle;
  return {kCenterX + radius * std::cos(turned) - x, kCenterY + radius * std::sin(turned) - y};
}

Place ripple(double position, double x, double y) {
  const double radius = std::hypot(x - kCenterX, y - kCenterY);
  const double length = 0.17 * kReach;
  const double wave = swellOf(position) * 0.027 * kReach *
                      std::sin(2 * kPi * (radius / length - 3 * position)) * qMin(radius / (length / 2), 1.0);
  const double angle = std::atan2(y - kCenterY, x - kCenterX);
  return {wave * std::cos(angle), wave * std::sin(angle)};
}

Place wave(double position, double /*x*/, double y) {
  return {swellOf(position) * 48 * std::sin(2 * kPi * (y / (0.32 * 540) - 2 * position)), 0};
}

Place weave(double position, double x, double y) {
  const double strand = 0.1 * kReach;
  const double depth = swellOf(position) * 0.03 * kReach;
  const bool down = (static_cast<int>(x / strand) + static_cast<int>(y / strand)) % 2 == 0;
  const double along = down ? x : y;
  const double end = down ? y : x;
  const double bend = depth * std::sin(2 * kPi * along / strand) * std::abs(std::sin(kPi * end / strand));
  return down ? Place{bend, 0} : Place{0, bend};
}

Place wiggle(double position, double x, double y) {
  const double turn = (std::atan2(y - kCenterY, x - kCenterX) / (2 * kPi) + 0.5) * 48;
  const int ray = static_cast<int>(turn);
  const double a = seededRandom(7, ray % 48, 48);
  const double b = seededRandom(7, (ray + 1) % 48, 48);
  const double stretch = swellOf(position) * 0.3 * (2 * (a + (b - a) * (turn - ray)) - 1);
  return {(x - kCenterX) * stretch, (y - kCenterY) * stretch};
}

Place crumble(double position, double x, double y) {
  const double size = 0.055 * kReach;
  double nearest = 1e30;
  Place displacement{};
  // All pieces of the picture and those around it.
  for (int row = 0; row < 22; ++row)
    for (int column = 0; column < 35; ++column) {
      const double toX = x - (column - 1 + seededRandom(7, column, row)) * size;
      const double toY = y - (row - 1 + seededRandom(8, column, row)) * size;
      if (std::hypot(toX, toY) >= nearest)
        continue;
      nearest = std::hypot(toX, toY);
      const double heading = 2 * kPi * seededRandom(9, column, row);
      const double far = 0.11 * kReach * seededRandom(10, column, row);
      const double turn = 0.9 * (2 * seededRandom(11, column, row) - 1);
      displacement = {far * std::cos(heading) - turn * toY, far * std::sin(heading) + turn * toX};
    }
  const double swell = swellOf(position);
  return {swell * displacement.x, swell * displacement.y};
}

using Field = Place (*)(double position, double x, double y);

/// Symmetric left to right and top to bottom.
FrameRef symmetricPicture(double length) {
  return frameOf({240, 136}, [&](int plane, int x, int y) {
    const double scale = plane == 0 ? 1 : 2;
    const double u = std::abs((plane == 0 ? x - 119.5 : x - 59.5) * scale);
    const double v = std::abs((plane == 0 ? y - 67.5 : y - 33.5) * scale);
    return std::lround(120 + 30 * std::cos(u / length) + 20 * std::cos(v / (length + 5)));
  });
}

int largestAsymmetry(const Frame& picture) {
  int largest = 0;
  const PlaneView view = planeOf(picture, Frame::Y);
  for (int y = 0; y < view.height; ++y)
    for (int x = 0; x < view.width; ++x) {
      const int here = view.row(y)[x];
      largest = qMax(largest, qAbs(here - view.row(y)[view.width - 1 - x]));
      largest = qMax(largest, qAbs(here - view.row(view.height - 1 - y)[x]));
    }
  return largest;
}

/// All planes of the mix of 0 and 255 show how much of the second picture is there.
FrameRef shownMask(int effect, FrameSize size, MixPoint point) {
  return mixed(effect, flat(size, 0), flat(size, 255), point);
}

double mean(const PlaneView& plane) {
  double sum = 0;
  for (int y = 0; y < plane.height; ++y)
    for (int x = 0; x < plane.width; ++x)
      sum += plane.row(y)[x];
  return sum / plane.width / plane.height;
}

}  // namespace

class DistortionsTest : public QObject {
  Q_OBJECT

 private slots:
  void bendsAsItsFormulaSays_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<void*>("field");
    QTest::addColumn<int>("largest");
    QTest::addColumn<double>("mean");
    const auto add = [](const char* name, int effect, Field field, int largest, double mean) {
      QTest::addRow("%s", name) << effect << reinterpret_cast<void*>(field) << largest << mean;
    };
    // The last four have sharp edges, which are softer between the nodes.
    add("Ripple", kRipple, ripple, 3, 0.5);
    add("Wave", kWave, wave, 3, 0.5);
    add("BandedSwirl", kBandedSwirl, swirl, 255, 0.9);
    add("ApplyTextureMap", kTextureMap, weave, 255, 0.6);
    add("RadialWiggle", kRadialWiggle, wiggle, 255, 0.6);
    add("Crumble", kCrumble, crumble, 255, 3);
  }
  void bendsAsItsFormulaSays() {
    QFETCH(int, effect);
    QFETCH(void*, field);
    QFETCH(int, largest);
    QFETCH(double, mean);
    const FrameRef a = smoothPicture(0);
    const FrameRef b = smoothPicture(1);
    for (const double position : {0.1, 0.5, 0.8}) {
      const FrameRef actual = mixed(effect, a, b, {position, 7});
      const double weight = softly(position);
      const Formula exactAt = [&](int plane, int x, int y) {
        const int scale = plane == 0 ? 1 : 2;
        const Place displacement = reinterpret_cast<Field>(field)(position, x * scale, y * scale);
        return moved(0, plane, x, y, displacement) * (1 - weight) +
               moved(1, plane, x, y, displacement) * weight;
      };
      const Difference atNodes = differenceTo(exactAt, *actual, effect == kCrumble ? 16 : 8);
      QVERIFY2(atNodes.largest <= 3, qPrintable(QString::number(atNodes.largest)));
      const Difference between = differenceTo(exactAt, *actual, effect == kCrumble ? 13 : 3);
      QVERIFY2(between.largest <= largest && between.mean < mean,
               qPrintable(QString("%1, mean %2").arg(between.largest).arg(between.mean)));
    }
  }

  void stretchesInACircle() {
    const FrameRef a = smoothPicture(0);
    const FrameRef b = smoothPicture(1);
    for (const double position : {0.15, 0.5, 0.85}) {
      const FrameRef actual = mixed(kCircleStretch, a, b, {position, 7});
      const double rim = position * kReach;
      const double squeezedX = qMax(qMin(1.6 * (1 - position), 480 / rim - 1), 0.0);
      const double squeezedY = qMax(qMin(1.6 * (1 - position), 270 / rim - 1), 0.0);
      const Formula exactAt = [&](int plane, int x, int y) {
        const int scale = plane == 0 ? 1 : 2;
        const double fromX = x * scale - kCenterX;
        const double fromY = y * scale - kCenterY;
        const double radius = std::hypot(fromX, fromY);
        const double outwards = qMin(radius * radius / (rim * rim), 1.4);
        const double open = level(position, 0.03, radius / kReach);
        return smooth(0, plane, x, y) * (1 - open) +
               moved(1, plane, x, y, {fromX * outwards * squeezedX, fromY * outwards * squeezedY}) * open;
      };
      QVERIFY(differenceTo(exactAt, *actual, 3).largest <= 3);
    }
  }

  void magnifiesWhatOpensInTheMiddle() {
    const FrameRef a = smoothPicture(0);
    const FrameRef b = smoothPicture(1);
    for (const double position : {0.15, 0.5, 0.85}) {
      const FrameRef actual = mixed(kMagnifySmooth, a, b, {position, 7});
      const double magnified = 0.8 * swellOf(position);
      const double lens = kReach * (0.3 + 0.7 * position);
      const Formula exactAt = [&](int plane, int x, int y) {
        const int scale = plane == 0 ? 1 : 2;
        const double fromX = x * scale - kCenterX;
        const double fromY = y * scale - kCenterY;
        const double radius = std::hypot(fromX, fromY);
        const double inside = qMax(1 - radius * radius / (lens * lens), 0.0);
        const double inwards = magnified * inside * inside;
        const Place displacement{-fromX * inwards, -fromY * inwards};
        const double open = level(position, 0.35, radius * (1 - inwards) / kReach);
        return moved(0, plane, x, y, displacement) * (1 - open) + moved(1, plane, x, y, displacement) * open;
      };
      QVERIFY(differenceTo(exactAt, *actual, 3).largest <= 3);
    }
  }

  void flatPicturesOnlyFade_data() {
    QTest::addColumn<int>("effect");
    for (const int effect : {kBandedSwirl, kCrumble, kRadialWiggle, kRipple, kWave, kTextureMap})
      QTest::addRow("%d", effect) << effect;
  }
  void flatPicturesOnlyFade() {
    QFETCH(int, effect);
    struct Step {
      double position;
      int value;
    };
    // 200 times 40, 128 and 216 of 256.
    for (const Step step : {Step{0, 0}, {0.25, 31}, {0.5, 100}, {0.75, 169}, {1, 200}}) {
      const FrameRef now = mixed(effect, flat({37, 21}, 0), flat({37, 21}, 200), {step.position, 3});
      QCOMPARE(difference(*now, *flat({37, 21}, step.value)).largest, 0);
    }
  }

  void symmetricPicturesStaySymmetric_data() {
    QTest::addColumn<int>("effect");
    for (const int effect : {kRipple, kCircleStretch, kMagnifySmooth})
      QTest::addRow("%d", effect) << effect;
  }
  void symmetricPicturesStaySymmetric() {
    QFETCH(int, effect);
    const FrameRef a = symmetricPicture(30);
    const FrameRef b = symmetricPicture(45);
    QCOMPARE(largestAsymmetry(*a), 0);
    for (const double position : {0.2, 0.5, 0.9}) {
      const int largest = largestAsymmetry(*mixed(effect, a, b, {position, 7}));
      QVERIFY2(largest <= 3, qPrintable(QString::number(largest)));
    }
  }

  void aSwirlIsThatOfThePictureUpsideDown() {
    const FrameRef a = symmetricPicture(30);
    const FrameRef b = symmetricPicture(45);
    const FrameRef now = mixed(kBandedSwirl, a, b, {0.5, 7});
    const PlaneView view = planeOf(*now, Frame::Y);
    double sum = 0;
    for (int y = 0; y < view.height; ++y)
      for (int x = 0; x < view.width; ++x)
        sum += qAbs(view.row(y)[x] - view.row(view.height - 1 - y)[view.width - 1 - x]);
    QVERIFY2(sum / view.width / view.height < 3, qPrintable(QString::number(sum / view.width / view.height)));
    QVERIFY(largestAsymmetry(*now) > 20);
  }

  void onlyRandomEffectsFollowTheSeed() {
    const FrameRef a = scenery({320, 180}, 0);
    const FrameRef b = scenery({320, 180}, 1);
    for (int effect = kBandedSwirl; effect <= kTextureMap; ++effect) {
      const bool random = effect == kCloudReveal || effect == kCrumble || effect == kDissolve ||
                          effect == kRadialWiggle || effect == kRandomCircleReveal;
      const double mean = difference(*mixed(effect, a, b, {0.4, 1}), *mixed(effect, a, b, {0.4, 2})).mean;
      QVERIFY2(random ? mean > 1 : mean == 0, qPrintable(QString("%1: %2").arg(effect).arg(mean)));
    }
  }

  void revealsOnlyOpen_data() {
    QTest::addColumn<int>("effect");
    for (const int effect : {kCloudReveal, kDissolve, kRandomCircleReveal})
      QTest::addRow("%d", effect) << effect;
  }
  void revealsOnlyOpen() {
    QFETCH(int, effect);
    constexpr FrameSize kSmall{203, 117};
    FrameRef last = shownMask(effect, kSmall, {0, 5});
    for (int i = 1; i <= 40; ++i) {
      const FrameRef now = shownMask(effect, kSmall, {i / 40.0, 5});
      const PlaneView luma = planeOf(*now, Frame::Y);
      const PlaneView before = planeOf(*last, Frame::Y);
      for (int y = 0; y < luma.height; ++y)
        for (int x = 0; x < luma.width; ++x)
          QVERIFY(luma.row(y)[x] >= before.row(y)[x]);
      for (const int plane : {Frame::U, Frame::V}) {
        const PlaneView chroma = planeOf(*now, plane);
        for (int y = 0; y < chroma.height; ++y)
          for (int x = 0; x < chroma.width; ++x)
            QCOMPARE(chroma.row(y)[x], luma.row(2 * y)[2 * x]);
      }
      last = now;
    }
  }

  void cloudsAndGrainsCoverEvenly_data() {
    QTest::addColumn<int>("effect");
    QTest::addRow("clouds") << kCloudReveal;
    QTest::addRow("grains") << kDissolve;
  }
  void cloudsAndGrainsCoverEvenly() {
    QFETCH(int, effect);
    for (const std::uint32_t seed : {1U, 2U, 3U}) {
      const auto covered = [&](double position) {
        return mean(planeOf(*shownMask(effect, {960, 540}, {position, seed}), Frame::Y)) / 255;
      };
      // Soft as they are, they begin and end a little slower.
      QVERIFY(qAbs(covered(0.5) - 0.5) < 0.03);
      QVERIFY(covered(0.25) > 0.08 && covered(0.25) < 0.3);
      QVERIFY(qAbs(covered(0.25) + covered(0.75) - 1) < 0.05);
    }
  }

  void grainsAreAFewSamplesWide() {
    const FrameRef mask = shownMask(kDissolve, {960, 540}, {0.5, 5});
    const PlaneView plane = planeOf(*mask, Frame::Y);
    const auto unlike = [&](int apart) {
      double sum = 0;
      for (int y = 0; y < plane.height; ++y)
        for (int x = 0; x < 900; ++x)
          sum += qAbs(plane.row(y)[x] - plane.row(y)[x + apart]);
      return sum / plane.height / 900;
    };
    // As different as any two are, and much less.
    const double far = unlike(50);
    QVERIFY(unlike(8) > 0.95 * far);
    QVERIFY(unlike(1) < 0.5 * far);
  }

  void cloudsAreLargeAndSoft() {
    const FrameRef mask = shownMask(kCloudReveal, {960, 540}, {0.5, 5});
    const PlaneView plane = planeOf(*mask, Frame::Y);
    double sum = 0;
    for (int y = 0; y < plane.height; ++y)
      for (int x = 1; x < plane.width; ++x)
        sum += qAbs(plane.row(y)[x] - plane.row(y)[x - 1]);
    QVERIFY(sum / plane.height / plane.width < 6);
  }

  void theRaggedCircleHasOneRimInEachDirection() {
    const FrameRef mask = shownMask(kRandomCircleReveal, {960, 540}, {0.3, 5});
    const PlaneView plane = planeOf(*mask, Frame::Y);
    double nearest = 1e9;
    double farthest = 0;
    for (int direction = 0; direction < 360; ++direction) {
      const double x = std::cos(direction * kPi / 180);
      const double y = std::sin(direction * kPi / 180);
      int last = 255;
      double rim = 0;
      for (int radius = 0; radius < 265; ++radius) {
        const int now = plane.row(qRound(kCenterY + y * radius))[qRound(kCenterX + x * radius)];
        // Half a sample beside the ray, the rim is a little further out or in.
        QVERIFY2(now <= last + 24, qPrintable(QString("%1 after %2").arg(now).arg(last)));
        last = now;
        if (now >= 128)
          rim = radius;
      }
      nearest = qMin(nearest, rim);
      farthest = qMax(farthest, rim);
    }
    QVERIFY(nearest > 40);
    QVERIFY(farthest > 1.25 * nearest);
  }
};

QTEST_GUILESS_MAIN(DistortionsTest)
#include "tst_distortions.moc"
