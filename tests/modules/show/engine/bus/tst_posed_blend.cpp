// Layers that are moved, scaled, rotated and faded, against a slow reference.
#include <QtTest>
#include <cmath>
#include <limits>

#include "engine/bus/Compositor.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

/// Smooth colours and alpha, so that rounded coordinates change little.
QImage softImage(QSize size) {
  QImage image(size, QImage::Format_ARGB32);
  for (int y = 0; y < size.height(); ++y)
    for (int x = 0; x < size.width(); ++x)
      image.setPixel(x, y,
                     qRgba(120 + 100 * std::sin(x * 0.3), 128 + 90 * std::cos(y * 0.4), 200 - 3 * x,
                           150 + 100 * std::sin((x + y) * 0.2)));
  return image;
}

LayerRef movable(const QImage& image, QPoint at, FrameSize busSize) {
  return Layer::makeMovable(image, at, busSize, QRectF(at, QSizeF(image.size())));
}

double sampleOf(const Layer& layer, int plane, bool ofAlpha, double x, double y) {
  const PlaneView top = planeOf(*layer.picture, plane);
  const auto at = [&](int column, int line) -> double {
    if (column < 0 || line < 0 || column >= top.width || line >= top.height)
      return ofAlpha ? 0 : blackOf(plane);
    return ofAlpha ? layer.alphaRow(plane, line)[column] : top.row(line)[column];
  };
  const int column = static_cast<int>(std::floor(x));
  const int line = static_cast<int>(std::floor(y));
  const double right = x - column;
  const double down = y - line;
  return (at(column, line) * (1 - right) + at(column + 1, line) * right) * (1 - down) +
         (at(column, line + 1) * (1 - right) + at(column + 1, line + 1) * right) * down;
}

/// Each sample of the bus's picture looks up the point of the layer that is shown there.
FrameRef reference(const FrameRef& base, const Layer& layer, const LayerPose& pose) {
  const double angle = pose.rotationDegrees * M_PI / 180;
  return frameOf(base->size(), [&](int plane, int column, int line) {
    const int step = stepOf(plane);
    const double x = (column + 0.5) * step - pose.anchorX - pose.moveX;
    const double y = (line + 0.5) * step - pose.anchorY - pose.moveY;
    const double layerX = (x * std::cos(angle) + y * std::sin(angle)) / pose.scaleX + pose.anchorX;
    const double layerY = (-x * std::sin(angle) + y * std::cos(angle)) / pose.scaleY + pose.anchorY;
    const double sampleX = (layerX - layer.rect.x) / step - 0.5;
    const double sampleY = (layerY - layer.rect.y) / step - 0.5;
    const double black = blackOf(plane);
    const double alpha = sampleOf(layer, plane, true, sampleX, sampleY) * pose.opacity / 255;
    const double top = (sampleOf(layer, plane, false, sampleX, sampleY) - black) * pose.opacity + black;
    const double under = planeOf(*base, plane).row(line)[column];
    return static_cast<int>(std::clamp(std::round(top + (under - black) * (1 - alpha)), 0.0, 255.0));
  });
}

LayerPose turned(double degrees, double scale, QPointF move, QPointF anchor, double opacity = 1) {
  LayerPose pose;
  pose.rotationDegrees = degrees;
  pose.scaleX = scale;
  pose.scaleY = scale * 0.8;
  pose.moveX = move.x();
  pose.moveY = move.y();
  pose.anchorX = anchor.x();
  pose.anchorY = anchor.y();
  pose.opacity = opacity;
  return pose;
}

}  // namespace

class PosedBlendTest : public QObject {
  Q_OBJECT

  static FrameRef posed(const FrameRef& base, const LayerRef& layer, const LayerPose& pose) {
    FramePool pool(base->size());
    Compositor compositor;
    return compositor.over(base, {StackedLayer(layer, pose)}, pool);
  }

