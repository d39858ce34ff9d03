// What a viewer sees of the blurs on pictures of a few shapes: where the light of a shape goes, in code
// values that were worked out by hand.
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <functional>

#include "engine/mix/TransitionCatalog.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

enum Effect { kCircular = 53, kRadial, kPixelate, kDirectional, kDisk, kSharpen, kTelescopic, kZoom };

constexpr int kBlack = 16;
constexpr int kWhite = 235;
constexpr FrameSize kSquare{200, 200};
constexpr double kMiddle = 99.5;

FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, double position) {
  TransitionScratch scratch;
  MutableFrame out(new Frame(from->size()));
  transitionFor(effect)->mix(*from, *to, {position, 1}, scratch, *out);
  return std::move(out).publish();
}

/// White where `inside(x, y)`, on black, without colour.
FrameRef shape(FrameSize size, const std::function<bool(int, int)>& inside) {
  return frameOf(
      size, [&](int plane, int x, int y) { return plane != 0 ? 128 : (inside(x, y) ? kWhite : kBlack); });
}

FrameRef ring(double inner, double outer) {
  return shape(kSquare, [=](int x, int y) {
    const double radius = std::hypot(x - kMiddle, y - kMiddle);
    return radius >= inner && radius < outer;
  });
}

FrameRef blackPicture() {
  return shape(kSquare, [](int, int) { return false; });
}

int lumaAt(const FrameRef& frame, int x, int y) {
  return planeOf(*frame, Frame::Y).row(y)[x];
}

/// At a distance from the middle to the right, to the left, down and up.
QVector<int> around(const FrameRef& frame, int distance) {
  return {lumaAt(frame, 100 + distance, 100), lumaAt(frame, 99 - distance, 100),
          lumaAt(frame, 100, 100 + distance), lumaAt(frame, 100, 99 - distance)};
}

bool areNear(const QVector<int>& values, int expected, int tolerance) {
  return std::all_of(values.begin(), values.end(),
                     [=](int value) { return std::abs(value - expected) <= tolerance; });
}

QByteArray text(const QVector<int>& values) {
  QByteArray line;
  for (const int value : values)
    line += QByteArray::number(value) + ' ';
  return line;
}

/// All light over black.
int lightOf(const FrameRef& frame) {
  int sum = 0;
  const PlaneView luma = planeOf(*frame, Frame::Y);
  for (int y = 0; y < luma.height; ++y)
    for (int x = 0; x < luma.width; ++x)
      sum += luma.row(y)[x] - kBlack;
  return sum;
}

}  // namespace

class BlurLooksTest : public QObject {
  Q_OBJECT

 private slots:
  void pixelateMakesBlocksOfTheirMean() {
    constexpr int kIn[4][8] = {{20, 40, 60, 60, 200, 200, 16, 234},
                               {40, 20, 60, 60, 200, 100, 234, 16},
                               {100, 104, 16, 16, 235, 235, 50, 70},
                               {108, 112, 16, 20, 235, 231, 90, 110}};
    constexpr int kBlocks[2][4] = {{30, 60, 175, 125}, {106, 17, 234, 80}};
    const FrameRef picture =
        frameOf({8, 4}, [&](int plane, int x, int y) { return plane != 0 ? 128 : kIn[y][x]; });
    const FrameRef out = mixed(kPixelate, picture, picture, 0.5);
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 8; ++x)
        QCOMPARE(lumaAt(out, x, y), kBlocks[y / 2][x / 2]);
  }

  void directionalSpreadsAPointOverSevenColumns() {
    const FrameRef out = [] {
      const FrameRef point = shape({50, 4}, [](int x, int y) { return x == 25 && y == 1; });
      return mixed(kDirectional, point, point, 0.5);
    }();
    // 219 over 7 samples is 31.3.
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 50; ++x)
        QCOMPARE(lumaAt(out, x, y), y == 1 && x >= 22 && x <= 28 ? 47 : kBlack);
  }

  void diskKeepsTheLightAndIsRound() {
    const FrameRef square =
        shape(kSquare, [](int x, int y) { return x >= 96 && x < 104 && y >= 96 && y < 104; });
    const FrameRef out = mixed(kDisk, square, square, 0.5);
    QVERIFY2(std::abs(lightOf(out) - 64 * 219) < 64 * 219 / 20, QByteArray::number(lightOf(out)));
    // A disk of radius 10 has 314 samples: 64 white ones make 44 over black.
    QVERIFY2(areNear(around(out, 3), 60, 12), text(around(out, 3)));
    QVERIFY2(areNear(around(out, 26), kBlack, 0), text(around(out, 26)));
    QVERIFY2(areNear({lumaAt(out, 107, 107), lumaAt(out, 92, 107), lumaAt(out, 107, 92), lumaAt(out, 92, 92)},
                     lumaAt(out, 107, 107), 12),
             "not round");
  }

  void circularTurnsASpokeIntoAFan() {
    // 8 rows at a distance of 60 are a third of the smear of 0.4.
    const FrameRef spoke =
        shape(kSquare, [](int x, int y) { return x >= 120 && x < 196 && y >= 96 && y < 104; });
    const FrameRef out = mixed(kCircular, spoke, spoke, 0.5);
    for (const int y : {94, 97, 100, 102, 105})
      QVERIFY2(std::abs(lumaAt(out, 159, y) - 89) <= 6, QByteArray::number(lumaAt(out, 159, y)));
    QCOMPARE(lumaAt(out, 159, 76), kBlack);
    QCOMPARE(lumaAt(out, 159, 123), kBlack);
    // Nothing on the other side, above and below.
    for (const int distance : {30, 60, 90})
      QCOMPARE(around(out, distance).mid(1), QVector<int>(3, kBlack));
  }

  void radialSpreadsARingInwardsAndOutwards() {
    // The logarithm of 64 / 56 is 0.134, of a smear of 0.35.
    const FrameRef white = ring(56, 64);
    const FrameRef out = mixed(kRadial, white, white, 0.5);
    QVERIFY2(areNear(around(out, 59), 99, 8), text(around(out, 59)));
    QVERIFY2(areNear(around(out, 52), 79, 10), text(around(out, 52)));
    QVERIFY2(areNear(around(out, 84), kBlack, 1), text(around(out, 84)));
    QVERIFY2(areNear(around(out, 40), kBlack, 1), text(around(out, 40)));
    QVERIFY2(areNear(around(out, 0), kBlack, 1), text(around(out, 0)));
  }

  void zoomNearsTheFirstPictureAndSettlesInTheSecond() {
    // A ring at 44 has grown to 57 when the zoom is 1.3, and a little of the black picture covers it.
    const FrameRef first = mixed(kZoom, ring(40, 48), blackPicture(), 0.3);
    QVERIFY2(areNear(around(first, 57), 152, 14), text(around(first, 57)));
    QVERIFY2(areNear(around(first, 40), kBlack, 3), text(around(first, 40)));
    QVERIFY2(areNear(around(first, 77), kBlack, 3), text(around(first, 77)));
    // The second is still smaller, 0.945: a ring from 32 to 52 reaches from 30 to 49.
    const FrameRef second = mixed(kZoom, blackPicture(), ring(32, 52), 0.75);
    QVERIFY2(areNear(around(second, 39), 223, 8), text(around(second, 39)));
    QVERIFY2(areNear(around(second, 62), kBlack, 3), text(around(second, 62)));
    QVERIFY2(areNear(around(second, 22), kBlack, 3), text(around(second, 22)));
  }
};

QTEST_GUILESS_MAIN(BlurLooksTest)
#include "tst_blur_looks.moc"
