// What stays and what is made anew when fields are joined: still and segmented material keeps its lines,
// moving fields leave no comb.
#include <QtTest>
#include <cmath>

#include "engine/source/Deinterlacer.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{128, 96};
constexpr int kBlack = 16;
constexpr int kWhite = 235;

/// The place of a row in luma rows.
int lumaRow(int plane, int y) {
  return plane == 0 ? y : 2 * y;
}

bool isSecondField(int y, FirstField first) {
  return y % 2 == (first == FirstField::Top ? 1 : 0);
}

/// A soft pattern that moves three samples a picture to the right, with sharp posts. Both fields were shot at
/// once.
FrameRef segmented(int number) {
  return frameOf(kSize, [number](int plane, int x, int y) {
    const int column = (plane == 0 ? x : 2 * x) - 3 * number;
    const int row = lumaRow(plane, y);
    const double soft = 120 + 40 * std::sin(column / 7.0) + 30 * std::cos(row / 9.0);
    // Posts that lean, so that a line differs from both of its neighbours.
    return std::lround((column + 2 * row) % 40 < 3 ? soft + 60 : soft);
  });
}

/// A white bar from the left that grows by six samples a field. The edge of a picture is 12 a picture in the
/// first field.
FrameRef growingBar(int number, FirstField first) {
  return frameOf(kSize, [=](int plane, int x, int y) {
    if (plane != 0)
      return 128;
    return x < 12 * number + (isSecondField(y, first) ? 6 : 0) ? kWhite : kBlack;
  });
}

FrameRef bar(FrameSize size, int edge) {
  return frameOf(size,
                 [=](int plane, int x, int) { return plane != 0 ? 128 : (x < edge ? kWhite : kBlack); });
}

class Line {
 public:
  explicit Line(FirstField first) : first_(first) {}

  FrameRef next(const FrameRef& picture) {
    MutableFrame out(new Frame(picture->size(), picture->hasAlpha() ? FrameAlpha::Plane : FrameAlpha::None));
    deinterlacer_.process(picture, first_, *out);
    return std::move(out).publish();
  }
  Deinterlacer& deinterlacer() { return deinterlacer_; }

 private:
  const FirstField first_;
  Deinterlacer deinterlacer_;
};

void bothOrders() {
  QTest::addColumn<bool>("topFirst");
  QTest::newRow("top field first") << true;
  QTest::newRow("bottom field first") << false;
}

}  // namespace

class DeinterlacerTest : public QObject {
  Q_OBJECT

 private:
  static FirstField firstField() {
    QFETCH(bool, topFirst);
    return topFirst ? FirstField::Top : FirstField::Bottom;
  }

 private slots:
  void segmentedMaterialKeepsEveryLine_data() { bothOrders(); }
  void segmentedMaterialKeepsEveryLine() {
    Line line(firstField());
    for (int i = 0; i < 12; ++i) {
      const FrameRef picture = segmented(i);
      const FrameRef out = line.next(picture);
      // One picture to compare with, and three that say the same.
      if (i >= 4)
        QCOMPARE(difference(*out, *picture).largest, 0);
      else if (i < 2)
        QVERIFY(difference(*out, *picture).largest > 20);
    }
  }

  void movingFieldsLeaveNoComb_data() { bothOrders(); }
  void movingFieldsLeaveNoComb() {
    const FirstField first = firstField();
    Line line(first);
    // The first picture has nothing to compare with, and has no comb either.
    for (int i = 1; i < 10; ++i) {
      const FrameRef out = line.next(growingBar(i, first));
      QCOMPARE(difference(*out, *bar(kSize, 12 * i)).largest, 0);
    }
  }

  void stillLinesStayFromTheSecondPictureOn_data() { bothOrders(); }
  void stillLinesStayFromTheSecondPictureOn() {
    Line line(firstField());
    const FrameRef stripes = frameOf(kSize, [](int, int, int y) { return y % 2 ? 200 : 50; });
    const FrameRef first = line.next(stripes);
    QCOMPARE(difference(*first, *flat(kSize, firstField() == FirstField::Top ? 50 : 200)).largest, 0);
    QCOMPARE(difference(*line.next(stripes), *stripes).largest, 0);
    QCOMPARE(difference(*line.next(stripes), *stripes).largest, 0);
  }

