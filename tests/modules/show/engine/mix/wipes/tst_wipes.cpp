// The wipes: which places each of them uncovers at which position, with soft edges, and never covers again.
#include <QtTest>

#include "engine/mix/TransitionCatalog.h"
#include "engine/mix/wipes/Wipe.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

enum Effect {
  Left = 1,
  Right,
  Top,
  Bottom,
  TopLeft,
  TopRight,
  BottomRight,
  BottomLeft,
  HCenter,
  VCenter,
  Box,
  Checkerboard,
  Circle,
  DiagonalSquares,
  DissolveIn,
  RandomBars,
  Split,
  VenetianBlinds,
  Blood,
  Wheel
};

const char* const kNames[] = {"",
                              "Left",
                              "Right",
                              "Top",
                              "Bottom",
                              "TopLeft",
                              "TopRight",
                              "BottomRight",
                              "BottomLeft",
                              "HCenter",
                              "VCenter",
                              "Box",
                              "Checkerboard",
                              "Circle",
                              "DiagonalSquares",
                              "DissolveIn",
                              "RandomBars",
                              "Split",
                              "VenetianBlinds",
                              "Blood",
                              "Wheel"};

void everyWipe() {
  QTest::addColumn<int>("effect");
  for (int effect = Left; effect <= Wheel; ++effect)
    QTest::newRow(kNames[effect]) << effect;
}

/// The masks of wipes as pictures: 0 where there is nothing of the new one, 255 where there is all of it.
class Masks {
 public:
  explicit Masks(FrameSize size) : old_(flat(size, 0)), fresh_(flat(size, 255)) {}

  FrameRef of(int effect, double position, std::uint32_t seed = 7) {
    MutableFrame out(new Frame(old_->size()));
    transitionFor(effect)->mix(*old_, *fresh_, {position, seed}, scratch_, *out);
    return std::move(out).publish();
  }

 private:
  FrameRef old_;
  FrameRef fresh_;
  TransitionScratch scratch_;
};

FrameRef masked(int effect, FrameSize size, double position, std::uint32_t seed = 7) {
  return Masks(size).of(effect, position, seed);
}

int sample(const FrameRef& frame, int plane, int x, int y) {
  return planeOf(*frame, plane).row(y)[x];
}

/// Luma as text: '#' new, '.' old, '+' between.
QStringList drawing(int effect, FrameSize size, double position) {
  const FrameRef frame = masked(effect, size, position);
  QStringList rows;
  for (int y = 0; y < size.height; ++y) {
    QString row;
    for (int x = 0; x < size.width; ++x) {
      const int value = sample(frame, Frame::Y, x, y);
      row += value == 255 ? '#' : value == 0 ? '.' : '+';
    }
    rows << row;
  }
  return rows;
}

double meanLuma(const FrameRef& frame) {
  double sum = 0;
  for (int y = 0; y < frame->height(); ++y)
    for (int x = 0; x < frame->width(); ++x)
      sum += sample(frame, Frame::Y, x, y);
  return sum / frame->width() / frame->height();
}

/// Whether a plane of one picture is the mirrored plane of the other.
bool mirrored(const FrameRef& a, const FrameRef& b, int plane, bool acrossToo, bool downToo) {
  const PlaneView va = planeOf(*a, plane);
  const PlaneView vb = planeOf(*b, plane);
  for (int y = 0; y < va.height; ++y)
    for (int x = 0; x < va.width; ++x) {
      const int there = vb.row(downToo ? vb.height - 1 - y : y)[acrossToo ? vb.width - 1 - x : x];
      // The sums of the two run in another order.
      if (std::abs(va.row(y)[x] - there) > 1)
        return false;
    }
  return true;
}

/// Samples strictly between the two pictures.
int softCount(const FrameRef& frame, int plane, int xBegin, int xEnd, int yBegin, int yEnd) {
  int count = 0;
  for (int y = yBegin; y < yEnd; ++y)
    for (int x = xBegin; x < xEnd; ++x) {
      const int value = sample(frame, plane, x, y);
      count += value > 0 && value < 255;
    }
  return count;
}

}  // namespace

class WipesTest : public QObject {
  Q_OBJECT

