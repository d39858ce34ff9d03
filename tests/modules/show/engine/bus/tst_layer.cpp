// Layers of images: code values, the grid of chroma, clipping at the borders, and when there is no layer.
#include <QPainter>
#include <QtTest>

#include "engine/bus/Layer.h"
#include "engine/frame/PictureFrame.h"
#include "engine/frame/PlaneView.h"

using namespace korvia;

namespace {

constexpr FrameSize kBus{8, 6};

QImage filled(QSize size, QColor color) {
  QImage image(size, QImage::Format_ARGB32);
  image.fill(color);
  return image;
}

int alphaAt(const Layer& layer, int x, int y) {
  return layer.alphaRow(Frame::Y, y - layer.rect.y)[x - layer.rect.x];
}

int chromaAlphaAt(const Layer& layer, int x, int y) {
  return layer.alphaRow(Frame::U, y - layer.rect.y / 2)[x - layer.rect.x / 2];
}

int sampleAt(const Layer& layer, int plane, int x, int y) {
  const int step = stepOf(plane);
  return planeOf(*layer.picture, plane).row(y - layer.rect.y / step)[x - layer.rect.x / step];
}

}  // namespace

class LayerTest : public QObject {
  Q_OBJECT

 private slots:
  void anImageOnTheGridKeepsItsRectangle() {
    const LayerRef layer = Layer::make(filled({4, 2}, Qt::white), {2, 2}, kBus);
    QVERIFY(layer);
    QVERIFY((layer->rect == FrameRect{2, 2, 4, 2}));
    QVERIFY((layer->picture->size() == FrameSize{4, 2}));
    QVERIFY(layer->busSize == kBus);
    QCOMPARE(sampleAt(*layer, Frame::Y, 3, 3), 235);
    QCOMPARE(sampleAt(*layer, Frame::U, 2, 1), 128);
    QCOMPARE(alphaAt(*layer, 5, 3), 255);
    QCOMPARE(chromaAlphaAt(*layer, 1, 1), 255);
    QCOMPARE(int(layer->chromaAlpha.size()), 2);
  }

  void anImageBesideTheGridCoversPartOfItsChroma() {
    const LayerRef layer = Layer::make(filled({3, 1}, Qt::red), {3, 1}, kBus);
    QVERIFY(layer);
    QVERIFY((layer->rect == FrameRect{2, 0, 4, 2}));
    QCOMPARE(alphaAt(*layer, 2, 1), 0);
    QCOMPARE(alphaAt(*layer, 3, 1), 255);
    QCOMPARE(alphaAt(*layer, 3, 0), 0);
    QCOMPARE(alphaAt(*layer, 5, 1), 255);
    // One pixel of four, then two of four: a quarter and a half of the red's 240 over 128.
    QCOMPARE(chromaAlphaAt(*layer, 1, 0), 64);
    QCOMPARE(chromaAlphaAt(*layer, 2, 0), 128);
    QVERIFY(qAbs(sampleAt(*layer, Frame::V, 1, 0) - (128 + 112 / 4)) <= 1);
    QVERIFY(qAbs(sampleAt(*layer, Frame::V, 2, 0) - (128 + 112 / 2)) <= 1);
    QCOMPARE(sampleAt(*layer, Frame::Y, 4, 1), 63);
    QCOMPARE(sampleAt(*layer, Frame::Y, 2, 1), 16);
  }

  void coloursArePremultipliedByTheirAlpha() {
    const LayerRef layer = Layer::make(filled({2, 2}, QColor(255, 255, 255, 128)), {0, 0}, kBus);
    QCOMPARE(alphaAt(*layer, 1, 1), 128);
    QVERIFY(qAbs(sampleAt(*layer, Frame::Y, 1, 1) - (16 + 219 * 128 / 255)) <= 1);
  }

