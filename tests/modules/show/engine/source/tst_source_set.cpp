// What the engine sees of the sources that the console opens and closes.
#include <QtTest>
#include <atomic>
#include <thread>

#include "engine/source/SourceSet.h"

using namespace korvia;

namespace {

/// A source that only counts how many of its kind there are.
class CountedSource final : public Source {
 public:
  explicit CountedSource(std::atomic<int>& alive) : Source({}, {}, {}), alive_(alive) { ++alive_; }
  ~CountedSource() override { --alive_; }
  FrameRef pullFrame(int) override { return {}; }
  void close() override {}

 private:
  std::atomic<int>& alive_;
};

}  // namespace

class SourceSetTest : public QObject {
  Q_OBJECT

 private:
  std::atomic<int> alive_{0};

  std::shared_ptr<Source> source() { return std::make_shared<CountedSource>(alive_); }

 private slots:
  void cleanup() { QCOMPARE(alive_.load(), 0); }

  void aSlotGivesBackWhatWasThere() {
    SourceSet set;
    const auto first = source();
    const auto second = source();
    QVERIFY(!set.exchange(3, first));
    QCOMPARE(set.at(3), first);
    QVERIFY(!set.at(2));
    QCOMPARE(set.exchange(3, second), first);
    QCOMPARE(set.exchange(3, nullptr), second);
    QVERIFY(!set.at(3));
  }

  void theCopyIsRenewedOnlyAfterAChange() {
    SourceSet set;
    quint64 version = 0;
    SourceArray copy;
    SourceArray old;
    QVERIFY(set.refresh(version, copy, old));
    QVERIFY(!set.refresh(version, copy, old));
    const auto first = source();
    set.exchange(0, first);
    set.exchange(kSourceSlotCount - 1, first);
    QVERIFY(set.refresh(version, copy, old));
    QCOMPARE(copy.front(), first);
    QCOMPARE(copy.back(), first);
    QVERIFY(!set.refresh(version, copy, old));
    QCOMPARE(copy.front(), first);
  }

  void whatLeavesIsHandedOverAndNotDestroyed() {
    SourceSet set;
    quint64 version = 0;
    SourceArray copy;
    SourceArray old;
    set.exchange(5, source());
    QVERIFY(set.refresh(version, copy, old));
    set.exchange(5, source());
    // The engine still holds the one before.
    QCOMPARE(alive_.load(), 2);
    QVERIFY(set.refresh(version, copy, old));
    QVERIFY(old[5] && old[5] != copy[5]);
    QCOMPARE(alive_.load(), 2);
    old = {};
    QCOMPARE(alive_.load(), 1);
  }

  void aReaderOfManyChangesEndsWithTheLast() {
    SourceSet set;
    std::shared_ptr<Source> last;
    std::atomic<bool> done{false};
    std::thread console([&] {
      for (int i = 0; i < 2000; ++i) {
        last = source();
        set.exchange(i % kSourceSlotCount, last);
      }
      done = true;
    });
    quint64 version = 0;
    SourceArray copy;
    SourceArray old;
    while (!done)
      set.refresh(version, copy, old);
    console.join();
    set.refresh(version, copy, old);
    for (int slot = 0; slot < kSourceSlotCount; ++slot)
      QCOMPARE(copy[static_cast<std::size_t>(slot)], set.at(slot));
    QCOMPARE(copy[1999 % kSourceSlotCount], last);
  }
};

QTEST_GUILESS_MAIN(SourceSetTest)
#include "tst_source_set.moc"