 private slots:
  void followsItsCoverage_data() { everyWipe(); }
  void followsItsCoverage() {
    QFETCH(int, effect);
    const auto* wipe = dynamic_cast<const Wipe*>(transitionFor(effect));
    QVERIFY(wipe);
    for (const FrameSize size :
         {FrameSize{320, 180}, {501, 60}, {67, 201}, {33, 17}, {17, 33}, {3, 2}, {1, 1}, {9, 1}, {1, 9}}) {
      Masks masks(size);
      for (const double position : {0.0, 0.013, 0.31, 0.5, 0.77, 0.991, 1.0}) {
        const MixPoint point{position, 7};
        const FrameRef frame = masks.of(effect, position);
        for (int plane = 0; plane < 3; ++plane) {
          const int step = plane == Frame::U || plane == Frame::V ? 2 : 1;
          const PlaneView view = planeOf(*frame, plane);
          for (int y = 0; y < view.height; ++y)
            for (int x = 0; x < view.width; ++x) {
              const double covered = wipe->coverage(size, point, (x + 0.5) * step, (y + 0.5) * step);
              if (std::abs(view.row(y)[x] - std::lround(covered * 255)) > 1)
                QFAIL(qPrintable(QString("%1x%2 at %3, plane %4, %5,%6: %7 for %8")
                                     .arg(size.width)
                                     .arg(size.height)
                                     .arg(position)
                                     .arg(plane)
                                     .arg(x)
                                     .arg(y)
                                     .arg(view.row(y)[x])
                                     .arg(covered * 255)));
            }
        }
      }
    }
  }

  void neverTakesAnythingBack_data() { everyWipe(); }
  void neverTakesAnythingBack() {
    QFETCH(int, effect);
    for (const FrameSize size : {FrameSize{854, 480}, {33, 17}, {17, 40}}) {
      Masks masks(size);
      FrameRef last = masks.of(effect, 0);
      for (int i = 1; i <= 60; ++i) {
        const FrameRef now = masks.of(effect, i / 60.0);
        for (int plane = 0; plane < 3; ++plane) {
          const PlaneView before = planeOf(*last, plane);
          const PlaneView after = planeOf(*now, plane);
          int falls = 0;
          for (int y = i % 3; y < after.height; y += 3)
            for (int x = 0; x < after.width; ++x)
              falls += after.row(y)[x] < before.row(y)[x];
          QVERIFY2(falls == 0, qPrintable(QString("%1 in plane %2 at %3").arg(falls).arg(plane).arg(i)));
        }
        last = now;
      }
    }
  }

  void aSoftEdgeIsAHundredthOfTheWidth() {
    const FrameSize size{1000, 600};
    // The ramp's ten samples, less one where its ends lie on samples.
    const auto isTen = [](int count) { return count == 9 || count == 10; };
    for (const int effect : {Left, Right}) {
      const FrameRef frame = masked(effect, size, 0.4);
      QVERIFY(isTen(softCount(frame, Frame::Y, 0, 1000, 300, 301)));
      const int chroma = softCount(frame, Frame::U, 0, 500, 150, 151);
      QVERIFY2(chroma == 4 || chroma == 5, qPrintable(QString::number(chroma)));
    }
    for (const int effect : {Top, Bottom})
      QVERIFY(isTen(softCount(masked(effect, size, 0.4), Frame::Y, 500, 501, 0, 600)));
    for (const int effect : {HCenter, Split, Box, Circle}) {
      const FrameRef frame = masked(effect, size, 0.4);
      QVERIFY2(isTen(softCount(frame, Frame::Y, 0, 500, 300, 301)), kNames[effect]);
      QVERIFY2(isTen(softCount(frame, Frame::Y, 500, 1000, 300, 301)), kNames[effect]);
    }
    for (const int effect : {VCenter, Box, Circle})
      QVERIFY2(isTen(softCount(masked(effect, size, 0.4), Frame::Y, 500, 501, 0, 300)), kNames[effect]);
    // Across a diagonal edge the samples of a row lie closer: 10 * hypot(1000, 600) / 600.
    const int diagonal = softCount(masked(TopLeft, size, 0.4), Frame::Y, 0, 1000, 100, 101);
    QVERIFY2(std::abs(diagonal - 19) <= 1, qPrintable(QString::number(diagonal)));
  }

