// Which way each glide goes, sample by sample, and that it goes smoothly.
#include <QtTest>

#include "engine/mix/TransitionCatalog.h"
#include "support/MixPictures.h"
#include "support/PlacedReference.h"

using namespace korvia;
using namespace korvia::test;

namespace {

enum class Movement { In, Out, Push };
struct Glide {
  int effect;
  Movement movement;
  int x;  ///< side, to the right and down
  int y;
};
constexpr Glide kGlides[] = {
    {25, Movement::In, -1, 0},   {26, Movement::In, 1, 0},    {27, Movement::In, 0, -1},
    {28, Movement::In, 0, 1},    {29, Movement::In, -1, -1},  {30, Movement::In, 1, -1},
    {31, Movement::In, 1, 1},    {32, Movement::In, -1, 1},   {33, Movement::Out, -1, 0},
    {34, Movement::Out, 1, 0},   {35, Movement::Out, 0, -1},  {36, Movement::Out, 0, 1},
    {37, Movement::Out, -1, -1}, {38, Movement::Out, 1, -1},  {39, Movement::Out, 1, 1},
    {40, Movement::Out, -1, 1},  {41, Movement::Push, -1, 0}, {42, Movement::Push, 1, 0},
    {43, Movement::Push, 0, -1}, {44, Movement::Push, 0, 1},
};

FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, double position) {
  MutableFrame out(new Frame(from->size()));
  TransitionScratch scratch;
  transitionFor(effect)->mix(*from, *to, {position, 1}, scratch, *out);
  return std::move(out).publish();
}

/// Luma of four rows of letters, the first one given; chroma half of it.
FrameRef letters(char first) {
  return frameOf({4, 4}, [&](int plane, int x, int y) {
    return plane == 0 ? first + x + 4 * y : (first + x + 2 * y) / 2;
  });
}

QString lumaText(const Frame& frame) {
  QStringList rows;
  for (int y = 0; y < frame.height(); ++y) {
    const QByteArray row(reinterpret_cast<const char*>(planeOf(frame, 0).row(y)), frame.width());
    rows.append(QString::fromLatin1(row));
  }
  return rows.join(' ');
}

/// The values along a row or, for pictures that change downwards only, along a column.
QList<int> line(const Frame& frame, int plane, bool down) {
  const PlaneView view = planeOf(frame, plane);
  QList<int> values;
  for (int i = 0; i < (down ? view.height : view.width); ++i)
    values.append(down ? view.row(i)[0] : view.row(0)[i]);
  return values;
}

double meanOfPlane(const Frame& frame, int plane) {
  const PlaneView view = planeOf(frame, plane);
  double sum = 0;
  for (int y = 0; y < view.height; ++y)
    for (int x = 0; x < view.width; ++x)
      sum += view.row(y)[x];
  return sum / view.width / view.height;
}

void everyGlide() {
  QTest::addColumn<int>("index");
  for (int i = 0; i < static_cast<int>(std::size(kGlides)); ++i)
    QTest::addRow("glide %d", kGlides[i].effect) << i;
}

}  // namespace

class GlidesTest : public QObject {
  Q_OBJECT