 private slots:
  void everyAngleAndSizeFollowsTheReference() {
    for (const FrameSize size : {FrameSize{96, 54}, {71, 33}, {33, 71}}) {
      const FrameRef base = noise(size, 3);
      for (const QSize image : {QSize(1, 1), QSize(23, 11), QSize(40, 31)}) {
        const QPoint at(size.width / 3, size.height / 4);
        const LayerRef layer = movable(softImage(image), at, size);
        for (int degrees = 0; degrees < 360; degrees += 15) {
          const LayerPose pose = turned(degrees, 1.3, {3.25, -2.6}, QPointF(at) + QPointF(8, 5), 0.75);
          const auto apart = difference(*posed(base, layer, pose), *reference(base, *layer, pose));
          QVERIFY2(apart.largest <= 4, qPrintable(QString("%1 degrees, %2 x %3: %4")
                                                      .arg(degrees)
                                                      .arg(image.width())
                                                      .arg(image.height())
                                                      .arg(apart.largest)));
        }
      }
    }
  }

  void bordersClip() {
    constexpr FrameSize kSize{63, 35};
    const FrameRef base = noise(kSize, 5);
    const LayerRef layer = movable(softImage({30, 20}), {10, 8}, kSize);
    for (const double x : {-200.0, -31.5, -12.0, 0.0, 40.7, 55.0, 400.0}) {
      for (const double y : {-90.0, -20.25, 0.0, 26.5, 90.0}) {
        const LayerPose pose = turned(30, 1, {x, y}, {25, 18});
        QVERIFY(difference(*posed(base, layer, pose), *reference(base, *layer, pose)).largest <= 4);
        // As it was drawn, but beyond the borders.
        LayerPose moved;
        moved.moveX = x;
        moved.moveY = y;
        QVERIFY(difference(*posed(base, layer, moved), *reference(base, *layer, moved)).largest <= 4);
      }
    }
  }

  void aPlainMovableLayerIsTheClippedOne() {
    constexpr FrameSize kSize{40, 30};
    const FrameRef base = noise(kSize, 7);
    for (const QPoint at : {QPoint(4, 6), QPoint(-9, -7), QPoint(31, 22), QPoint(-3, 25)}) {
      const FrameRef clipped = posed(base, Layer::make(softImage({20, 16}), at, kSize), {});
      const FrameRef unclipped = posed(base, movable(softImage({20, 16}), at, kSize), {});
      // The chroma of an odd corner mixes with what was clipped.
      QVERIFY(difference(*clipped, *unclipped).largest <= 2);
    }
  }

  void wholeMovesAreExact() {
    constexpr FrameSize kSize{64, 36};
    const FrameRef base = noise(kSize, 2);
    const LayerRef layer = movable(softImage({20, 16}), {10, 8}, kSize);
    const LayerRef there = movable(softImage({20, 16}), {26, 14}, kSize);
    LayerPose pose;
    pose.moveX = 16;
    pose.moveY = 6;
    QCOMPARE(difference(*posed(base, layer, pose), *posed(base, there, {})).largest, 0);
  }

  void opacityEndsAreExact() {
    constexpr FrameSize kSize{40, 30};
    const FrameRef base = noise(kSize, 4);
    const LayerRef layer = movable(softImage({20, 16}), {6, 6}, kSize);
    LayerPose pose;
    pose.opacity = 0;
    QCOMPARE(posed(base, layer, pose), base);
  }

  void strangePosesShowNothing() {
    constexpr FrameSize kSize{40, 30};
    const FrameRef base = noise(kSize, 4);
    const LayerRef layer = movable(softImage({20, 16}), {6, 6}, kSize);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    for (const double strange : {nan, infinite, -infinite, 1e300}) {
      for (double LayerPose::*field :
           {&LayerPose::moveX, &LayerPose::moveY, &LayerPose::scaleX, &LayerPose::scaleY,
            &LayerPose::rotationDegrees, &LayerPose::anchorX}) {
        LayerPose pose;
        pose.moveY = 1;
        pose.*field = strange;
        QCOMPARE(difference(*posed(base, layer, pose), *base).largest, 0);
      }
    }
    LayerPose flat;
    flat.scaleX = 0;
    QCOMPARE(difference(*posed(base, layer, flat), *base).largest, 0);
  }
};

QTEST_GUILESS_MAIN(PosedBlendTest)
#include "tst_posed_blend.moc"
