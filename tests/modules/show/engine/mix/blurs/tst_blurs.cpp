// Each blur against a slow reference of what it is to do, and what holds for all of them.
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>

#include "engine/mix/TransitionCatalog.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

enum Effect { kCircular = 53, kRadial, kPixelate, kDirectional, kDisk, kSharpen, kTelescopic, kZoom };

FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, double position) {
  TransitionScratch scratch;
  MutableFrame out(new Frame(from->size()));
  transitionFor(effect)->mix(*from, *to, {position, 1}, scratch, *out);
  return std::move(out).publish();
}

/// What the effect makes of a picture that does not change.
FrameRef blurred(int effect, const FrameRef& picture, double position) {
  return mixed(effect, picture, picture, position);
}

void everyBlur() {
  QTest::addColumn<int>("effect");
  for (int effect = kCircular; effect <= kZoom; ++effect)
    QTest::addRow("%d", effect) << effect;
}

constexpr FrameSize kSize{640, 360};

/// A picture without an end, from the middle of the frame in luma samples, of values 46 to 206. Luma and
/// chroma differ, so that a plane that takes the other's points is found.
double shade(int plane, double x, double y) {
  return plane == 0 ? 126 + 80 * std::sin(x / 26 + 1) * std::cos(y / 20)
                    : 126 + 80 * std::cos(x / 32) * std::sin(y / 24 + 2);
}

/// That picture, or what `value(plane, x, y)` makes of it.
FrameRef shaded(const std::function<double(int, double, double)>& value) {
  return frameOf(kSize, [&](int plane, int x, int y) {
    const int step = plane == 0 ? 1 : 2;
    return qRound(value(plane, (x + 0.5) * step - kSize.width / 2.0, (y + 0.5) * step - kSize.height / 2.0));
  });
}

/// The mean of the picture along a movement from half of it back to half of it onwards.
double smeared(int plane, double x, double y, double turn, double growth, double smear) {
  constexpr int kSteps = 25;
  double sum = 0;
  for (int i = 0; i < kSteps; ++i) {
    const double part = (i + 0.5) / kSteps - 0.5;
    const double scale = std::exp(-(growth + part * smear));
    const double angle = -part * turn;
    sum += shade(plane, scale * (x * std::cos(angle) - y * std::sin(angle)),
                 scale * (x * std::sin(angle) + y * std::cos(angle)));
  }
  return sum / kSteps;
}

/// The largest difference within a distance from the middle, in luma samples.
int largestDifferenceInside(const Frame& a, const Frame& b, double reach) {
  int largest = 0;
  for (int plane = 0; plane < 3; ++plane) {
    const PlaneView first = planeOf(a, plane);
    const PlaneView second = planeOf(b, plane);
    const int step = plane == 0 ? 1 : 2;
    for (int y = 0; y < first.height; ++y)
      for (int x = 0; x < first.width; ++x)
        if (std::hypot((x + 0.5) * step - a.width() / 2.0, (y + 0.5) * step - a.height() / 2.0) < reach)
          largest = qMax(largest, qAbs(first.row(y)[x] - second.row(y)[x]));
  }
  return largest;
}

/// Mean difference of neighbours to the right in luma where `inside(distance from the middle)`.
double roughness(const Frame& frame, const std::function<bool(double)>& inside) {
  const PlaneView luma = planeOf(frame, Frame::Y);
  double sum = 0;
  int count = 0;
  for (int y = 0; y < luma.height; ++y)
    for (int x = 0; x + 1 < luma.width; ++x)
      if (inside(std::hypot(x + 0.5 - luma.width / 2.0, y + 0.5 - luma.height / 2.0))) {
        sum += qAbs(luma.row(y)[x] - luma.row(y)[x + 1]);
        ++count;
      }
  return sum / count;
}

}  // namespace

class BlursTest : public QObject {
  Q_OBJECT

