// Frames, buffers and tables are kept from frame to frame, and made again when the size or the key differs.
#include <QtTest>

#include "engine/mix/TransitionScratch.h"

using namespace korvia;

class TransitionScratchTest : public QObject {
  Q_OBJECT

 private slots:
  void framesAreKeptWhileTheyFit() {
    TransitionScratch scratch;
    Frame* frame = &scratch.frame(1, {33, 17});
    QCOMPARE(frame->width(), 33);
    QVERIFY(!frame->hasAlpha());
    QCOMPARE(&scratch.frame(1, {33, 17}), frame);
    QVERIFY(&scratch.frame(2, {33, 17}) != frame);
    QCOMPARE(scratch.frame(1, {20, 10}).height(), 10);
  }

  void buffersGrowAndStay() {
    TransitionScratch scratch;
    auto* small = scratch.buffer<std::int32_t>(0, 100);
    QCOMPARE(reinterpret_cast<quintptr>(small) % 64, quintptr(0));
    small[99] = 5;
    QCOMPARE(scratch.buffer<std::int32_t>(0, 50), small);
    QCOMPARE(small[99], 5);
    auto* large = scratch.buffer<std::int32_t>(0, 100000);
    large[99999] = 7;
    QCOMPARE(scratch.buffer<std::int32_t>(0, 100), large);
    QVERIFY(scratch.buffer<std::uint8_t>(7, 0));
  }

  void tableIsMadeOncePerOwnerSizeAndSeed() {
    TransitionScratch scratch;
    const int owners[2] = {};
    int made = 0;
    const auto table = [&](const void* owner, FrameSize size, std::uint32_t seed, std::size_t count) {
      return scratch.table<std::uint16_t>(owner, size, seed, count, [&](std::uint16_t* values) {
        ++made;
        std::fill_n(values, count, static_cast<std::uint16_t>(made));
      });
    };
    QCOMPARE(table(&owners[0], {4, 4}, 1, 16)[15], std::uint16_t(1));
    QCOMPARE(table(&owners[0], {4, 4}, 1, 16)[0], std::uint16_t(1));
    QCOMPARE(made, 1);
    QCOMPARE(table(&owners[0], {4, 4}, 2, 16)[0], std::uint16_t(2));
    QCOMPARE(table(&owners[0], {5, 4}, 2, 16)[0], std::uint16_t(3));
    QCOMPARE(table(&owners[1], {5, 4}, 2, 16)[0], std::uint16_t(4));
    QCOMPARE(table(&owners[1], {5, 4}, 2, 5000)[4999], std::uint16_t(5));
    QCOMPARE(table(&owners[0], {4, 4}, 1, 16)[0], std::uint16_t(6));
  }
};

QTEST_GUILESS_MAIN(TransitionScratchTest)
#include "tst_transition_scratch.moc"
