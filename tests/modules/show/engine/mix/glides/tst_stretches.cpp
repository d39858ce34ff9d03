// Where each stretch puts its pictures, sample by sample, and that they shrink cleanly.
#include <QtTest>

#include "engine/mix/TransitionCatalog.h"
#include "support/MixPictures.h"
#include "support/PlacedReference.h"

using namespace korvia;
using namespace korvia::test;

namespace {

FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, double position) {
  MutableFrame out(new Frame(from->size()));
  TransitionScratch scratch;
  transitionFor(effect)->mix(*from, *to, {position, 1}, scratch, *out);
  return std::move(out).publish();
}

/// The values along a row or, for pictures that change downwards only, along a column.
QList<int> line(const Frame& frame, int plane, bool down) {
  const PlaneView view = planeOf(frame, plane);
  QList<int> values;
  for (int i = 0; i < (down ? view.height : view.width); ++i)
    values.append(down ? view.row(i)[0] : view.row(0)[i]);
  return values;
}

double meanOfPlane(const Frame& frame, int plane, int begin, int end, bool down) {
  const PlaneView view = planeOf(frame, plane);
  double sum = 0;
  double count = 0;
  for (int y = down ? begin : 0; y < (down ? end : view.height); ++y)
    for (int x = down ? 0 : begin; x < (down ? view.width : end); ++x, ++count)
      sum += view.row(y)[x];
  return sum / count;
}

struct Places {
  LumaRect front;
  LumaRect behind;
  bool frontIsNew;
};

Places placesOf(int effect, FrameSize size, double position) {
  const LumaRect whole = lumaRectOf(size);
  LumaRect front = whole;
  LumaRect behind = whole;
  if (effect >= 50) {
    const double part = effect == 50 ? 1 - position : position;
    front.width = inSteps(whole.width * part);
    front.height = inSteps(whole.height * part);
    // Half a step is cut off.
    front.x = std::floor((whole.width - front.width) * 64) / 128;
    front.y = std::floor((whole.height - front.height) * 64) / 128;
    return {front, behind, effect == 51};
  }
  const double width = inSteps(whole.width * position);
  const double height = inSteps(whole.height * position);
  if (effect <= 47) {
    front.width = width;
    behind.width = whole.width - width;
    (effect == 46 ? behind.x : front.x) = effect == 46 ? width : whole.width - width;
  } else {
    front.height = height;
    behind.height = whole.height - height;
    (effect == 48 ? behind.y : front.y) = effect == 48 ? height : whole.height - height;
  }
  return {front, behind, true};
}

void everyStretch() {
  QTest::addColumn<int>("effect");
  for (int effect = 46; effect <= 51; ++effect)
    QTest::addRow("stretch %d", effect) << effect;
}

}  // namespace

class StretchesTest : public QObject {
  Q_OBJECT

