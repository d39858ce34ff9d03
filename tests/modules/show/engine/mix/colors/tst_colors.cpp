// What each of the colour transitions does to tiny pictures, and that none of them leaves the legal range.
#include <QtTest>

#include "engine/mix/TransitionCatalog.h"
#include "engine/mix/colors/LinenTexture.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

enum Effect {
  kMostBright = 74,
  kBrightExtract,
  kInvertColor,
  kPixelsMultiplied,
  kScanlines,
  kApplyTextureMap,
};

using Samples = QVector<int>;

/// Columns of luma, the same in each row, with one colour over all.
FrameRef columns(const Samples& luma, int height, int u, int v) {
  const auto sample = [&](int plane, int x, int) {
    return plane == Frame::Y ? luma[x] : plane == Frame::U ? u : v;
  };
  return frameOf({luma.size(), height}, sample);
}

FrameRef even(FrameSize size, int luma, int u, int v) {
  return columns(Samples(size.width, luma), size.height, u, v);
}

FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, double position) {
  TransitionScratch scratch;
  MutableFrame out(new Frame(from->size()));
  transitionFor(effect)->mix(*from, *to, {position, 7}, scratch, *out);
  return std::move(out).publish();
}

Samples rowOf(const FrameRef& frame, int plane, int y) {
  const PlaneView view = planeOf(*frame, plane);
  Samples samples;
  samples.reserve(view.width);
  for (int x = 0; x < view.width; ++x)
    samples << view.row(y)[x];
  return samples;
}

Samples columnOf(const FrameRef& frame, int plane, int x) {
  const PlaneView view = planeOf(*frame, plane);
  Samples samples;
  samples.reserve(view.height);
  for (int y = 0; y < view.height; ++y)
    samples << view.row(y)[x];
  return samples;
}

void everyEffect() {
  QTest::addColumn<int>("effect");
  for (int effect = kMostBright; effect <= kApplyTextureMap; ++effect)
    QTest::addRow("%d", effect) << effect;
}

}  // namespace

class ColorsTest : public QObject {
  Q_OBJECT

 private slots:
  void mostBrightShowsTheBrighterPictureHalfWay() {
    const FrameRef a = columns({40, 40, 200, 200}, 2, 100, 150);
    const FrameRef b = columns({200, 200, 40, 40}, 2, 160, 90);
    const FrameRef middle = mixed(kMostBright, a, b, 0.5);
    QCOMPARE(rowOf(middle, Frame::Y, 1), (Samples{188, 188, 188, 188}));
    QCOMPARE(rowOf(middle, Frame::U, 0), (Samples{156, 104}));
    QCOMPARE(rowOf(middle, Frame::V, 0), (Samples{94, 146}));
    // During the first half the dark parts of the new picture are not visible yet, during the second the
    // bright ones of the old are still visible.
    QCOMPARE(rowOf(mixed(kMostBright, a, b, 0.1), Frame::Y, 0), (Samples{52, 52, 200, 200}));
    QCOMPARE(rowOf(mixed(kMostBright, a, b, 0.9), Frame::Y, 0), (Samples{200, 200, 52, 52}));
  }

  void brightExtractLetsTheBrightPartsGoFirst() {
    const FrameRef a = columns({235, 235, 80, 80, 16, 16}, 2, 100, 150);
    const FrameRef b = even({6, 2}, 100, 160, 90);
    const FrameRef middle = mixed(kBrightExtract, a, b, 0.5);
    // Values between are changing, lit by the rim.
    QCOMPARE(rowOf(middle, Frame::Y, 1), (Samples{100, 100, 126, 126, 16, 16}));
    QCOMPARE(rowOf(middle, Frame::U, 0), (Samples{160, 129, 100}));
    const FrameRef first =
        mixed(kBrightExtract, columns({180, 180, 80, 80}, 2, 100, 150), even({4, 2}, 100, 160, 90), 0.1);
    QCOMPARE(rowOf(first, Frame::Y, 0), (Samples{180, 180, 80, 80}));
    const FrameRef last =
        mixed(kBrightExtract, columns({40, 40, 16, 16}, 2, 100, 150), even({4, 2}, 100, 160, 90), 0.95);
    QCOMPARE(rowOf(last, Frame::U, 0)[0], 160);
    QVERIFY(rowOf(last, Frame::U, 0)[1] < 160);
  }