 private slots:
  void flatPicturesStayFlat_data() { everyBlur(); }
  void flatPicturesStayFlat() {
    QFETCH(int, effect);
    // An eyepiece darkens what lies round it, all but black.
    const bool black = effect == kTelescopic;
    for (const FrameSize size : {FrameSize{1, 1}, {1, 7}, {5, 1}, {33, 17}, {160, 90}}) {
      const FrameRef picture = frameOf(size, [&](int plane, int, int) {
        constexpr int kBlack[] = {16, 128, 128};
        constexpr int kColor[] = {93, 61, 201};
        return black ? kBlack[plane] : kColor[plane];
      });
      for (const double position : {0.04, 0.3, 0.5, 0.83})
        QCOMPARE(difference(*blurred(effect, picture, position), *picture).largest, 0);
    }
  }

  void theRangeIsKept_data() { everyBlur(); }
  void theRangeIsKept() {
    QFETCH(int, effect);
    const auto legal = [](std::uint32_t seed) {
      return frameOf({90, 70}, [seed](int plane, int, int) mutable {
        seed = seed * 1664525 + 1013904223;
        return 16 + static_cast<int>((seed >> 24) % (plane == 0 ? 220U : 225U));
      });
    };
    for (const double position : {0.1, 0.35, 0.5, 0.7}) {
      const FrameRef now = mixed(effect, legal(1), legal(2), position);
      for (int plane = 0; plane < 3; ++plane) {
        const PlaneView view = planeOf(*now, plane);
        for (int y = 0; y < view.height; ++y)
          for (int x = 0; x < view.width; ++x)
            QVERIFY(view.row(y)[x] >= 16 && view.row(y)[x] <= (plane == 0 ? 235 : 240));
      }
    }
  }

  void circularSmearsAlongCircles() {
    const FrameRef picture = shaded(shade);
    const FrameRef expected =
        shaded([](int plane, double x, double y) { return smeared(plane, x, y, 0.4, 0, 0); });
    QVERIFY(difference(*picture, *expected).mean > 10);
    const int largest = largestDifferenceInside(*blurred(kCircular, picture, 0.5), *expected, 170);
    QVERIFY2(largest <= 6, qPrintable(QString::number(largest)));
  }

  void circularKeepsRings() {
    const FrameRef rings =
        shaded([](int, double x, double y) { return 126 + 80 * std::cos(std::hypot(x, y) / 18); });
    const FrameRef rays =
        shaded([](int, double x, double y) { return 126 + 80 * std::cos(12 * std::atan2(y, x)); });
    const int ringsLoss = largestDifferenceInside(*blurred(kCircular, rings, 0.5), *rings, 170);
    const int raysLoss = largestDifferenceInside(*blurred(kCircular, rays, 0.5), *rays, 170);
    QVERIFY2(ringsLoss < 12, qPrintable(QString::number(ringsLoss)));
    QVERIFY2(raysLoss > 50, qPrintable(QString::number(raysLoss)));
  }

  void radialSmearsAlongRays() {
    const FrameRef picture = shaded(shade);
    const FrameRef expected =
        shaded([](int plane, double x, double y) { return smeared(plane, x, y, 0, 0, 0.35); });
    const int largest = largestDifferenceInside(*blurred(kRadial, picture, 0.5), *expected, 145);
    QVERIFY2(largest <= 6, qPrintable(QString::number(largest)));
  }

  void radialKeepsRaysAndItsMiddle() {
    const FrameRef rings =
        shaded([](int, double x, double y) { return 126 + 80 * std::cos(std::hypot(x, y) / 9); });
    const FrameRef rays =
        shaded([](int, double x, double y) { return 126 + 80 * std::cos(5 * std::atan2(y, x)); });
    const FrameRef out = blurred(kRadial, rays, 0.5);
    const PlaneView before = planeOf(*rays, Frame::Y);
    const PlaneView after = planeOf(*out, Frame::Y);
    for (int x = 400; x < 620; ++x)
      QVERIFY(qAbs(before.row(200)[x] - after.row(200)[x]) <= 8);
    QVERIFY(largestDifferenceInside(*blurred(kRadial, rings, 0.5), *rings, 145) > 50);
    const FrameRef sharp = noise(kSize, 3);
    QCOMPARE(largestDifferenceInside(*blurred(kRadial, sharp, 0.1), *sharp, 4), 0);
  }

