// The rules that lists and documents share, with items that are made up: what is loaded and kept, what is
// shown while the wanted item is not there, what happens to items that cannot be loaded, and when the next
// one follows.
#include <QSemaphore>
#include <QtTest>
#include <set>

#include "SourceRig.h"
#include "engine/source/PagedSource.h"

using namespace korvia;
using namespace korvia::test;

namespace {

/// What the items are, and what was done with them. Any thread.
class Shelf {
 public:
  int count = 5;
  std::set<int> unreadable;
  std::atomic<bool> waits{false};  // each item waits for the gate
  QSemaphore gate;

  std::atomic<int> alive{0};
  std::atomic<int> mostAlive{0};

  QVector<int> loaded() {
    std::lock_guard lock(mutex_);
    return loaded_;
  }
  void note(int index) {
    std::lock_guard lock(mutex_);
    loaded_ += index;
  }

 private:
  std::mutex mutex_;
  QVector<int> loaded_;  // guarded by mutex_
};

class MadeUpSource final : public PagedSource {
 public:
  struct Rules {
    bool wraps = true;
    bool skips = true;
    std::int64_t itemNs = 5'000'000'000;
  };

  static std::shared_ptr<Source> open(const SourceContext& context, Shelf& shelf, Rules rules) {
    std::shared_ptr<MadeUpSource> source(new MadeUpSource(context, shelf, rules));
    start(source, QStringLiteral("made up"));
    return source;
  }

 protected:
  QString description() const override { return QStringLiteral("made up"); }

  int openItems(QString& reason) override {
    reason = QStringLiteral("nothing there");
    return shelf_.count;
  }

  FrameRef loadItem(int index, QString& reason) override {
    if (shelf_.waits)
      shelf_.gate.acquire();
    shelf_.note(index);
    if (shelf_.unreadable.count(index) != 0) {
      reason = QStringLiteral("item %1 is broken").arg(index);
      return {};
    }
    return picture(index);
  }

 private:
  struct Memory {
    Shelf* shelf;
    std::uint8_t samples[4];
  };

  MadeUpSource(const SourceContext& context, Shelf& shelf, Rules rules)
      : PagedSource(context, tagKorviaShowSourceInfo(), tagKorviaFormatInfo(),
                    {rules.wraps ? Ends::Wrap : Ends::Stay,
                     rules.skips ? Unreadable::Skip : Unreadable::KeepShown, rules.itemNs}),
        shelf_(shelf) {}

  /// A picture whose luma is the number of the item, and which is counted while it lives.
  FrameRef picture(int index) {
    auto* memory = new Memory{&shelf_, {static_cast<std::uint8_t>(index), 0, 128, 128}};
    Frame::External external;
    for (int plane = 0; plane < 3; ++plane) {
      external.data[plane] = memory->samples + (plane == 0 ? 0 : plane + 1);
      external.stride[plane] = 1;
    }
    external.opaque = memory;
    external.release = [](void* opaque) {
      auto* released = static_cast<Memory*>(opaque);
      --released->shelf->alive;
      delete released;
    };
    const int alive = ++shelf_.alive;
    for (int most = shelf_.mostAlive; alive > most && !shelf_.mostAlive.compare_exchange_weak(most, alive);) {
    }
    return FrameRef::adopt(new Frame({1, 1}, external));
  }

  Shelf& shelf_;
};

class PagedRig : public SourceRig {
 public:
  explicit PagedRig(Shelf& shelf, MadeUpSource::Rules rules = {}) {
    open(MadeUpSource::open(context(), shelf, rules));
  }
  /// The item on show; -1 for black.
  int shown(int ticks = 1) {
    const FrameRef frame = (*this)->pullFrame(ticks);
    return frame ? frame->plane(Frame::Y)[0] : -1;
  }
};

}  // namespace

class PagedSourceTest : public QObject {
  Q_OBJECT