  void invertColorGoesByWayOfTheNegatives() {
    const FrameRef a = columns({235, 235, 80, 80, 16, 16}, 2, 100, 240);
    const FrameRef middle = mixed(kInvertColor, a, a, 0.5);
    QCOMPARE(rowOf(middle, Frame::Y, 1), (Samples{16, 16, 171, 171, 206, 206}));
    QCOMPARE(rowOf(middle, Frame::U, 0)[0], 156);
    QCOMPARE(rowOf(middle, Frame::V, 0)[0], 16);
    // The bright parts are inverted first and inverted back last; the other picture is not visible yet or no
    // longer.
    const FrameRef inverting = columns({235, 235, 80, 80, 30, 30}, 2, 100, 240);
    const FrameRef other = even({6, 2}, 130, 60, 60);
    const Samples half = {16, 16, 112, 112, 30, 30};
    QCOMPARE(rowOf(mixed(kInvertColor, inverting, other, 0.25), Frame::Y, 0), half);
    QCOMPARE(rowOf(mixed(kInvertColor, other, inverting, 0.75), Frame::Y, 0), half);
    QCOMPARE(rowOf(mixed(kInvertColor, inverting, other, 0.25), Frame::U, 0)[2], 100);
  }

  void pixelsMultipliedChangesHalfOfItsCellsFirst() {
    const FrameRef a = even({8, 8}, 150, 100, 128);
    const FrameRef b = even({8, 8}, 180, 160, 128);
    const FrameRef first = mixed(kPixelsMultiplied, a, b, 0.25);
    QCOMPARE(rowOf(first, Frame::Y, 0), (Samples{124, 124, 124, 124, 150, 150, 150, 150}));
    QCOMPARE(rowOf(first, Frame::Y, 4), (Samples{150, 150, 150, 150, 124, 124, 124, 124}));
    QCOMPARE(rowOf(first, Frame::U, 1), (Samples{120, 120, 100, 100}));
    QCOMPARE(rowOf(first, Frame::U, 2), (Samples{100, 100, 120, 120}));
    QCOMPARE(rowOf(mixed(kPixelsMultiplied, a, b, 0.5), Frame::Y, 0),
             (Samples{170, 170, 170, 170, 145, 145, 145, 145}));
    QCOMPARE(rowOf(mixed(kPixelsMultiplied, a, b, 0.75), Frame::Y, 0),
             (Samples{180, 180, 180, 180, 132, 132, 132, 132}));
  }

  void cellsGrowWithThePicture() {
    const FrameSize size{1920, 1080};
    const FrameRef middle =
        mixed(kPixelsMultiplied, even(size, 60, 128, 128), even(size, 200, 128, 128), 0.3);
    const Samples row = rowOf(middle, Frame::Y, 0);
    QCOMPARE(row.indexOf(60), 10);
    QCOMPARE(row.indexOf(row[0], 10), 20);
  }

