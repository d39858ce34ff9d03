// Mixing by a mask from levels at nodes.
#include <QtTest>

#include "engine/mix/distortions/LevelGrid.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

/// All planes of the mix of 0 and 255 are the mask.
FrameRef shownMask(const LevelGrid& levels, FrameSize size) {
  MutableFrame out(new Frame(size));
  levels.mix(*flat(size, 0), *flat(size, 255), *out);
  return std::move(out).publish();
}

}  // namespace

class LevelGridTest : public QObject {
  Q_OBJECT

 private slots:
  void levelsAreLinearBetweenNodes() {
    // Levels 255, 128 and 0 at samples 0, 8 and 16; half as much eight rows down.
    TransitionScratch scratch;
    LevelGrid levels({16, 9}, 3, scratch);
    levels.open(0.5, 1, [](int x, int y, std::size_t) { return y == 0 ? x / 16.0 : 0.5 + x / 32.0; });
    const FrameRef mask = shownMask(levels, {16, 9});
    const std::uint8_t top[] = {255, 239, 223, 207, 192, 176, 160, 144, 128, 112, 96, 80, 64, 48, 32, 16};
    for (int x = 0; x < 16; ++x)
      QCOMPARE(int(planeOf(*mask, Frame::Y).row(0)[x]), int(top[x]));
    QCOMPARE(int(planeOf(*mask, Frame::Y).row(8)[0]), 128);
    QCOMPARE(int(planeOf(*mask, Frame::Y).row(4)[0]), 192);
    QCOMPARE(int(planeOf(*mask, Frame::Y).row(4)[8]), 96);
    // Chroma takes the mask of its upper left sample of luma.
    for (const int plane : {Frame::U, Frame::V})
      for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 8; ++x)
          QCOMPARE(int(planeOf(*mask, plane).row(y)[x]), int(planeOf(*mask, Frame::Y).row(2 * y)[2 * x]));
  }

  void endsAreClosedAndOpen() {
    TransitionScratch scratch;
    for (const int cellBits : {2, 3})
      for (const double softness : {0.01, 0.3, 5.0}) {
        LevelGrid levels({30, 17}, cellBits, scratch);
        const auto arrival = [](int x, int y, std::size_t) { return qMin((x + y) / 40.0, 1.0); };
        levels.open(0, softness, arrival);
        QCOMPARE(difference(*shownMask(levels, {30, 17}), *flat({30, 17}, 0)).largest, 0);
        levels.open(1, softness, arrival);
        QCOMPARE(difference(*shownMask(levels, {30, 17}), *flat({30, 17}, 255)).largest, 0);
      }
  }

  void whatArrivesFirstIsOpenFirst() {
    TransitionScratch scratch;
    LevelGrid levels({64, 1}, 3, scratch);
    levels.open(0.4, 0.25, [](int x, int, std::size_t) { return x / 64.0; });
    // The front is at half of the way; what arrived a quarter of the way before is open.
    const FrameRef mask = shownMask(levels, {64, 1});
    QCOMPARE(int(planeOf(*mask, Frame::Y).row(0)[16]), 255);
    QCOMPARE(int(planeOf(*mask, Frame::Y).row(0)[24]), 128);
    QCOMPARE(int(planeOf(*mask, Frame::Y).row(0)[32]), 0);
    QCOMPARE(int(planeOf(*mask, Frame::Y).row(0)[63]), 0);
  }
};

QTEST_GUILESS_MAIN(LevelGridTest)
#include "tst_level_grid.moc"
