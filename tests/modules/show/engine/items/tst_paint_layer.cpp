// Drawings over a picture: code values, edges, shape, and when nothing is drawn.
#include <QPainter>
#include <QtTest>

#include "engine/items/PaintLayer.h"

using namespace korvia;

namespace {

constexpr FrameSize kSize{8, 6};

/// Grey of luma 180 with a tint.
FrameRef picture(FrameSize size = kSize) {
  MutableFrame frame(new Frame(size, false));
  for (int plane = 0; plane < 3; ++plane)
    for (int y = 0; y < frame->planeHeight(plane); ++y)
      memset(frame->writablePlane(plane) + y * frame->stride(plane), plane == Frame::Y ? 180 : 100,
             frame->planeWidth(plane));
  return std::move(frame).publish();
}

QImage drawing(QColor color, QRect rect, QSize size = QSize(8, 6)) {
  QImage image(size, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(rect, color);
  return image;
}

int sample(const FrameRef& frame, int plane, int x, int y) {
  return frame->plane(plane)[y * frame->stride(plane) + x];
}

}  // namespace

class PaintLayerTest : public QObject {
  Q_OBJECT

 private:
  FramePool pool_{kSize};

 private slots:
  void anOpaqueDrawingReplacesWhatItCovers() {
    PaintLayer layer;
    layer.setValid(true);
    layer.commit(drawing(Qt::white, QRect(2, 2, 4, 2)), kSize);
    const FrameRef under = picture();
    const FrameRef drawn = layer.over(under, pool_);
    for (int y = 0; y < 6; ++y)
      for (int x = 0; x < 8; ++x)
        QCOMPARE(sample(drawn, Frame::Y, x, y), x >= 2 && x < 6 && y >= 2 && y < 4 ? 235 : 180);
    QCOMPARE(sample(drawn, Frame::U, 0, 1), 100);
    QCOMPARE(sample(drawn, Frame::U, 1, 1), 128);
    QCOMPARE(sample(drawn, Frame::V, 2, 1), 128);
    QCOMPARE(sample(drawn, Frame::V, 3, 1), 100);
    QCOMPARE(sample(under, Frame::Y, 3, 3), 180);
  }

  void alphaMixes() {
    PaintLayer layer;
    layer.setValid(true);
    layer.commit(drawing(QColor(255, 255, 255, 128), QRect(0, 0, 8, 6)), kSize);
    const FrameRef drawn = layer.over(picture(), pool_);
    // 180 + (235 - 180) * 128 / 255, and 100 + (128 - 100) * 128 / 255.
    QVERIFY(qAbs(sample(drawn, Frame::Y, 4, 4) - 208) <= 1);
    QVERIFY(qAbs(sample(drawn, Frame::U, 2, 2) - 114) <= 1);
  }

  void aSinglePixelKeepsItsColourAtTheEdge() {
    PaintLayer layer;
    layer.setValid(true);
    layer.commit(drawing(Qt::red, QRect(7, 5, 1, 1)), kSize);
    const FrameRef drawn = layer.over(picture(), pool_);
    QCOMPARE(sample(drawn, Frame::Y, 7, 5), 63);
    QCOMPARE(sample(drawn, Frame::Y, 6, 5), 180);
    // A quarter of the red's 240, three quarters of 100.
    QVERIFY(qAbs(sample(drawn, Frame::V, 3, 2) - 135) <= 1);
  }

  void aDrawingOfAnotherShapeIsNotStretched() {
    PaintLayer layer;
    layer.setValid(true);
    layer.commit(drawing(Qt::white, QRect(0, 0, 40, 10), QSize(40, 10)), kSize);
    const FrameRef drawn = layer.over(picture(), pool_);
    QCOMPARE(sample(drawn, Frame::Y, 4, 0), 180);
    QCOMPARE(sample(drawn, Frame::Y, 4, 2), 235);
    QCOMPARE(sample(drawn, Frame::Y, 4, 5), 180);
  }

  void withoutADrawingThePictureGoesThrough() {
    PaintLayer layer;
    const FrameRef under = picture();
    QVERIFY(layer.over(under, pool_) == under);
    layer.commit(drawing(Qt::white, QRect(0, 0, 8, 6)), kSize);
    QVERIFY(layer.over(under, pool_) == under);  // not valid yet
    layer.setValid(true);
    QVERIFY(layer.over(under, pool_) != under);
    layer.commit(drawing(Qt::transparent, QRect(0, 0, 8, 6)), kSize);
    QVERIFY(layer.over(under, pool_) == under);
    layer.commit(QImage(), kSize);
    QVERIFY(layer.over(under, pool_) == under);
    layer.commit(drawing(Qt::white, QRect(0, 0, 8, 6)), kSize);
    const FrameRef other = picture({16, 8});  // of a show of another size
    QVERIFY(layer.over(other, pool_) == other);
    layer.setValid(false);
    layer.setValid(true);
    QVERIFY(layer.over(under, pool_) == under);  // the end forgot it
  }

  void theSameIsDrawnOnce() {
    PaintLayer layer;
    layer.setValid(true);
    layer.commit(drawing(Qt::white, QRect(0, 0, 2, 2)), kSize);
    const FrameRef under = picture();
    const FrameRef drawn = layer.over(under, pool_);
    QVERIFY(layer.over(under, pool_) == drawn);
    QVERIFY(layer.over(picture(), pool_) != drawn);
    const FrameRef again = layer.over(under, pool_);
    layer.commit(drawing(Qt::black, QRect(0, 0, 2, 2)), kSize);
    const FrameRef changed = layer.over(under, pool_);
    QVERIFY(changed != again);
    QCOMPARE(sample(changed, Frame::Y, 0, 0), 16);
  }
};

QTEST_GUILESS_MAIN(PaintLayerTest)
#include "tst_paint_layer.moc"