  void comesFromWhereItsNameSays_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<QStringList>("quarter");
    QTest::addColumn<QStringList>("half");
    const auto row = [](int effect, const QStringList& quarter, const QStringList& half) {
      QTest::newRow(kNames[effect]) << effect << quarter << half;
    };
    const QString none(8, '.');
    const QString all(8, '#');
    const QString soft(8, '+');
    const auto rows = [](int count, const QString& text) {
      QStringList list;
      for (int i = 0; i < count; ++i)
        list << text;
      return list;
    };
    row(Left, rows(8, "#+......"), rows(8, "####...."));
    row(Right, rows(8, "......+#"), rows(8, "....####"));
    row(Top, rows(1, all) + rows(1, soft) + rows(6, none), rows(4, all) + rows(4, none));
    row(Bottom, rows(6, none) + rows(1, soft) + rows(1, all), rows(4, none) + rows(4, all));
    row(HCenter, rows(8, "...++..."), rows(8, "..####.."));
    row(VCenter, rows(3, none) + rows(2, soft) + rows(3, none), rows(2, none) + rows(4, all) + rows(2, none));
    row(Split, rows(8, "+......+"), rows(8, "##....##"));
  }
  void comesFromWhereItsNameSays() {
    QFETCH(int, effect);
    QFETCH(QStringList, quarter);
    QFETCH(QStringList, half);
    QCOMPARE(drawing(effect, {8, 8}, 0.25), quarter);
    QCOMPARE(drawing(effect, {8, 8}, 0.5), half);
  }

  void valuesAreThoseOfTheSampleCentres() {
    // Feather 1, edge at 0.45 * 9 = 4.05: luma 3.5 is covered by 0.55, chroma 3 by all and 5 by nothing.
    const FrameRef left = masked(Left, {8, 2}, 0.45);
    QCOMPARE(sample(left, Frame::Y, 2, 0), 255);
    QCOMPARE(sample(left, Frame::Y, 3, 0), 140);
    QCOMPARE(sample(left, Frame::Y, 4, 0), 0);
    QCOMPARE(sample(left, Frame::U, 1, 0), 255);
    QCOMPARE(sample(left, Frame::V, 2, 0), 0);
    // Edge at 0.4 * 9 = 3.6: chroma 3 by 0.6.
    QCOMPARE(sample(masked(Left, {8, 2}, 0.4), Frame::U, 1, 0), 153);
    // Radius 0.5 * (5 + 1) = 3 in a picture of 8 by 6: the sample 2.5, 0.5 from the centre by 0.4505.
    QCOMPARE(sample(masked(Circle, {8, 6}, 0.5), Frame::Y, 6, 3), 115);
  }

  void cornersComeFirstAndLast_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::newRow("TopLeft") << int(TopLeft) << 0 << 0;
    QTest::newRow("TopRight") << int(TopRight) << 159 << 0;
    QTest::newRow("BottomRight") << int(BottomRight) << 159 << 89;
    QTest::newRow("BottomLeft") << int(BottomLeft) << 0 << 89;
  }
  void cornersComeFirstAndLast() {
    QFETCH(int, effect);
    QFETCH(int, x);
    QFETCH(int, y);
    const FrameSize size{160, 90};
    const FrameRef early = masked(effect, size, 0.1);
    const FrameRef late = masked(effect, size, 0.9);
    QCOMPARE(sample(early, Frame::Y, x, y), 255);
    QCOMPARE(sample(early, Frame::Y, 159 - x, y), 0);
    QCOMPARE(sample(early, Frame::Y, x, 89 - y), 0);
    QCOMPARE(sample(late, Frame::Y, 159 - x, 89 - y), 0);
    QCOMPARE(sample(late, Frame::Y, 159 - x, y), 255);
    QCOMPARE(sample(late, Frame::Y, x, 89 - y), 255);
    // Half way, the edge lies on the other diagonal.
    const FrameRef half = masked(effect, size, 0.5);
    QVERIFY(sample(half, Frame::Y, 159 - x, y) > 60 && sample(half, Frame::Y, 159 - x, y) < 195);
    QVERIFY(sample(half, Frame::Y, x, 89 - y) > 60 && sample(half, Frame::Y, x, 89 - y) < 195);
  }

  void boxKeepsTheShapeOfThePicture() {
    QCOMPARE(drawing(Box, {16, 8}, 0.45), QStringList({"................",  //
                                                       "................",  //
                                                       "....++++++++....",  //
                                                       "....+######+....",  //
                                                       "....+######+....",  //
                                                       "....++++++++....",  //
                                                       "................",  //
                                                       "................"}));
  }

  void circleIsRound() {
    const FrameRef frame = masked(Circle, {400, 200}, 0.5);
    // Half of the way of hypot(400, 200) / 2 + 4 is 113.8, less the soft edge 109.8.
    for (const double angle : {0.1, 0.7, 1.3, 2.2, 3.3, 4.0, 5.1}) {
      const auto at = [&](double radius) {
        return sample(frame, Frame::Y, static_cast<int>(200 + radius * std::cos(angle)),
                      static_cast<int>(100 + radius * std::sin(angle) * 0.8));
      };
      QCOMPARE(at(95), 255);
    }
    QCOMPARE(sample(frame, Frame::Y, 200 + 108, 100), 255);
    QCOMPARE(sample(frame, Frame::Y, 200 + 114, 100), 0);
    QCOMPARE(sample(frame, Frame::Y, 200 + 76, 100 + 76), 255);
    QCOMPARE(sample(frame, Frame::Y, 200 + 81, 100 + 81), 0);
    QCOMPARE(sample(frame, Frame::Y, 200 - 77, 100 - 77), 255);
    QCOMPARE(sample(frame, Frame::Y, 200 - 82, 100 - 82), 0);
  }

  void cellsAreWhereTheyBelong_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<double>("position");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("Checkerboard at its half") << int(Checkerboard) << 0.5
                                              << QStringList({"####....####....",  //
                                                              "####....####....",  //
                                                              "####....####....",  //
                                                              "####....####....",  //
                                                              "....####....####",  //
                                                              "....####....####",  //
                                                              "....####....####",  //
                                                              "....####....####"});
    QTest::newRow("Checkerboard at a quarter") << int(Checkerboard) << 0.25
                                               << QStringList({"##......##......",  //
                                                               "##......##......",  //
                                                               "##......##......",  //
                                                               "##......##......",  //
                                                               "....##......##..",  //
                                                               "....##......##..",  //
                                                               "....##......##..",  //
                                                               "....##......##.."});
    QTest::newRow("VenetianBlinds") << int(VenetianBlinds) << 0.4
                                    << QStringList({"################",  //
                                                    "++++++++++++++++",  //
                                                    "................",  //
                                                    "................",  //
                                                    "################",  //
                                                    "++++++++++++++++",  //
                                                    "................",  //
                                                    "................"});
    QTest::newRow("Wheel") << int(Wheel) << 0.5
                           << QStringList({"####+...###+....",  //
                                           "#####+..##+.....",  //
                                           "######+.#+......",  //
                                           "#######++.......",  //
                                           ".......++#######",  //
                                           "......+#.+######",  //
                                           ".....+##..+#####",  //
                                           "....+###...+####"});
    QTest::newRow("DiagonalSquares") << int(DiagonalSquares) << 0.5
                                     << QStringList({"########........",  //
                                                     "########.##.....",  //
                                                     "########.##.....",  //
                                                     "########........",  //
                                                     "####............",  //
                                                     "####.##.........",  //
                                                     "####.##.........",  //
                                                     "####............"});
  }
  void cellsAreWhereTheyBelong() {
    QFETCH(int, effect);
    QFETCH(double, position);
    QFETCH(QStringList, expected);
    const QStringList got = drawing(effect, {16, 8}, position);
    QVERIFY2(got == expected, qPrintable('\n' + got.join('\n')));
  }

  void wheelTurnsClockwiseFromTwelve() {
    const FrameRef frame = masked(Wheel, {200, 200}, 0.5);
    for (const QPoint fresh : {QPoint(130, 20), {180, 130}, {70, 180}, {20, 70}})
      QCOMPARE(sample(frame, Frame::Y, fresh.x(), fresh.y()), 255);
    for (const QPoint old : {QPoint(180, 70), {130, 180}, {20, 130}, {70, 20}})
      QCOMPARE(sample(frame, Frame::Y, old.x(), old.y()), 0);
  }

  void dropsRunDownFromTheTop() {
    const FrameSize size{480, 270};
    const FrameRef frame = masked(Blood, size, 0.5);
    int shortest = size.height;
    int longest = 0;
    for (int x = 0; x < size.width; ++x) {
      int length = 0;
      while (length < size.height && sample(frame, Frame::Y, x, length) >= 128)
        ++length;
      for (int y = length; y < size.height; ++y)
        QVERIFY(sample(frame, Frame::Y, x, y) < 128);
      shortest = std::min(shortest, length);
      longest = std::max(longest, length);
    }
    QVERIFY2(shortest > 20, qPrintable(QString::number(shortest)));
    QVERIFY2(longest < 250, qPrintable(QString::number(longest)));
    QVERIFY2(longest - shortest > 80, qPrintable(QString::number(longest - shortest)));
  }

  void aSymmetricShapeIsSymmetric() {
    for (const FrameSize size : {FrameSize{64, 36}, {65, 37}, {134, 50}})
      for (const double position : {0.2, 0.5, 0.83}) {
        // Odd pictures have chroma samples past their border, on one side only.
        const int planes = size.width % 2 == 0 && size.height % 2 == 0 ? 3 : 1;
        const auto made = [&](int effect) { return masked(effect, size, position); };
        for (int plane = 0; plane < planes; ++plane) {
          for (const int effect : {HCenter, VCenter, Box, Circle, Split}) {
            QVERIFY2(mirrored(made(effect), made(effect), plane, true, false), kNames[effect]);
            QVERIFY2(mirrored(made(effect), made(effect), plane, false, true), kNames[effect]);
          }
          QVERIFY(mirrored(made(Wheel), made(Wheel), plane, true, true));
          QVERIFY(mirrored(made(Left), made(Right), plane, true, false));
          QVERIFY(mirrored(made(Top), made(Bottom), plane, false, true));
          QVERIFY(mirrored(made(TopLeft), made(TopRight), plane, true, false));
          QVERIFY(mirrored(made(TopLeft), made(BottomLeft), plane, false, true));
          QVERIFY(mirrored(made(TopLeft), made(BottomRight), plane, true, true));
        }
      }
  }

  void randomNumbersComeFromTheSeed_data() { everyWipe(); }
  void randomNumbersComeFromTheSeed() {
    QFETCH(int, effect);
    const FrameSize size{160, 90};
    const double apart = difference(*masked(effect, size, 0.5, 1), *masked(effect, size, 0.5, 2)).mean;
    if (effect == DissolveIn || effect == RandomBars || effect == Blood)
      QVERIFY2(apart > 15, qPrintable(QString::number(apart)));
    else
      QCOMPARE(apart, 0.0);
    QCOMPARE(difference(*masked(effect, size, 0.5, 2), *masked(effect, size, 0.5, 2)).largest, 0);
  }

  void randomOrdersKeepAnEvenPace() {
    for (const int effect : {DissolveIn, RandomBars})
      for (const std::uint32_t seed : {0U, 1U, 99U, 4294967295U}) {
        const auto covered = [&](double position) {
          return meanLuma(masked(effect, {480, 270}, position, seed)) / 255;
        };
        QVERIFY(std::abs(covered(0.25) - 0.22) < 0.02);
        QVERIFY(std::abs(covered(0.5) - 0.5) < 0.02);
        QVERIFY(std::abs(covered(0.75) - 0.78) < 0.02);
      }
  }

  void splitIsTheOppositeOfHCenter() {
    const FrameRef split = masked(Split, {100, 20}, 0.5);
    const FrameRef center = masked(HCenter, {100, 20}, 0.5);
    QCOMPARE(sample(split, Frame::Y, 50, 10), 0);
    QCOMPARE(sample(center, Frame::Y, 50, 10), 255);
    QCOMPARE(sample(split, Frame::Y, 10, 10), 255);
    QCOMPARE(sample(center, Frame::Y, 10, 10), 0);
  }
};

QTEST_GUILESS_MAIN(WipesTest)
#include "tst_wipes.moc"
