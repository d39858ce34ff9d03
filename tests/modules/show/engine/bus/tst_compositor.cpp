// The compositor against a slow reference, and what it leaves alone.
#include <QtTest>
#include <cmath>

#include "engine/bus/Bus.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

/// An image of random pixels of every transparency.
QImage noiseImage(QSize size, std::uint32_t seed) {
  QImage image(size, QImage::Format_ARGB32);
  for (int y = 0; y < size.height(); ++y)
    for (int x = 0; x < size.width(); ++x) {
      seed = seed * 1664525 + 1013904223;
      const auto alpha = static_cast<int>(seed >> 24);
      image.setPixel(x, y, qRgba(seed >> 8 & 255, seed >> 16 & 255, seed & 255, alpha < 30 ? 0 : alpha));
    }
  return image;
}

/// A reference: blends the layers in exact arithmetic and rounds after each.
FrameRef reference(const FrameRef& base, const std::vector<StackedLayer>& layers) {
  return frameOf(base->size(), [&](int plane, int x, int y) {
    double value = planeOf(*base, plane).row(y)[x];
    for (const StackedLayer& stacked : layers) {
      const LayerRef& layer = stacked.layer;
      const int step = stepOf(plane);
      const PlaneView top = planeOf(*layer->picture, plane);
      const int inX = x - layer->rect.x / step;
      const int inY = y - layer->rect.y / step;
      if (inX < 0 || inY < 0 || inX >= top.width || inY >= top.height)
        continue;
      const double alpha = layer->alphaRow(plane, inY)[inX] / 255.0;
      const double blended = top.row(inY)[inX] + (value - blackOf(plane)) * (1 - alpha);
      value = std::clamp(std::floor(blended + 0.5), 0.0, 255.0);
    }
    return static_cast<int>(value);
  });
}

std::vector<LayerRef> layersOf(const LayerStack& stack) {
  std::vector<LayerRef> layers;
  for (const StackedLayer& stacked : stack.layers())
    layers.push_back(stacked.layer);
  return layers;
}

}  // namespace

class CompositorTest : public QObject {
  Q_OBJECT

 private slots:
  void followsTheReferenceAtEverySizeAndBorder() {
    for (const FrameSize size : {FrameSize{64, 36}, {33, 17}, {17, 33}, {2, 2}, {1, 1}, {1, 9}, {70, 1}}) {
      FramePool pool(size);
      const FrameRef base = noise(size, 9);
      for (const QPoint at : {QPoint(0, 0), QPoint(-5, -3), QPoint(size.width - 4, size.height - 3),
                              QPoint(-5, size.height - 2), QPoint(size.width - 1, -3), QPoint(3, 5)}) {
        for (const QSize image : {QSize(1, 1), QSize(7, 5), QSize(2 * size.width, 2 * size.height)}) {
          Compositor compositor;
          std::vector<StackedLayer> layers;
          for (std::uint32_t seed = 1; seed <= 3; ++seed) {
            const QPoint moved = at + QPoint(static_cast<int>(seed), 0);
            if (LayerRef layer = Layer::make(noiseImage(image, seed), moved, size))
              layers.push_back(std::move(layer));
          }
          const FrameRef composed = compositor.over(base, layers, pool);
          QVERIFY2(difference(*composed, *reference(base, layers)).largest <= 1,
                   qPrintable(QString("%1 x %2").arg(size.width).arg(size.height)));
          QVERIFY(!composed->hasAlpha());
        }
      }
    }
  }

  void fullCoverReplacesEverySample() {
    constexpr FrameSize kSize{33, 17};
    FramePool pool(kSize);
    QImage image(33, 17, QImage::Format_RGB32);
    image.fill(Qt::white);
    Compositor compositor;
    const FrameRef composed = compositor.over(noise(kSize, 1), {Layer::make(image, {0, 0}, kSize)}, pool);
    const FrameRef white = frameOf(kSize, [](int plane, int, int) { return plane == 0 ? 235 : 128; });
    QCOMPARE(difference(*composed, *white).largest, 0);
  }

  void whatIsNotCoveredStaysToTheBit() {
    constexpr FrameSize kSize{33, 17};
    FramePool pool(kSize);
    const FrameRef base = noise(kSize, 1);
    Compositor compositor;
    const LayerRef layer = Layer::make(noiseImage({4, 4}, 2), {8, 6}, kSize);
    const FrameRef composed = compositor.over(base, {layer}, pool);
    for (int plane = 0; plane < 3; ++plane)
      for (int y = 0; y < base->planeHeight(plane); ++y)
        for (int x = 0; x < base->planeWidth(plane); ++x) {
          const int step = stepOf(plane);
          const bool covered = x * step >= 8 && x * step < 12 && y * step >= 6 && y * step < 10;
          if (!covered)
            QCOMPARE(planeOf(*composed, plane).row(y)[x], planeOf(*base, plane).row(y)[x]);
        }
  }

