// What holds for each transition of the catalogue: exact ends, steady movement, no randomness but the seed's,
// no sample out of place.
#include <QtTest>

#include "engine/mix/TransitionCatalog.h"
#include "support/AllocationCounter.h"
#include "support/MixPictures.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr MixPoint kStart{0.0, 7};
constexpr MixPoint kEnd{1.0, 7};

struct Family {
  const char* name;
  int first;
  int last;
};
constexpr Family kFamilies[] = {{"wipe", 1, 20},     {"fade", 22, 23}, {"glide", 25, 44},
                                {"stretch", 46, 51}, {"blur", 53, 60}, {"distortion", 62, 72},
                                {"color", 74, 79}};

void everyEffect() {
  QTest::addColumn<int>("effect");
  for (const Family& family : kFamilies)
    for (int effect = family.first; effect <= family.last; ++effect)
      QTest::addRow("%s %d", family.name, effect) << effect;
}

/// What the transition makes of the two pictures.
FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, MixPoint point,
               TransitionScratch& scratch) {
  MutableFrame out(new Frame(from->size()));
  transitionFor(effect)->mix(*from, *to, point, scratch, *out);
  return std::move(out).publish();
}

FrameRef mixed(int effect, const FrameRef& from, const FrameRef& to, double position) {
  TransitionScratch scratch;
  return mixed(effect, from, to, {position, 7}, scratch);
}

}  // namespace

class EveryTransitionTest : public QObject {
  Q_OBJECT

 private slots:
  void numbersWithoutATransitionCut() {
    for (const int effect : {-1, 0, 21, 24, 45, 52, 61, 73, 80, 99, 65535})
      QVERIFY2(!transitionFor(effect), qPrintable(QString::number(effect)));
  }

  void endsAreExact_data() { everyEffect(); }
  void endsAreExact() {
    QFETCH(int, effect);
    TransitionScratch scratch;
    for (const FrameSize size : {FrameSize{1920, 1080},
                                 {1280, 720},
                                 {854, 480},
                                 {33, 17},
                                 {17, 33},
                                 {2, 2},
                                 {1, 1},
                                 {1, 9},
                                 {9, 1}}) {
      const FrameRef a = noise(size, 1);
      const FrameRef b = noise(size, 2);
      QCOMPARE(difference(*mixed(effect, a, b, kStart, scratch), *a).largest, 0);
      QCOMPARE(difference(*mixed(effect, a, b, kEnd, scratch), *b).largest, 0);
    }
  }

  void nothingJumpsBesideTheEnds_data() { everyEffect(); }
  void nothingJumpsBesideTheEnds() {
    QFETCH(int, effect);
    const FrameRef a = scenery({320, 180}, 0);
    const FrameRef b = scenery({320, 180}, 1);
    const double first = difference(*mixed(effect, a, b, 0.002), *a).mean;
    const double last = difference(*mixed(effect, a, b, 0.998), *b).mean;
    QVERIFY2(first < 2.5, qPrintable(QString::number(first)));
    QVERIFY2(last < 2.5, qPrintable(QString::number(last)));
  }

  void movesInSmallSteps_data() { everyEffect(); }
  void movesInSmallSteps() {
    QFETCH(int, effect);
    const FrameRef a = scenery({320, 180}, 0);
    const FrameRef b = scenery({320, 180}, 1);
    TransitionScratch scratch;
    FrameRef last = a;
    for (int i = 1; i <= 100; ++i) {
      const FrameRef now = mixed(effect, a, b, {i / 100.0, 7}, scratch);
      const double step = difference(*now, *last).mean;
      QVERIFY2(step < 10, qPrintable(QString("%1 at %2").arg(step).arg(i)));
      last = now;
    }
  }

  void drawsSomethingOfItsOwnOnTheWay_data() { everyEffect(); }
  void drawsSomethingOfItsOwnOnTheWay() {
    QFETCH(int, effect);
    const FrameRef a = scenery({320, 180}, 0);
    const FrameRef b = scenery({320, 180}, 1);
    for (const double position : {0.25, 0.5, 0.75}) {
      const FrameRef now = mixed(effect, a, b, position);
      QVERIFY(difference(*now, *a).mean > 1);
      QVERIFY(difference(*now, *b).mean > 1);
    }
  }

