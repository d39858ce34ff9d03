// The fade against its formula, over odd sizes and strides.
#include <QtTest>

#include "engine/frame/FramePool.h"
#include "engine/mix/fades/CrossFade.h"

using namespace korvia;

namespace {

FrameRef noise(FrameSize size, quint32 seed) {
  FramePool pool(size);
  MutableFrame frame = pool.acquire();
  for (int plane = 0; plane < 3; ++plane)
    for (int y = 0; y < frame->planeHeight(plane); ++y)
      for (int x = 0; x < frame->planeWidth(plane); ++x) {
        seed = seed * 1664525 + 1013904223;
        frame->writablePlane(plane)[y * frame->stride(plane) + x] = seed >> 24;
      }
  return std::move(frame).publish();
}

}  // namespace

class CrossFadeTest : public QObject {
  Q_OBJECT

 private slots:
  void followsItsFormula() {
    const CrossFade fade;
    TransitionScratch scratch;
    const double positions[] = {0.001, 0.25, 0.5, 0.7, 0.999};
    for (int side = 1; side <= 70; ++side) {
      const FrameSize size{side, 71 - side};
      const FrameRef a = noise(size, 1);
      const FrameRef b = noise(size, 2);
      FramePool pool(size);
      for (const double position : positions) {
        MutableFrame out = pool.acquire();
        fade.mix(*a, *b, {position, 0}, scratch, *out);
        const int w = qBound(0, qRound(position * 256), 256);
        for (int plane = 0; plane < 3; ++plane)
          for (int y = 0; y < out->planeHeight(plane); ++y)
            for (int x = 0; x < out->planeWidth(plane); ++x) {
              const int va = a->plane(plane)[y * a->stride(plane) + x];
              const int vb = b->plane(plane)[y * b->stride(plane) + x];
              const int expected = (va * (256 - w) + vb * w + 128) >> 8;
              const int got = out->plane(plane)[y * out->stride(plane) + x];
              QVERIFY2(got == expected, qPrintable(QString("%1x%2 plane %3 at %4,%5: %6 for %7")
                                                       .arg(size.width)
                                                       .arg(size.height)
                                                       .arg(plane)
                                                       .arg(x)
                                                       .arg(y)
                                                       .arg(got)
                                                       .arg(expected)));
            }
      }
    }
  }

  void equalPicturesStayAsTheyAre() {
    const FrameSize size{33, 17};
    const FrameRef a = noise(size, 5);
    FramePool pool(size);
    MutableFrame out = pool.acquire();
    TransitionScratch scratch;
    CrossFade().mix(*a, *a, {0.37, 0}, scratch, *out);
    for (int plane = 0; plane < 3; ++plane)
      for (int y = 0; y < out->planeHeight(plane); ++y)
        QCOMPARE(memcmp(out->plane(plane) + y * out->stride(plane), a->plane(plane) + y * a->stride(plane),
                        out->planeWidth(plane)),
                 0);
  }
};

QTEST_GUILESS_MAIN(CrossFadeTest)
#include "tst_cross_fade.moc"