  void transparentBordersAreCutOff() {
    QImage image = filled({8, 6}, Qt::transparent);
    image.setPixelColor(5, 4, Qt::white);
    image.setPixelColor(6, 3, Qt::white);
    const LayerRef layer = Layer::make(image, {0, 0}, kBus);
    QVERIFY((layer->rect == FrameRect{4, 2, 4, 4}));
    QCOMPARE(alphaAt(*layer, 5, 4), 255);
    QCOMPARE(alphaAt(*layer, 6, 3), 255);
    QCOMPARE(alphaAt(*layer, 6, 4), 0);
  }

  void everyBorderClips_data() {
    QTest::addColumn<QPoint>("at");
    QTest::addColumn<QRect>("rect");
    QTest::newRow("left") << QPoint(-2, 2) << QRect(0, 2, 2, 2);
    QTest::newRow("top") << QPoint(2, -1) << QRect(2, 0, 4, 2);
    QTest::newRow("right") << QPoint(6, 2) << QRect(6, 2, 2, 2);
    QTest::newRow("bottom") << QPoint(2, 5) << QRect(2, 4, 4, 2);
    QTest::newRow("corner") << QPoint(7, 5) << QRect(6, 4, 2, 2);
    QTest::newRow("far corner") << QPoint(-3, -1) << QRect(0, 0, 2, 2);
  }
  void everyBorderClips() {
    QFETCH(QPoint, at);
    QFETCH(QRect, rect);
    const LayerRef layer = Layer::make(filled({4, 2}, Qt::white), at, kBus);
    QVERIFY(layer);
    QCOMPARE(QRect(layer->rect.x, layer->rect.y, layer->rect.width, layer->rect.height), rect);
    for (int y = rect.top(); y <= rect.bottom(); ++y)
      for (int x = rect.left(); x <= rect.right(); ++x)
        QCOMPARE(alphaAt(*layer, x, y), QRect(at, QSize(4, 2)).contains(x, y) ? 255 : 0);
  }

  void anOddBusEndsWithTheLayer() {
    const LayerRef layer = Layer::make(filled({2, 2}, Qt::red), {6, 4}, {7, 5});
    QVERIFY((layer->rect == FrameRect{6, 4, 1, 1}));
    // The last chroma sample stands for one column and row only, which the layer covers whole.
    QCOMPARE(chromaAlphaAt(*layer, 3, 2), 255);
    QCOMPARE(sampleAt(*layer, Frame::V, 3, 2), 240);
  }

  void whatCannotBeSeenIsNoLayer() {
    QVERIFY(!Layer::make(QImage(), {0, 0}, kBus));
    QVERIFY(!Layer::make(filled({4, 4}, Qt::transparent), {0, 0}, kBus));
    QVERIFY(!Layer::make(filled({4, 4}, Qt::white), {8, 0}, kBus));
    QVERIFY(!Layer::make(filled({4, 4}, Qt::white), {0, 6}, kBus));
    QVERIFY(!Layer::make(filled({4, 4}, Qt::white), {-4, 0}, kBus));
    QVERIFY(!Layer::make(filled({4, 4}, Qt::white), {0, -4}, kBus));
    QVERIFY(!Layer::make(filled({4, 4}, Qt::white), {0, 0}, {}));
  }

  void imagesOfEveryFormatAreTaken() {
    for (const QImage::Format format :
         {QImage::Format_RGB32, QImage::Format_RGB888, QImage::Format_Grayscale8, QImage::Format_Indexed8,
          QImage::Format_ARGB32_Premultiplied}) {
      const LayerRef layer = Layer::make(filled({4, 2}, Qt::white).convertToFormat(format), {0, 0}, kBus);
      QVERIFY(layer);
      QCOMPARE(sampleAt(*layer, Frame::Y, 1, 1), 235);
      QCOMPARE(alphaAt(*layer, 1, 1), 255);
    }
  }

  void noTwoLayersHaveTheSameVersion() {
    const QImage image = filled({2, 2}, Qt::white);
    QVERIFY(Layer::make(image, {0, 0}, kBus)->version != Layer::make(image, {0, 0}, kBus)->version);
  }
};

QTEST_GUILESS_MAIN(LayerTest)
#include "tst_layer.moc"