 private slots:
  void firstItemThenItsNeighbours() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(rig->getItemCount(), 5);
    QCOMPARE(rig->getItemIndex(), 0);
    QCOMPARE(rig.shown(), 0);
    QTRY_COMPARE(shelf.loaded(), (QVector<int>{0, 1, 4}));
  }

  void neighbourIsShownAtOnce() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(shelf.loaded().size(), 3);
    shelf.waits = true;  // nothing more is loaded
    rig->next();
    QCOMPARE(rig.shown(), 1);
    rig->prev();
    rig->prev();
    QCOMPARE(rig->getItemIndex(), 4);
    shelf.gate.release(100);
    QTRY_COMPARE(rig.shown(), 4);
  }

  void listWraps() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(rig.shown(), 0);
    for (int expected : {4, 3, 2, 1, 0, 4}) {
      rig->prev();
      QCOMPARE(rig->getItemIndex(), expected);
      QTRY_COMPARE(rig.shown(), expected);
    }
    for (int expected : {0, 1}) {
      rig->next();
      QTRY_COMPARE(rig.shown(), expected);
    }
  }

  void documentHasEnds() {
    Shelf shelf;
    shelf.count = 3;
    PagedRig rig(shelf, {false, false, 0});
    QTRY_COMPARE(rig.shown(), 0);
    rig->prev();
    QCOMPARE(rig->getItemIndex(), 0);
    for (int expected : {1, 2, 2}) {
      rig->next();
      QCOMPARE(rig->getItemIndex(), expected);
      QTRY_COMPARE(rig.shown(), expected);
    }
  }

  void threePicturesAreKeptBesideTheOneOnShow() {
    Shelf shelf;
    shelf.count = 100;
    PagedRig rig(shelf);
    QTRY_COMPARE(rig.shown(), 0);
    for (int i = 1; i < 60; ++i) {
      rig->next();
      if (i % 3 == 0)
        QTRY_COMPARE(rig.shown(), i);
    }
    rig->setPosition(0);
    QTRY_COMPARE(rig.shown(), 0);
    rig->setPosition(100);
    QTRY_COMPARE(rig.shown(), 99);
    QVERIFY2(shelf.mostAlive <= 4, qPrintable(QString::number(shelf.mostAlive)));
    rig.close();
    rig.drop();
    QVERIFY(waitForClosedSources(10'000));
    QCOMPARE(shelf.alive.load(), 0);
  }

  void pictureStaysUntilTheWantedOneIsThere() {
    Shelf shelf;
    shelf.waits = true;
    shelf.gate.release(3);
    PagedRig rig(shelf);
    QTRY_COMPARE(shelf.loaded(), (QVector<int>{0, 1, 4}));
    rig->setPosition(50);
    QCOMPARE(rig->getItemIndex(), 2);
    QCOMPARE(rig.shown(), 0);
    QCOMPARE(rig.shown(), 0);
    shelf.gate.release(10);
    QTRY_COMPARE(rig.shown(), 2);
  }

  void itemsThatWerePassedMeanwhileAreNotShown() {
    Shelf shelf;
    shelf.count = 50;
    shelf.waits = true;
    shelf.gate.release(3);
    PagedRig rig(shelf);
    QTRY_COMPARE(shelf.loaded().size(), 3);
    rig->setPosition(20);  // begins to be loaded
    rig->setPosition(60);
    shelf.gate.release(50);
    QTRY_COMPARE(rig.shown(), 29);
    qint64 shown = 0;
    rig->getFrameCount(shown);
    QCOMPARE(shown, qint64(2));
  }

  void unreadableItemIsSkippedInTheDirectionOfTheStep() {
    Shelf shelf;
    shelf.unreadable = {2};
    PagedRig rig(shelf);
    QTRY_COMPARE(rig.shown(), 0);
    rig->next();
    rig->next();
    QTRY_COMPARE(rig.shown(), 3);
    QCOMPARE(rig->getItemIndex(), 3);
    QCOMPARE(rig->getItemCount(), 5);
    rig->prev();
    QTRY_COMPARE(rig.shown(), 1);
    rig->setPosition(50);
    QTRY_COMPARE(rig.shown(), 3);
    QCOMPARE(shelf.loaded().count(2), 1);
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void unreadableFirstItemIsSkipped() {
    Shelf shelf;
    shelf.unreadable = {0, 1};
    PagedRig rig(shelf);
    QTRY_COMPARE(rig.shown(), 2);
    QCOMPARE(rig->getItemIndex(), 2);
    QCOMPARE(rig->getPlayState(), int(Playing));
  }

  void allUnreadableIsAnError_data() {
    QTest::addColumn<int>("count");
    QTest::addColumn<QString>("reason");
    QTest::newRow("none") << 0 << "nothing there";
    QTest::newRow("one") << 1 << "item 0 is broken";
    QTest::newRow("three") << 3 << "none of 3 can be shown : item 2 is broken";
  }

  void allUnreadableIsAnError() {
    QFETCH(int, count);
    QFETCH(QString, reason);
    Shelf shelf;
    shelf.count = count;
    shelf.unreadable = {0, 1, 2};
    PagedRig rig(shelf);
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QCOMPARE(state.reason, reason);
    QCOMPARE(rig.shown(), -1);
    rig->next();
    rig->prev();
    rig->setPosition(100);
    rig->play();
    QCOMPARE(rig->getPlayState(), int(Error));
    QCOMPARE(rig.shown(), -1);
  }

  void unreadablePageKeepsThePageBefore() {
    Shelf shelf;
    shelf.unreadable = {1};
    PagedRig rig(shelf, {false, false, 0});
    QTRY_COMPARE(rig.shown(), 0);
    QTRY_COMPARE(shelf.loaded(), (QVector<int>{0, 1}));
    rig->next();
    QCOMPARE(rig->getItemIndex(), 1);
    QTRY_COMPARE(shelf.loaded(), (QVector<int>{0, 1, 2}));
    QCOMPARE(rig.shown(), 0);
    QCOMPARE(rig->getPlayState(), int(Playing));
    rig->next();
    QTRY_COMPARE(rig.shown(), 2);
    QCOMPARE(shelf.loaded().count(1), 1);
  }

  void pageAfterAnUnreadableFirstOneEndsTheError() {
    Shelf shelf;
    shelf.unreadable = {0};
    PagedRig rig(shelf, {false, false, 0});
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    rig->next();
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    QCOMPARE(rig.shown(), 1);
    tagKorviaSourceLinkState state;
    rig->getState(state);
    QCOMPARE(state.reason, QString());
  }

  void nextItemAfterItsTime() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(shelf.loaded().size(), 3);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    rig->stop();
    rig->play();
    // 5 s at 25 frames a second.
    for (int i = 0; i < 124; ++i)
      QCOMPARE(rig.shown(), 0);
    QCOMPARE(rig.timeMs(), qint64(4960));
    QCOMPARE(rig.shown(), 1);
    QCOMPARE(rig.timeMs(), qint64(5000));
    QCOMPARE(rig.durationMs(), qint64(25000));
    // Missed frames count too.
    QCOMPARE(rig.shown(124), 1);
    rig.shown(1);
    QTRY_COMPARE(rig.shown(0), 2);
  }

  void timeOfAnItemBeginsWhenItIsShown() {
    Shelf shelf;
    shelf.waits = true;
    shelf.gate.release(3);
    PagedRig rig(shelf);
    QTRY_COMPARE(shelf.loaded().size(), 3);
    rig->setPosition(50);
    for (int i = 0; i < 300; ++i)
      QCOMPARE(rig.shown(), 0);
    shelf.gate.release(10);
    QTRY_COMPARE(rig.shown(0), 2);
    QCOMPARE(rig.shown(124), 2);
    QTRY_COMPARE(rig.shown(1), 3);
  }

  void pauseStopAndHoldStay() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(rig.shown(), 0);
    rig->pause();
    QCOMPARE(rig->getPlayState(), int(Paused));
    QCOMPARE(rig.shown(1000), 0);
    QCOMPARE(rig.shown(), 0);
    rig->stop();
    QCOMPARE(rig->getPlayState(), int(Stopped));
    QCOMPARE(rig.shown(1000), 0);
    QCOMPARE(rig.shown(), 0);
    rig->setHold(true);
    rig->play();
    QCOMPARE(rig.shown(1000), 0);
    QCOMPARE(rig.shown(), 0);
    rig->setHold(false);
    QCOMPARE(rig.shown(124), 0);
    QTRY_COMPARE(rig.shown(), 1);
  }

  void pauseKeepsTheTimeAndStopBeginsItAnew() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(shelf.loaded().size(), 3);
    QTRY_COMPARE(rig->getPlayState(), int(Playing));
    rig->stop();
    rig->play();
    QCOMPARE(rig.shown(100), 0);
    rig->pause();
    QCOMPARE(rig.timeMs(), qint64(4000));
    rig->play();
    QCOMPARE(rig.timeMs(), qint64(4000));
    rig->stop();
    QCOMPARE(rig.timeMs(), qint64(0));
  }

  void buttonsStepInEveryState() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(rig.shown(), 0);
    rig->stop();
    rig->next();
    QTRY_COMPARE(rig.shown(), 1);
    QCOMPARE(rig->getPlayState(), int(Stopped));
    rig->pause();
    rig->next();
    QTRY_COMPARE(rig.shown(), 2);
    QCOMPARE(rig->getPlayState(), int(Paused));
  }

  void stateAskedForWhileOpening() {
    Shelf shelf;
    shelf.waits = true;
    PagedRig rig(shelf);
    rig->pause();
    QCOMPARE(rig->getPlayState(), int(Opening));
    shelf.gate.release(10);
    QTRY_COMPARE(rig->getPlayState(), int(Paused));
    QCOMPARE(rig.shown(), 0);
  }

  void placeOnTheSeekScale() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(rig.shown(), 0);
    QCOMPARE(rig.position(), qint64(0));
    for (const auto& [position, item, shownPosition] : {std::tuple{100, 4, 100},
                                                        {0, 0, 0},
                                                        {49, 2, 50},
                                                        {1000, 4, 100},
                                                        {-7, 0, 0},
                                                        {12, 0, 0},
                                                        {13, 1, 25}}) {
      rig->setPosition(position);
      QCOMPARE(rig->getItemIndex(), item);
      QCOMPARE(rig.position(), qint64(shownPosition));
    }
  }

  void oneItemStays() {
    Shelf shelf;
    shelf.count = 1;
    PagedRig rig(shelf);
    QTRY_COMPARE(rig.shown(), 0);
    rig->next();
    rig->prev();
    rig->setPosition(100);
    QCOMPARE(rig.shown(1000), 0);
    QCOMPARE(rig.shown(), 0);
    QCOMPARE(rig->getItemIndex(), 0);
    QCOMPARE(rig.position(), qint64(0));
    QCOMPARE(shelf.loaded(), (QVector<int>{0}));
  }

  void closeWhileLoading() {
    Shelf shelf;
    shelf.waits = true;
    PagedRig rig(shelf);
    rig.close();
    QCOMPARE(rig->getPlayState(), int(NothingSpecial));
    rig.drop();
    shelf.gate.release(1);
    QVERIFY(waitForClosedSources(10'000));
    QVERIFY(shelf.loaded().size() <= 1);
    QCOMPARE(shelf.alive.load(), 0);
  }

  void closeWhileWaiting() {
    Shelf shelf;
    PagedRig rig(shelf);
    QTRY_COMPARE(shelf.loaded().size(), 3);
    rig.close();
    rig.drop();
    QVERIFY(waitForClosedSources(10'000));
    QCOMPARE(shelf.alive.load(), 0);
  }
};

QTEST_GUILESS_MAIN(PagedSourceTest)
#include "tst_paged_source.moc"