  void noTwoAreTheSame() {
    const FrameRef a = scenery({96, 54}, 0);
    const FrameRef b = scenery({96, 54}, 1);
    std::array<std::array<FrameRef, 3>, kEffectCount> pictures;
    for (int effect = 0; effect < kEffectCount; ++effect)
      for (std::size_t i = 0; transitionFor(effect) && i < 3; ++i)
        pictures[static_cast<std::size_t>(effect)][i] =
            mixed(effect, a, b, 0.25 * static_cast<double>(i + 1));
    for (std::size_t one = 0; one < kEffectCount; ++one)
      for (std::size_t two = one + 1; two < kEffectCount; ++two) {
        if (!pictures[one][0] || !pictures[two][0])
          continue;
        double sum = 0;
        for (std::size_t i = 0; i < 3; ++i)
          sum += difference(*pictures[one][i], *pictures[two][i]).mean;
        QVERIFY2(sum > 2, qPrintable(QString("%1 and %2: %3").arg(one).arg(two).arg(sum)));
      }
  }

  void theSamePointIsTheSamePicture_data() { everyEffect(); }
  void theSamePointIsTheSamePicture() {
    QFETCH(int, effect);
    const FrameRef a = noise({66, 50}, 1);
    const FrameRef b = noise({66, 50}, 2);
    TransitionScratch scratch;
    const FrameRef first = mixed(effect, a, b, {0.4, 7}, scratch);
    mixed(effect, a, b, {0.9, 8}, scratch);
    mixed(effect, noise({33, 17}, 1), noise({33, 17}, 2), {0.4, 7}, scratch);
    mixed(effect == 65 ? 16 : 65, a, b, {0.4, 7}, scratch);
    QCOMPARE(difference(*mixed(effect, a, b, {0.4, 7}, scratch), *first).largest, 0);
    QCOMPARE(difference(*mixed(effect, a, b, 0.4), *first).largest, 0);
  }

  void callsOfTheAllocatorAreCounted() {
    // Kept in volatile pointers, so that no compiler leaves a pair of calls out.
    const qint64 before = allocationCalls();
    void* volatile plain = std::malloc(100);
    int* volatile made = new int(7);
    void* volatile aligned = std::aligned_alloc(64, 128);
    std::free(plain);
    delete made;
    std::free(aligned);
    // Memory that is given back counts, and what the engine's library asks for too.
    const FrameRef frame = FrameRef::adopt(new Frame({16, 16}));
    const qint64 after = allocationCalls();
    QVERIFY2(after - before >= 5, QByteArray::number(after - before));
  }

  void aTakeAllocatesAtItsFirstFrameOnly_data() { everyEffect(); }
  void aTakeAllocatesAtItsFirstFrameOnly() {
    QFETCH(int, effect);
    const FrameRef a = noise({640, 360}, 1);
    const FrameRef b = noise({640, 360}, 2);
    MutableFrame out(new Frame(a->size()));
    TransitionScratch scratch;
    const auto mixAt = [&](double position) {
      transitionFor(effect)->mix(*a, *b, {position, 7}, scratch, *out);
    };
    mixAt(0.04);
    for (int frame = 2; frame <= 25; ++frame) {
      const qint64 before = allocationCalls();
      mixAt(0.04 * frame);
      const qint64 after = allocationCalls();
      QCOMPARE(after - before, 0);
    }
  }

  void readsNoSampleTooMuch_data() { everyEffect(); }
  void readsNoSampleTooMuch() {
    QFETCH(int, effect);
    TransitionScratch scratch;
    for (int side = 1; side <= 70; side += side < 10 ? 1 : 3) {
      for (const FrameSize size : {FrameSize{side, 71 - side}, FrameSize{side, 1}, FrameSize{side, side}}) {
        const FrameRef a = noise(size, 1);
        const FrameRef b = noise(size, 2);
        for (const double position : {0.0, 0.1, 0.5, 0.83, 1.0}) {
          const FrameRef tight = mixed(effect, withoutSpare(*a), withoutSpare(*b), {position, 7}, scratch);
          const FrameRef wide = mixed(effect, a, b, {position, 7}, scratch);
          QCOMPARE(difference(*tight, *wide).largest, 0);
        }
      }
    }
  }
};

QTEST_GUILESS_MAIN(EveryTransitionTest)
#include "tst_every_transition.moc"