  void scanlinesChangeEveryOtherBandFirst() {
    const FrameRef a = even({2, 16}, 40, 100, 128);
    const FrameRef b = even({2, 16}, 200, 160, 128);
    const FrameRef middle = mixed(kScanlines, a, b, 0.5);
    QCOMPARE(columnOf(middle, Frame::Y, 1),
             (Samples{192, 200, 200, 192, 40, 48, 48, 40, 192, 200, 200, 192, 40, 48, 48, 40}));
    QCOMPARE(columnOf(middle, Frame::U, 0), (Samples{160, 160, 100, 100, 160, 160, 100, 100}));
    const FrameRef first = mixed(kScanlines, a, b, 0.2);
    QVERIFY(rowOf(first, Frame::Y, 1)[0] > 45);
    QCOMPARE(rowOf(first, Frame::Y, 5)[0], 40);
    const FrameRef last = mixed(kScanlines, a, b, 0.8);
    QCOMPARE(rowOf(last, Frame::Y, 1)[0], 200);
    QVERIFY(rowOf(last, Frame::Y, 5)[0] < 195);
  }

  void linenIsWovenOfThreadsThatCross() {
    std::uint8_t relief[64];
    weaveLinen({8, 8}, relief);
    const std::uint8_t first[] = {79, 152, 152, 79, 72, 97, 97, 72};
    const std::uint8_t second[] = {107, 212, 212, 107, 137, 192, 192, 137};
    for (int x = 0; x < 8; ++x) {
      QCOMPARE(relief[x], first[x]);
      QCOMPARE(relief[8 + x], second[x]);
    }
  }

  void linenOfAnySizeIsLegalLuma() {
    for (const FrameSize size : {FrameSize{1920, 1080}, {100, 100}, {1, 1}, {7, 300}}) {
      std::vector<std::uint8_t> relief(static_cast<std::size_t>(size.width) * size.height);
      weaveLinen(size, relief.data());
      QVERIFY(*std::min_element(relief.begin(), relief.end()) >= 16);
      QVERIFY(*std::max_element(relief.begin(), relief.end()) <= 235);
    }
  }

  void applyTextureMapShadesAndChangesByTheRelief() {
    // The same picture on both sides shows the shade alone: row 0 lies at the edge of its threads, row 1
    // nearer to their middle.
    const FrameRef a = even({8, 8}, 200, 100, 128);
    const FrameRef shaded = mixed(kApplyTextureMap, a, a, 0.5);
    QCOMPARE(rowOf(shaded, Frame::Y, 0), (Samples{101, 142, 142, 101, 98, 111, 111, 98}));
    QCOMPARE(rowOf(shaded, Frame::Y, 1), (Samples{117, 176, 176, 117, 134, 165, 165, 134}));
    QCOMPARE(rowOf(shaded, Frame::U, 0), (Samples{100, 100, 100, 100}));
    // The high parts change first.
    const FrameRef changed =
        mixed(kApplyTextureMap, even({8, 8}, 16, 100, 128), even({8, 8}, 235, 100, 128), 0.3);
    const Samples high = rowOf(changed, Frame::Y, 1);
    QVERIFY(high[1] > high[0] + 30);
    QCOMPARE(rowOf(changed, Frame::Y, 0)[0], 16);
  }

  void legalPicturesStayLegal_data() { everyEffect(); }
  void legalPicturesStayLegal() {
    QFETCH(int, effect);
    std::uint32_t seed = 3;
    const auto legal = [&](int plane, int, int) {
      seed = seed * 1664525 + 1013904223;
      const int range = plane == Frame::Y ? 219 : 224;
      // The ends of the range come often.
      return 16 + qBound(0, static_cast<int>(seed >> 24) * (range + 100) / 255 - 50, range);
    };
    const FrameRef a = frameOf({61, 43}, legal);
    const FrameRef b = frameOf({61, 43}, legal);
    for (int i = 0; i <= 40; ++i) {
      const FrameRef now = mixed(effect, a, b, i / 40.0);
      for (int plane = 0; plane < 3; ++plane)
        for (int y = 0; y < now->planeHeight(plane); ++y)
          for (const int sample : rowOf(now, plane, y))
            QVERIFY2(sample >= 16 && sample <= (plane == Frame::Y ? 235 : 240),
                     qPrintable(QString::number(i)));
    }
  }
};

QTEST_GUILESS_MAIN(ColorsTest)
#include "tst_colors.moc"