  void withoutCoverTheBaseIsGivenBack() {
    constexpr FrameSize kSize{16, 8};
    FramePool pool(kSize);
    const FrameRef base = noise(kSize, 1);
    Compositor compositor;
    QVERIFY(compositor.over(base, {}, pool) == base);
    QVERIFY(compositor.over(base, {LayerRef(), LayerRef()}, pool) == base);
    // A layer for a show of another size.
    QVERIFY(compositor.over(base, {Layer::make(noiseImage({8, 8}, 1), {0, 0}, {32, 16})}, pool) == base);
  }

  void laterLayersLieOverEarlierOnes() {
    constexpr FrameSize kSize{16, 8};
    FramePool pool(kSize);
    QImage image(16, 8, QImage::Format_RGB32);
    image.fill(Qt::white);
    const LayerRef white = Layer::make(image, {0, 0}, kSize);
    image.fill(Qt::black);
    const LayerRef black = Layer::make(image, {0, 0}, kSize);
    Compositor compositor;
    QCOMPARE(int(compositor.over(noise(kSize, 1), {white, black}, pool)->plane(0)[0]), 16);
    QCOMPARE(int(compositor.over(noise(kSize, 1), {black, white}, pool)->plane(0)[0]), 235);
  }

  void whatStandsStillIsBlendedOnce() {
    constexpr FrameSize kSize{16, 8};
    FramePool pool(kSize);
    const FrameRef base = noise(kSize, 1);
    const LayerRef layer = Layer::make(noiseImage({8, 8}, 1), {0, 0}, kSize);
    Compositor compositor;
    const FrameRef first = compositor.over(base, {layer}, pool);
    QVERIFY(first != base);
    QVERIFY(compositor.over(base, {layer}, pool) == first);
    QVERIFY(compositor.over(base, {layer, LayerRef()}, pool) == first);
    QVERIFY(compositor.over(noise(kSize, 1), {layer}, pool) != first);
    const FrameRef again = compositor.over(base, {layer}, pool);
    QVERIFY(compositor.over(base, {Layer::make(noiseImage({8, 8}, 1), {0, 0}, kSize)}, pool) != again);
    QVERIFY(compositor.over(base, {}, pool) == base);
  }

  void theBaseIsNotChanged() {
    constexpr FrameSize kSize{33, 17};
    FramePool pool(kSize);
    const FrameRef base = noise(kSize, 1);
    const FrameRef copy = noise(kSize, 1);
    Compositor compositor;
    compositor.over(base, {Layer::make(noiseImage({33, 17}, 1), {0, 0}, kSize)}, pool);
    QCOMPARE(difference(*base, *copy).largest, 0);
  }

  void stacksOrderKindsAndTheMomentsOfBeingShown() {
    constexpr FrameSize kSize{16, 8};
    const auto layer = [] { return Layer::make(noiseImage({4, 4}, 1), {0, 0}, kSize); };
    const LayerRef pad = layer(), firstText = layer(), secondText = layer(), logo = layer();
    LayerStack stack;
    QVERIFY(!stack.put(LayerKind::PaintPad, "pad", pad));
    stack.put(LayerKind::Text, "b", firstText);
    stack.put(LayerKind::Text, "a", secondText);
    stack.put(LayerKind::Logo, "a", logo);
    QVERIFY((layersOf(stack) == std::vector<LayerRef>{logo, firstText, secondText, pad}));
    // A change keeps the place, a new showing does not.
    const LayerRef changed = layer();
    QVERIFY(stack.put(LayerKind::Text, "b", changed) == firstText);
    QVERIFY((layersOf(stack) == std::vector<LayerRef>{logo, changed, secondText, pad}));
    QVERIFY(stack.remove(LayerKind::Text, "b") == changed);
    QVERIFY(!stack.remove(LayerKind::Text, "b"));
    QVERIFY(!stack.remove(LayerKind::Overlay, "a"));
    stack.put(LayerKind::Text, "b", changed);
    QVERIFY((layersOf(stack) == std::vector<LayerRef>{logo, secondText, changed, pad}));
  }

  void eachBusHasItsOwnLayers() {
    constexpr FrameSize kSize{16, 8};
    FramePool pool(kSize);
    const FrameRef base = noise(kSize, 1);
    Bus preview;
    Bus program;
    program.layers().put(LayerKind::PaintPad, "pad", Layer::make(noiseImage({8, 8}, 1), {0, 0}, kSize));
    QVERIFY(preview.withLayers(base, pool) == base);
    QVERIFY(program.withLayers(base, pool) != base);
  }
};

QTEST_GUILESS_MAIN(CompositorTest)
#include "tst_compositor.moc"
