// The rings of the drop: where they are, how broad and how bright.
#include <QtTest>

#include "engine/mix/TransitionCatalog.h"
#include "engine/mix/fades/DropFade.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kDrop = 23;

FrameRef mixed(const FrameRef& from, const FrameRef& to, double position) {
  MutableFrame out(new Frame(from->size()));
  TransitionScratch scratch;
  transitionFor(kDrop)->mix(*from, *to, {position, 1}, scratch, *out);
  return std::move(out).publish();
}

}  // namespace

class DropFadeTest : public QObject {
  Q_OBJECT

 private slots:
  void runsFromTheCenterToTheCorners() {
    for (const double distance : {0.0, 0.3, 0.7, 1.0}) {
      QCOMPARE(dropPointAt(distance, 0).weight, 0.0);
      QCOMPARE(dropPointAt(distance, 0).light, 0.0);
      QCOMPARE(dropPointAt(distance, 1).weight, 1.0);
      QCOMPARE(dropPointAt(distance, 1).light, 0.0);
    }
    QVERIFY(dropPointAt(0, 0.2).weight > 0.3);
    QCOMPARE(dropPointAt(0.5, 0.2).weight, 0.0);
    QCOMPARE(dropPointAt(0.2, 0.6).weight, 1.0);
    QVERIFY(dropPointAt(1, 0.6).weight < 0.1);
    // The front's middle: half faded, and lit most.
    QVERIFY(std::abs(dropPointAt(0.5, 0.5).weight - 0.5) < 0.08);
    QVERIFY(dropPointAt(0.475, 0.5).light > 0.15);
    QVERIFY(dropPointAt(0.375, 0.5).light < -0.13);
  }

  void isNeitherAFadeOfAllNorAHole() {
    const FrameSize size{320, 180};
    const FrameRef now = mixed(flat(size, 0), flat(size, 255), 0.5);
    const PlaneView weights = planeOf(*now, Frame::U);
    int between = 0;
    for (int y = 0; y < weights.height; ++y)
      for (int x = 0; x < weights.width; ++x)
        between += weights.row(y)[x] > 12 && weights.row(y)[x] < 243 ? 1 : 0;
    QVERIFY(between > weights.width * weights.height / 2);
    QVERIFY(weights.row(45)[80] > 240);
    QVERIFY(weights.row(0)[0] < 15);
    QVERIFY(weights.row(89)[159] < 15);
  }

  void ringsLightenAndDarkenLumaOnly() {
    const FrameSize size{640, 64};
    const FrameRef plain = flat(size, 120);
    const FrameRef now = mixed(plain, plain, 0.5);
    const PlaneView luma = planeOf(*now, Frame::Y);
    int changes = 0;
    int sign = 0;
    int brightest = 0;
    for (int x = 320; x < 640; ++x) {
      const int light = luma.row(32)[x] - 120;
      brightest = std::max(brightest, std::abs(light));
      if (std::abs(light) > 2 && (light > 0 ? 1 : -1) != sign) {
        sign = light > 0 ? 1 : -1;
        ++changes;
      }
    }
    QVERIFY2(changes >= 5 && changes <= 9, qPrintable(QString::number(changes)));
    QVERIFY2(brightest >= 10 && brightest <= 18, qPrintable(QString::number(brightest)));
    for (const int plane : {Frame::U, Frame::V}) {
      const PlaneView chroma = planeOf(*now, plane);
      for (int y = 0; y < chroma.height; ++y)
        for (int x = 0; x < chroma.width; ++x)
          QCOMPARE(int(chroma.row(y)[x]), 120);
    }
  }

  void blackStaysBlack() {
    const FrameRef black = flat({64, 36}, 16);
    for (const double position : {0.2, 0.5, 0.8})
      QCOMPARE(difference(*mixed(black, black, position), *black).largest, 0);
  }

  void isWhatItMeans() {
    for (int side = 1; side <= 70; side += 3) {
      const FrameSize size{side, 71 - side};
      const FrameRef a = noise(size, 1);
      const FrameRef b = noise(size, 2);
      for (const double position : {0.03, 0.3, 0.5, 0.9}) {
        const FrameRef now = mixed(a, b, position);
        double off = 0;
        for (int plane = 0; plane < 3; ++plane) {
          const PlaneView view = planeOf(*now, plane);
          const double halfWidth = view.width / 2.0;
          const double halfHeight = view.height / 2.0;
          for (int y = 0; y < view.height; ++y)
            for (int x = 0; x < view.width; ++x) {
              const double distance = std::hypot(x + 0.5 - halfWidth, y + 0.5 - halfHeight);
              const DropPoint point = dropPointAt(distance / std::hypot(halfWidth, halfHeight), position);
              const double va = planeOf(*a, plane).row(y)[x];
              const double mix = va + (planeOf(*b, plane).row(y)[x] - va) * point.weight;
              const double light = plane == Frame::Y ? (mix - 16) * point.light : 0;
              const double expected = std::clamp(mix + light, 0.0, 255.0);
              off = std::max(off, std::abs(view.row(y)[x] - expected));
            }
        }
        QVERIFY2(off <= 2,
                 qPrintable(
                     QString("%1 for %2x%3 at %4").arg(off).arg(size.width).arg(size.height).arg(position)));
      }
    }
  }

  void isTheSameOnAllSides() {
    const FrameSize size{65, 34};
    const FrameRef now = mixed(flat(size, 30), flat(size, 220), 0.45);
    for (int plane = 0; plane < 3; ++plane) {
      const PlaneView view = planeOf(*now, plane);
      for (int y = 0; y < view.height; ++y)
        for (int x = 0; x < view.width; ++x) {
          QCOMPARE(view.row(y)[x], view.row(y)[view.width - 1 - x]);
          QCOMPARE(view.row(y)[x], view.row(view.height - 1 - y)[x]);
        }
    }
  }
};

QTEST_GUILESS_MAIN(DropFadeTest)
#include "tst_drop_fade.moc"
