// Bending a picture by displacements at nodes.
#include <QtTest>
#include <cmath>

#include "engine/mix/distortions/DisplacementGrid.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

FrameRef bent(const DisplacementGrid& grid, const Frame& in) {
  MutableFrame out(new Frame(in.size()));
  grid.bend(in, *out);
  return std::move(out).publish();
}

}  // namespace

class DisplacementGridTest : public QObject {
  Q_OBJECT

 private slots:
  void nodesReachOverThePicture() {
    const NodeGrid nodes{{17, 8}};
    QCOMPARE(nodes.columns(), 4);
    QCOMPARE(nodes.rows(), 2);
    QCOMPARE(nodes.centerX(), 8.0);
    QCOMPARE(nodes.centerY(), 3.5);
    QCOMPARE(nodes.reach(), std::hypot(24 - 8.0, 8 - 3.5));
    QCOMPARE((NodeGrid{{1, 1}}.columns()), 2);
    QCOMPARE((NodeGrid{{16, 9}, 2}.columns()), 5);
  }

  void noDisplacementIsACopy() {
    TransitionScratch scratch;
    const FrameRef picture = withoutSpare(*noise({37, 21}, 4));
    DisplacementGrid grid(picture->size(), scratch);
    grid.fill([](int, int, std::size_t) { return Displacement{}; });
    QCOMPARE(difference(*bent(grid, *picture), *picture).largest, 0);
  }

  void allPlanesAreMovedAlike() {
    // Four samples of luma to the right and two down is two and one of chroma.
    TransitionScratch scratch;
    const FrameRef picture = noise({40, 30}, 4);
    DisplacementGrid grid(picture->size(), scratch);
    grid.fill([](int, int, std::size_t) { return Displacement{4, 2}; });
    const FrameRef moved = bent(grid, *picture);
    for (int plane = 0; plane < 3; ++plane) {
      const PlaneView a = planeOf(*picture, plane);
      const PlaneView b = planeOf(*moved, plane);
      const int step = plane == Frame::U || plane == Frame::V ? 1 : 2;
      for (int y = 0; y < a.height - step; ++y)
        for (int x = 0; x < a.width - 2 * step; ++x)
          QCOMPARE(b.row(y)[x], a.row(y + step)[x + 2 * step]);
    }
  }

  void linearFieldsAreExact() {
    // A picture that rises by one with each sample shows its displacements: here half of the place, less 10.
    TransitionScratch scratch;
    const FrameRef picture = frameOf({101, 75}, [](int, int x, int y) { return x + y; });
    DisplacementGrid grid(picture->size(), scratch);
    grid.fill([](int x, int y, std::size_t) { return Displacement{10 - x * 0.5, 6 - y * 0.25}; });
    const FrameRef squeezed = bent(grid, *picture);
    const PlaneView luma = planeOf(*squeezed, Frame::Y);
    for (int y = 0; y < luma.height; ++y)
      for (int x = 0; x < luma.width; ++x)
        QVERIFY(std::abs(luma.row(y)[x] - (x * 0.5 + 10 + y * 0.75 + 6)) <= 0.51);
    for (const int plane : {Frame::U, Frame::V}) {
      const PlaneView view = planeOf(*squeezed, plane);
      for (int y = 0; y < view.height; ++y)
        for (int x = 0; x < view.width; ++x)
          QVERIFY(std::abs(view.row(y)[x] - (x * 0.5 + 5 + y * 0.75 + 3)) <= 0.51);
    }
  }

  void planesOfDifferentStridesAreBentAlike() {
    const FrameRef picture = noise({50, 34}, 3);
    Frame::External external;
    for (int plane = 0; plane < 3; ++plane) {
      external.data[plane] = picture->plane(plane);
      external.stride[plane] = picture->stride(plane);
    }
    // V lies in the rows of a wider picture.
    MutableFrame wide(new Frame({400, 34}));
    for (int y = 0; y < 17; ++y)
      std::copy_n(planeOf(*picture, Frame::V).row(y), 25, writablePlaneOf(*wide, Frame::V).row(y));
    external.data[Frame::V] = wide->plane(Frame::V);
    external.stride[Frame::V] = wide->stride(Frame::V);
    QVERIFY(external.stride[Frame::U] != external.stride[Frame::V]);
    const FrameRef uneven = FrameRef::adopt(new Frame(picture->size(), external));
    TransitionScratch scratch;
    DisplacementGrid grid(picture->size(), scratch);
    grid.fill([](int x, int y, std::size_t) { return Displacement{std::sin(y * 0.3) * 5, x * 0.1}; });
    QCOMPARE(difference(*bent(grid, *uneven), *bent(grid, *picture)).largest, 0);
  }

  void roundFieldsTurnAndStretch() {
    // Twice as far from the centre, and turned by a quarter.
    TransitionScratch scratch;
    const FrameRef picture = frameOf({65, 65}, [](int, int x, int y) { return 2 * x + y; });
    DisplacementGrid grid(picture->size(), scratch);
    grid.fillAround([](double) { return RadialFactors{1, 0}; });
    const FrameRef twice = bent(grid, *picture);
    QCOMPARE(int(planeOf(*twice, Frame::Y).row(32 + 5)[32 + 3]), 2 * (32 + 6) + (32 + 10));
    grid.fillAround([](double) { return RadialFactors{-1, 1}; });
    const FrameRef turned = bent(grid, *picture);
    QCOMPARE(int(planeOf(*turned, Frame::Y).row(32 + 5)[32 + 3]), 2 * (32 - 5) + (32 + 3));
  }

  void hugeDisplacementsAreLimited() {
    TransitionScratch scratch;
    const FrameRef picture = noise({33, 20}, 3);
    DisplacementGrid grid(picture->size(), scratch);
    grid.fill([](int, int, std::size_t) { return Displacement{1e30, -1e30}; });
    const FrameRef far = bent(grid, *picture);
    QCOMPARE(int(planeOf(*far, Frame::Y).row(5)[5]), int(planeOf(*picture, Frame::Y).row(0)[0]));
  }
};

QTEST_GUILESS_MAIN(DisplacementGridTest)
#include "tst_displacement_grid.moc"