  void pixelateAveragesBlocks() {
    const FrameRef a = noise({401, 277}, 1);
    const FrameRef b = noise({401, 277}, 2);
    const FrameRef now = mixed(kPixelate, a, b, 0.5);
    for (int plane = 0; plane < 3; ++plane) {
      const PlaneView first = planeOf(*a, plane);
      const PlaneView second = planeOf(*b, plane);
      const PlaneView out = planeOf(*now, plane);
      const int side = plane == Frame::U || plane == Frame::V ? 8 : 16;
      for (int top = 0; top < out.height; top += side)
        for (int left = 0; left < out.width; left += side) {
          const int bottom = qMin(top + side, out.height);
          const int right = qMin(left + side, out.width);
          double sum = 0;
          for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
              sum += (first.row(y)[x] + second.row(y)[x]) / 2.0;
          const double mean = sum / ((bottom - top) * (right - left));
          for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
              QVERIFY(qAbs(out.row(y)[x] - mean) <= 1);
        }
    }
  }

  void pixelateGrowsAndShrinks() {
    const FrameRef picture = noise({320, 272}, 1);
    double last = 0;
    for (const double position : {0.0, 0.05, 0.1, 0.2, 0.3, 0.5}) {
      const double lost = difference(*blurred(kPixelate, picture, position), *picture).mean;
      QVERIFY(position == 0 || lost > last);
      QCOMPARE(difference(*blurred(kPixelate, picture, position), *blurred(kPixelate, picture, 1 - position))
                   .largest,
               0);
      last = lost;
    }
  }