 private slots:
  void halfWayWholeSamplesAreCopied_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<QString>("expected");
    QTest::newRow("in left") << 25 << "CDcd GHgh KLkl OPop";
    QTest::newRow("in right") << 26 << "abAB efEF ijIJ mnMN";
    QTest::newRow("in top") << 27 << "IJKL MNOP ijkl mnop";
    QTest::newRow("in bottom") << 28 << "abcd efgh ABCD EFGH";
    QTest::newRow("in top left") << 29 << "KLcd OPgh ijkl mnop";
    QTest::newRow("in top right") << 30 << "abIJ efMN ijkl mnop";
    QTest::newRow("in bottom right") << 31 << "abcd efgh ijAB mnEF";
    QTest::newRow("in bottom left") << 32 << "abcd efgh CDkl GHop";
    QTest::newRow("out left") << 33 << "cdCD ghGH klKL opOP";
    QTest::newRow("out right") << 34 << "ABab EFef IJij MNmn";
    QTest::newRow("out top") << 35 << "ijkl mnop IJKL MNOP";
    QTest::newRow("out bottom") << 36 << "ABCD EFGH abcd efgh";
    QTest::newRow("out top left") << 37 << "klCD opGH IJKL MNOP";
    QTest::newRow("out top right") << 38 << "ABij EFmn IJKL MNOP";
    QTest::newRow("out bottom right") << 39 << "ABCD EFGH IJab MNef";
    QTest::newRow("out bottom left") << 40 << "ABCD EFGH cdKL ghOP";
    QTest::newRow("push left") << 41 << "CDab GHef KLij OPmn";
    QTest::newRow("push right") << 42 << "cdAB ghEF klIJ opMN";
    QTest::newRow("push top") << 43 << "IJKL MNOP abcd efgh";
    QTest::newRow("push bottom") << 44 << "ijkl mnop ABCD EFGH";
  }
  void halfWayWholeSamplesAreCopied() {
    QFETCH(int, effect);
    QFETCH(QString, expected);
    QCOMPARE(lumaText(*mixed(effect, letters('a'), letters('A'), 0.5)), expected);
  }

  void betweenSamplesTheyAreBlended_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<bool>("down");
    QTest::addColumn<QList<int>>("luma");
    QTest::addColumn<QList<int>>("chroma");
    const QList<int> inBefore{200, 130, 80, 120};
    const QList<int> inBehind{0, 40, 90, 120};
    const QList<int> outBefore{60, 100, 150, 220};
    const QList<int> outBehind{100, 70, 20, 60};
    const QList<int> pushBefore{200, 110, 20, 60};
    const QList<int> pushBehind{60, 100, 110, 120};
    const QList<int> inBeforeChroma{105, 40};
    const QList<int> inBehindChroma{0, 85};
    const QList<int> outBeforeChroma{30, 115};
    const QList<int> outBehindChroma{75, 10};
    const QList<int> pushBeforeChroma{105, 10};
    const QList<int> pushBehindChroma{30, 85};
    QTest::newRow("in left") << 25 << false << inBefore << inBeforeChroma;
    QTest::newRow("in right") << 26 << false << inBehind << inBehindChroma;
    QTest::newRow("in top") << 27 << true << inBefore << inBeforeChroma;
    QTest::newRow("in bottom") << 28 << true << inBehind << inBehindChroma;
    QTest::newRow("out left") << 33 << false << outBefore << outBeforeChroma;
    QTest::newRow("out right") << 34 << false << outBehind << outBehindChroma;
    QTest::newRow("out top") << 35 << true << outBefore << outBeforeChroma;
    QTest::newRow("out bottom") << 36 << true << outBehind << outBehindChroma;
    QTest::newRow("push left") << 41 << false << pushBefore << pushBeforeChroma;
    QTest::newRow("push right") << 42 << false << pushBehind << pushBehindChroma;
    QTest::newRow("push top") << 43 << true << pushBefore << pushBeforeChroma;
    QTest::newRow("push bottom") << 44 << true << pushBehind << pushBehindChroma;
  }
  void betweenSamplesTheyAreBlended() {
    QFETCH(int, effect);
    QFETCH(bool, down);
    QFETCH(QList<int>, luma);
    QFETCH(QList<int>, chroma);
    const auto picture = [&](int base) {
      return frameOf({4, 4}, [&](int, int x, int y) { return base + 40 * (down ? y : x); });
    };
    // The incoming picture is 2.5 samples away from its place, the outgoing one 1.5.
    const FrameRef now = mixed(effect, picture(0), picture(100), 0.375);
    QCOMPARE(line(*now, 0, down), luma);
    QCOMPARE(line(*now, 1, down), chroma);
    QCOMPARE(line(*now, 2, down), chroma);
  }

  void isWhatItMeans_data() { everyGlide(); }
  void isWhatItMeans() {
    QFETCH(int, index);
    const Glide glide = kGlides[index];
    for (int side = 1; side <= 70; side += side < 6 ? 1 : 7) {
      const FrameSize size{side, (side * 5) % 71};
      const FrameRef a = noise(size, 1);
      const FrameRef b = noise(size, 2);
      const LumaRect whole = lumaRectOf(size);
      for (const double position : {0.013, 0.31, 0.5, 0.77}) {
        const double away = glide.movement == Movement::Out ? position : 1 - position;
        LumaRect front = whole;
        front.x = inSteps(glide.x * whole.width * away);
        front.y = inSteps(glide.y * whole.height * away);
        LumaRect behind = whole;
        if (glide.movement == Movement::Push) {
          behind.x = front.x - glide.x * whole.width;
          behind.y = front.y - glide.y * whole.height;
        }
        const FrameRef now = mixed(glide.effect, a, b, position);
        const bool out = glide.movement == Movement::Out;
        const double off = differenceToPlaced(*now, out ? *a : *b, front, out ? *b : *a, behind);
        QVERIFY2(off <= 2,
                 qPrintable(
                     QString("%1 for %2x%3 at %4").arg(off).arg(size.width).arg(size.height).arg(position)));
      }
    }
  }

  void movesALittleWithEveryStepOfThePosition_data() { everyGlide(); }
  void movesALittleWithEveryStepOfThePosition() {
    QFETCH(int, index);
    const Glide glide = kGlides[index];
    constexpr int kPositions = 250;
    const bool corner = glide.x != 0 && glide.y != 0;
    for (const FrameSize size : {FrameSize{64, 36}, FrameSize{63, 37}}) {
      const FrameRef a = flat(size, 0);
      const FrameRef b = flat(size, 255);
      double lastLuma = 0;
      for (int i = 1; i <= kPositions; ++i) {
        const FrameRef now = mixed(glide.effect, a, b, i / double(kPositions));
        const double luma = meanOfPlane(*now, 0);
        // A corner starts with less than a sample, and an odd frame begins or ends a sample early.
        const bool mayRest = corner || size.width == 63;
        if (!(luma > lastLuma || (mayRest && luma >= lastLuma)))
          QFAIL(qPrintable(QString("%1 after %2 at %3").arg(luma).arg(lastLuma).arg(i)));
        QVERIFY(luma - lastLuma < 255.0 / kPositions * 2.2);
        if (size.width == 64)
          QVERIFY(std::abs(meanOfPlane(*now, 1) - luma) < 0.8);
        lastLuma = luma;
      }
      QCOMPARE(lastLuma, 255.0);
    }
  }

  void lumaAndChromaStayInRegister_data() { everyGlide(); }
  void lumaAndChromaStayInRegister() {
    QFETCH(int, index);
    // A chroma sample lies between its luma samples and has their mean.
    const auto ramp = [](int base, int acrossStep, int downStep) {
      return frameOf({48, 32}, [=](int plane, int x, int y) {
        const double u = plane == 0 ? x : 2 * x + 0.5;
        const double v = plane == 0 ? y : 2 * y + 0.5;
        return std::lround(base + acrossStep * u + downStep * v);
      });
    };
    const FrameRef a = ramp(20, 2, 1);
    const FrameRef b = ramp(60, 1, 2);
    for (int i = 1; i < 60; ++i) {
      const FrameRef now = mixed(kGlides[index].effect, a, b, i / 60.0);
      const PlaneView luma = planeOf(*now, 0);
      const PlaneView chroma = planeOf(*now, 1);
      double off = 0;
      for (int y = 0; y < chroma.height; ++y)
        for (int x = 0; x < chroma.width; ++x) {
          const double mean = (luma.row(2 * y)[2 * x] + luma.row(2 * y)[2 * x + 1] +
                               luma.row(2 * y + 1)[2 * x] + luma.row(2 * y + 1)[2 * x + 1]) /
                              4.0;
          off = std::max(off, std::abs(mean - chroma.row(y)[x]));
        }
      QVERIFY2(off <= 3, qPrintable(QString("%1 at %2").arg(off).arg(i)));
    }
  }
};

QTEST_GUILESS_MAIN(GlidesTest)
#include "tst_glides.moc"