 private slots:
  void sideBySide_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<bool>("down");
    QTest::addColumn<double>("position");
    QTest::addColumn<QList<int>>("luma");
    QTest::addColumn<QList<int>>("chroma");
    const QList<int> newFirst{120, 200, 20, 100};
    const QList<int> oldFirst{20, 100, 120, 200};
    const QList<int> newFirstChroma{120, 20};
    const QList<int> oldFirstChroma{20, 120};
    QTest::newRow("left") << 46 << false << 0.5 << newFirst << newFirstChroma;
    QTest::newRow("right") << 47 << false << 0.5 << oldFirst << oldFirstChroma;
    QTest::newRow("top") << 48 << true << 0.5 << newFirst << newFirstChroma;
    QTest::newRow("bottom") << 49 << true << 0.5 << oldFirst << oldFirstChroma;
    // One and a half samples of the new picture, the second one shared with the old one.
    QTest::newRow("left, between samples")
        << 46 << false << 0.375 << QList<int>{140, 100, 45, 105} << QList<int>{90, 25};
    QTest::newRow("top, between samples")
        << 48 << true << 0.375 << QList<int>{135, 105, 45, 105} << QList<int>{90, 25};
  }
  void sideBySide() {
    QFETCH(int, effect);
    QFETCH(bool, down);
    QFETCH(double, position);
    QFETCH(QList<int>, luma);
    QFETCH(QList<int>, chroma);
    const auto picture = [&](int base) {
      return frameOf({4, 4}, [&](int, int x, int y) { return base + 40 * (down ? y : x); });
    };
    const FrameRef now = mixed(effect, picture(0), picture(100), position);
    QCOMPARE(line(*now, 0, down), luma);
    QCOMPARE(line(*now, 1, down), chroma);
    QCOMPARE(line(*now, 2, down), chroma);
  }

  void inTheCenter_data() {
    QTest::addColumn<int>("effect");
    QTest::newRow("old one out") << 50;
    QTest::newRow("new one in") << 51;
  }
  void inTheCenter() {
    QFETCH(int, effect);
    const FrameRef small = frameOf({4, 4}, [](int, int x, int y) { return 4 * x + 16 * y; });
    const FrameRef large = frameOf({4, 4}, [](int, int x, int y) { return 200 + x + 4 * y; });
    const FrameRef now = mixed(effect, effect == 50 ? small : large, effect == 50 ? large : small, 0.5);
    const int expected[4][4] = {
        {200, 201, 202, 203}, {204, 10, 18, 207}, {208, 42, 50, 211}, {212, 213, 214, 215}};
    for (int y = 0; y < 4; ++y)
      for (int x = 0; x < 4; ++x)
        QCOMPARE(int(planeOf(*now, 0).row(y)[x]), expected[y][x]);
    // A quarter of the chroma sample shows the small picture, whose columns are paired before: 2 of 0 and 4.
    QCOMPARE(int(planeOf(*now, 1).row(0)[0]), 151);
  }

  void isWhatItMeans_data() { everyStretch(); }
  void isWhatItMeans() {
    QFETCH(int, effect);
    for (int side = 1; side <= 70; side += side < 6 ? 1 : 7) {
      const FrameSize size{side, (side * 5) % 71};
      const FrameRef a = noise(size, 1);
      const FrameRef b = noise(size, 2);
      for (const double position : {0.013, 0.23, 0.31, 0.5, 0.77}) {
        const Places places = placesOf(effect, size, position);
        const FrameRef now = mixed(effect, a, b, position);
        const bool isNew = places.frontIsNew;
        const double off =
            differenceToPlaced(*now, isNew ? *b : *a, places.front, isNew ? *a : *b, places.behind);
        QVERIFY2(off <= 2,
                 qPrintable(
                     QString("%1 for %2x%3 at %4").arg(off).arg(size.width).arg(size.height).arg(position)));
      }
    }
  }

  void growsALittleWithEveryStepOfThePosition_data() { everyStretch(); }
  void growsALittleWithEveryStepOfThePosition() {
    QFETCH(int, effect);
    constexpr int kPositions = 250;
    const FrameSize size{64, 36};
    const FrameRef a = flat(size, 0);
    const FrameRef b = flat(size, 255);
    double lastLuma = 0;
    for (int i = 1; i <= kPositions; ++i) {
      const FrameRef now = mixed(effect, a, b, i / double(kPositions));
      const double luma = meanOfPlane(*now, 0, 0, 64, false);
      // The picture in the centre starts and ends with less than a sample.
      if (!(luma > lastLuma || (effect >= 50 && luma >= lastLuma)))
        QFAIL(qPrintable(QString("%1 after %2 at %3").arg(luma).arg(lastLuma).arg(i)));
      QVERIFY(luma - lastLuma < 255.0 / kPositions * 2.4);
      QVERIFY(std::abs(meanOfPlane(*now, 1, 0, 32, false) - luma) < 0.8);
      lastLuma = luma;
    }
    QCOMPARE(lastLuma, 255.0);
  }

  void aPlainPictureStaysPlain_data() { everyStretch(); }
  void aPlainPictureStaysPlain() {
    QFETCH(int, effect);
    for (const FrameSize size :
         {FrameSize{640, 360}, FrameSize{61, 1}, FrameSize{1, 61}, FrameSize{16, 2000}})
      for (const double position : {1e-9, 1e-4, 0.003, 0.29, 0.9, 0.9999}) {
        const FrameRef plain = frameOf(size, [](int plane, int, int) { return 77 + 40 * plane; });
        QCOMPARE(difference(*mixed(effect, plain, plain, position), *plain).largest, 0);
      }
  }

  void shrinkingKeepsTheBrightness_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<bool>("down");
    QTest::newRow("left") << 46 << false;
    QTest::newRow("top") << 48 << true;
  }
  void shrinkingKeepsTheBrightness() {
    QFETCH(int, effect);
    QFETCH(bool, down);
    const FrameRef b = noise({640, 640}, 2);
    const double mean = meanOfPlane(*b, 0, 0, 640, down);
    for (const int thickness : {4, 20, 77, 200, 430}) {
      const FrameRef now = mixed(effect, noise({640, 640}, 1), b, thickness / 640.0);
      QVERIFY(std::abs(meanOfPlane(*now, 0, 0, thickness, down) - mean) < 0.6);
    }
  }

  void fineStripesBecomeGreyRatherThanFlicker_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<bool>("down");
    QTest::newRow("left") << 46 << false;
    QTest::newRow("top") << 48 << true;
  }
  void fineStripesBecomeGreyRatherThanFlicker() {
    QFETCH(int, effect);
    QFETCH(bool, down);
    const FrameSize size{320, 320};
    const FrameRef stripes = frameOf(size, [&](int, int x, int y) { return 255 * ((down ? y : x) % 2); });
    for (const double position : {0.07, 0.13, 0.21}) {
      const FrameRef now = mixed(effect, flat(size, 0), stripes, position);
      const int end = static_cast<int>(320 * position);
      const QList<int> values = line(*now, 0, down);
      for (int i = 0; i < end; ++i)
        QVERIFY2(std::abs(values.at(i) - 127) <= 32, qPrintable(QString::number(values.at(i))));
    }
  }
};

QTEST_GUILESS_MAIN(StretchesTest)
#include "tst_stretches.moc"