  void movementInOneCornerTakesNothingFromTheRest() {
    Line line(FirstField::Top);
    const auto picture = [](int number) {
      return frameOf(kSize, [number](int plane, int x, int y) {
        const bool corner = x < (plane == 0 ? 48 : 24) && y < (plane == 0 ? 48 : 24);
        if (corner)
          return (x + number * 20 + (y % 2) * 10) % 50 < 25 ? 200 : 40;
        return y % 2 ? 180 : 60;
      });
    };
    line.next(picture(0));
    for (int i = 1; i < 6; ++i) {
      const FrameRef now = picture(i);
      const FrameRef out = line.next(now);
      for (int y = 0; y < kSize.height; ++y)
        for (int x = y < 50 ? 50 : 0; x < kSize.width; ++x)
          QCOMPARE(planeOf(*out, Frame::Y).row(y)[x], planeOf(*now, Frame::Y).row(y)[x]);
    }
  }

  void interlacedMaterialEndsTheTrust() {
    // A film that changes from segmented to interlaced pictures has no comb from the first such picture on
    // that moved twice.
    Line line(FirstField::Top);
    for (int i = 0; i < 8; ++i)
      line.next(segmented(i));
    line.next(growingBar(1, FirstField::Top));
    for (int i = 2; i < 9; ++i) {
      const FrameRef out = line.next(growingBar(i, FirstField::Top));
      // Blocks that nothing has moved in are black or white in both fields.
      QCOMPARE(difference(*out, *bar(kSize, 12 * i)).largest, 0);
    }
  }

  void anotherSizeBeginsAnew() {
    constexpr FrameSize kOther{160, 64};
    Line line(FirstField::Top);
    for (int i = 0; i < 8; ++i)
      line.next(segmented(i));
    const FrameRef comb = frameOf(kOther, [](int plane, int x, int y) {
      return plane != 0 ? 128 : (x < 60 + (y % 2) * 6 ? kWhite : kBlack);
    });
    QCOMPARE(difference(*line.next(comb), *bar(kOther, 60)).largest, 0);
    // Back again, the first picture has lost its leaning posts, as the first of all.
    const FrameRef back = segmented(8);
    QVERIFY(difference(*line.next(back), *back).largest > 20);
  }

  void aProgressivePictureBetweenIsTheOneBefore() {
    // In mixed material the deinterlacer must compare with the picture that was shown last.
    const FrameRef stripes = frameOf(kSize, [](int, int, int y) { return y % 2 ? 200 : 50; });
    Line line(FirstField::Top);
    line.next(flat(kSize, 120));
    line.deinterlacer().skip(stripes);
    QCOMPARE(difference(*line.next(stripes), *stripes).largest, 0);
  }

  void oddSizes_data() {
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    for (const FrameSize size : {FrameSize{1, 1}, {3, 5}, {33, 17}, {1, 8}, {64, 1}, {2, 2}, {31, 33}})
      QTest::addRow("%d x %d", size.width, size.height) << size.width << size.height;
  }
  void oddSizes() {
    QFETCH(int, width);
    QFETCH(int, height);
    const FrameSize size{width, height};
    for (const FirstField first : {FirstField::Top, FirstField::Bottom}) {
      Line line(first);
      for (std::uint32_t i = 0; i < 6; ++i) {
        const FrameRef picture = withoutSpare(*noise(size, i));
        const FrameRef out = line.next(picture);
        for (const int plane : kOpaquePlanes) {
          const PlaneView in = planeOf(*picture, plane);
          const PlaneView made = planeOf(*out, plane);
          for (int y = 0; y < in.height; ++y)
            for (int x = 0; x < in.width; ++x)
              if (!isSecondField(y, first))
                QCOMPARE(int(made.row(y)[x]), int(in.row(y)[x]));
        }
      }
      // What stands still stays whole.
      const FrameRef still = withoutSpare(*noise(size, 9));
      line.next(still);
      QCOMPARE(difference(*line.next(still), *still).largest, 0);
    }
  }

  void alphaIsJoinedToo() {
    const auto masked = [](int edge) {
      MutableFrame frame(new Frame(kSize, FrameAlpha::Plane));
      frame->fillBlack();
      for (int y = 0; y < kSize.height; ++y)
        for (int x = 0; x < kSize.width; ++x)
          frame->writablePlane(Frame::A)[y * frame->stride(Frame::A) + x] = x < edge + (y % 2) * 6 ? 255 : 0;
      return std::move(frame).publish();
    };
    Line line(FirstField::Top);
    line.next(masked(12));
    const FrameRef out = line.next(masked(24));
    for (int y = 0; y < kSize.height; ++y)
      for (int x = 0; x < kSize.width; ++x)
        QCOMPARE(int(out->plane(Frame::A)[y * out->stride(Frame::A) + x]), x < 24 ? 255 : 0);
  }
};

QTEST_GUILESS_MAIN(DeinterlacerTest)
#include "tst_deinterlacer.moc"