  void directionalAveragesALine() {
    const FrameRef picture = noise({200, 40}, 1);
    const FrameRef now = blurred(kDirectional, picture, 0.5);
    for (int plane = 0; plane < 3; ++plane) {
      const PlaneView in = planeOf(*picture, plane);
      const PlaneView out = planeOf(*now, plane);
      const int radius = plane == 0 ? 12 : 6;
      for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x) {
          double sum = 0;
          for (int i = -radius; i <= radius; ++i)
            sum += in.row(y)[qBound(0, x + i, in.width - 1)];
          QVERIFY(qAbs(out.row(y)[x] - sum / (2 * radius + 1)) <= 0.501);
        }
    }
  }

  void directionalKeepsLinesAlongIt() {
    const FrameRef lines = frameOf({150, 60}, [](int, int, int y) { return y % 2 ? 200 : 40; });
    const FrameRef posts = frameOf({150, 60}, [](int, int x, int) { return x % 2 ? 200 : 40; });
    for (const double position : {0.1, 0.45})
      QCOMPARE(difference(*blurred(kDirectional, lines, position), *lines).largest, 0);
    QVERIFY(difference(*blurred(kDirectional, posts, 0.45), *posts).mean > 60);
  }

  void diskSpreadsAPointEvenly() {
    const FrameRef point = frameOf({320, 240}, [](int plane, int x, int y) {
      return plane == 0 && x >= 156 && x < 164 && y >= 116 && y < 124 ? 235 : 16;
    });
    const FrameRef disk = blurred(kDisk, point, 0.5);
    const PlaneView luma = planeOf(*disk, Frame::Y);
    for (int y = 0; y < 240; ++y)
      for (int x = 0; x < 320; ++x) {
        QCOMPARE(int(luma.row(y)[x]), int(luma.row(239 - y)[319 - x]));
        const double distance = std::hypot(x - 159.5, y - 119.5);
        // 12 of the radius, 6 of the point and what the small picture adds.
        if (distance > 28)
          QCOMPARE(int(luma.row(y)[x]), 16);
        if (distance < 6)
          QVERIFY(luma.row(y)[x] > 30 && luma.row(y)[x] < 90);
      }
  }

  void diskGrows() {
    const FrameRef picture = noise({320, 240}, 1);
    double last = 255;
    for (const double position : {0.03, 0.06, 0.1, 0.2, 0.5}) {
      const double rough = roughness(*blurred(kDisk, picture, position), [](double) { return true; });
      QVERIFY(rough < last);
      last = rough;
    }
    QVERIFY(last < 2);
  }

  void sharpenOverdrawsEdges() {
    const FrameRef edge = frameOf({120, 60}, [](int, int x, int) { return x < 60 ? 100 : 150; });
    const FrameRef now = blurred(kSharpen, edge, 0.5);
    const PlaneView luma = planeOf(*now, Frame::Y);
    for (int y = 0; y < 60; ++y) {
      QVERIFY(luma.row(y)[59] < 40);
      QVERIFY(luma.row(y)[60] > 210);
      for (int x = 0; x < 50; ++x) {
        QCOMPARE(int(luma.row(y)[x]), 100);
        QCOMPARE(int(luma.row(y)[119 - x]), 150);
      }
    }
  }

  void sharpenLeavesSoftShadesAlone() {
    const FrameRef shade = frameOf({240, 60}, [](int, int x, int y) { return 60 + x / 4 + y / 10; });
    QVERIFY(difference(*blurred(kSharpen, shade, 0.5), *shade).largest <= 1);
  }

  void telescopicIsSharpInsideItsEyepiece() {
    const FrameRef a = noise({320, 240}, 1);
    const FrameRef b = noise({320, 240}, 2);
    const FrameRef now = mixed(kTelescopic, a, b, 0.5);
    const FrameRef fade = mixed(22, a, b, 0.5);
    // The eyepiece has 72 samples in the middle of the way.
    QCOMPARE(largestDifferenceInside(*now, *fade, 58), 0);
    const auto outside = [](double distance) { return distance > 85; };
    QVERIFY(roughness(*fade, outside) > 30);
    QVERIFY(roughness(*now, outside) < 4);
  }

  void telescopicDarkensAndEnlargesRoundIt() {
    const FrameRef bright = flat({320, 240}, 200);
    const FrameRef dark = blurred(kTelescopic, bright, 0.5);
    const PlaneView luma = planeOf(*dark, Frame::Y);
    QCOMPARE(int(luma.row(120)[160]), 200);
    QVERIFY(luma.row(120)[160 + 82] < 110);
    QVERIFY(luma.row(120)[310] > 120 && luma.row(120)[310] < 170);
    // A line 100 samples from the middle shows where 100 * exp(0.15) is.
    const FrameRef line = frameOf(
        {320, 240}, [](int plane, int x, int) { return plane == 0 && x >= 258 && x < 262 ? 235 : 16; });
    const FrameRef moved = blurred(kTelescopic, line, 0.5);
    const std::uint8_t* row = planeOf(*moved, Frame::Y).row(120);
    const auto brightest = static_cast<int>(std::max_element(row + 240, row + 320) - row);
    QVERIFY2(brightest >= 271 && brightest <= 281, qPrintable(QString::number(brightest)));
  }

  void zoomNearsTheFirstPicture() {
    const FrameRef picture = shaded(shade);
    const double smear = 0.4 * 0.104;
    const double growth = 1.6 * std::pow(0.1, 1.5);
    const FrameRef expected =
        shaded([&](int plane, double x, double y) { return smeared(plane, x, y, 0, growth, smear); });
    QVERIFY(largestDifferenceInside(*picture, *expected, 170) > 20);
    const int largest =
        largestDifferenceInside(*mixed(kZoom, picture, flat(kSize, 128), 0.1), *expected, 170);
    QVERIFY2(largest <= 4, qPrintable(QString::number(largest)));
  }

  void zoomSettlesInTheSecond() {
    const FrameRef picture = shaded(shade);
    const double smear = 0.4 * 0.104;
    const FrameRef expected =
        shaded([&](int plane, double x, double y) { return smeared(plane, x, y, 0, -0.9 * 0.01, smear); });
    const int largest =
        largestDifferenceInside(*mixed(kZoom, flat(kSize, 128), picture, 0.9), *expected, 165);
    QVERIFY2(largest <= 4, qPrintable(QString::number(largest)));
  }
};

QTEST_GUILESS_MAIN(BlursTest)
#include "tst_blurs.moc"
