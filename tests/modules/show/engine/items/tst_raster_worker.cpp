// The newest request of a key wins, results come at the frame boundary, and nothing comes after a withdrawal.
#include <QtTest>
#include <atomic>
#include <condition_variable>
#include <mutex>

#include "engine/items/RasterWorker.h"

using namespace korvia;

namespace {

LayerRef someLayer() {
  QImage image(2, 2, QImage::Format_RGB32);
  image.fill(Qt::white);
  return Layer::make(image, {0, 0}, {8, 8});
}

/// A drawing that waits until the test lets it go on.
class Gate {
 public:
  RasterWorker::Draw draw(LayerRef layer) {
    return [this, layer] {
      std::unique_lock lock(mutex_);
      reached_ = true;
      changed_.notify_all();
      changed_.wait(lock, [this] { return open_; });
      return layer;
    };
  }
  bool waitReached() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [this] { return reached_; });
  }
  void open() {
    std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool reached_ = false;  // guarded by mutex_
  bool open_ = false;     // guarded by mutex_
};

RasterWorker::Draw gives(LayerRef layer) {
  return [layer] { return layer; };
}

}  // namespace

class RasterWorkerTest : public QObject {
  Q_OBJECT

 private:
  /// Collects until something of that many keys has come.
  static std::vector<RasterWorker::Drawn> collected(RasterWorker& worker, std::size_t count) {
    std::vector<RasterWorker::Drawn> all;
    const bool there = QTest::qWaitFor(
        [&] {
          std::vector<RasterWorker::Drawn> drawn;
          worker.collect(drawn);
          all.insert(all.end(), drawn.begin(), drawn.end());
          return all.size() >= count;
        },
        10000);
    return there ? all : std::vector<RasterWorker::Drawn>();
  }

 private slots:
  void drawsOnAThreadOfItsOwn() {
    RasterWorker worker;
    std::atomic<bool> onThisThread{true};
    const auto self = std::this_thread::get_id();
    const LayerRef layer = someLayer();
    worker.request("a", [&, layer] {
      onThisThread = std::this_thread::get_id() == self;
      return layer;
    });
    const auto drawn = collected(worker, 1);
    QCOMPARE(drawn.size(), std::size_t(1));
    QCOMPARE(drawn[0].key, QString("a"));
    QVERIFY(drawn[0].layer == layer);
    QVERIFY(!onThisThread);
  }

  void theNewestRequestWins() {
    RasterWorker worker;
    Gate gate;
    const LayerRef first = someLayer(), third = someLayer(), other = someLayer();
    worker.request("busy", gate.draw(first));
    QVERIFY(gate.waitReached());
    std::atomic<int> replaced{0};
    worker.request("a", [&] { return ++replaced, someLayer(); });
    worker.request("b", gives(other));
    worker.request("a", gives(third));
    gate.open();
    const auto drawn = collected(worker, 3);
    QCOMPARE(drawn.size(), std::size_t(3));
    QCOMPARE(drawn[0].key, QString("busy"));
    // The replaced request keeps its place before "b".
    QCOMPARE(drawn[1].key, QString("a"));
    QVERIFY(drawn[1].layer == third);
    QVERIFY(drawn[2].layer == other);
    QCOMPARE(replaced.load(), 0);
  }

  void aDrawingUnderWayIsDeliveredBeforeTheNewerOne() {
    RasterWorker worker;
    Gate gate;
    const LayerRef older = someLayer(), newer = someLayer();
    worker.request("a", gate.draw(older));
    QVERIFY(gate.waitReached());
    Gate second;
    worker.request("a", second.draw(newer));
    gate.open();
    QVERIFY(second.waitReached());
    const auto first = collected(worker, 1);
    QCOMPARE(first.size(), std::size_t(1));
    QVERIFY(first[0].layer == older);
    second.open();
    const auto then = collected(worker, 1);
    QCOMPARE(then.size(), std::size_t(1));
    QVERIFY(then[0].layer == newer);
  }

  void onlyTheNewestResultIsCollected() {
    RasterWorker worker;
    const LayerRef newest = someLayer();
    worker.request("a", gives(someLayer()));
    Gate gate;
    worker.request("mark", gate.draw({}));
    QVERIFY(gate.waitReached());
    worker.request("a", gives(newest));
    worker.request("end", gives({}));
    gate.open();
    // Whatever comes when: the last of "a" is the newest, and no key comes twice in one collection.
    std::vector<RasterWorker::Drawn> drawn;
    LayerRef last;
    bool ended = false;
    while (!ended) {
      worker.collect(drawn);
      QStringList keys;
      for (const RasterWorker::Drawn& one : drawn) {
        QVERIFY(!keys.contains(one.key));
        keys << one.key;
        if (one.key == "a")
          last = one.layer;
        ended = ended || one.key == "end";
      }
    }
    QVERIFY(last == newest);
  }

  void nothingComesAfterAWithdrawal() {
    RasterWorker worker;
    Gate gate;
    worker.request("drawing", gate.draw(someLayer()));
    QVERIFY(gate.waitReached());
    worker.request("waiting", gives(someLayer()));
    worker.withdraw("drawing");
    worker.withdraw("waiting");
    worker.request("end", gives(someLayer()));
    gate.open();
    for (bool ended = false; !ended;) {
      std::vector<RasterWorker::Drawn> drawn;
      worker.collect(drawn);
      for (const RasterWorker::Drawn& one : drawn) {
        if (one.key == "end")
          ended = true;
        else
          QVERIFY(!one.layer);
      }
    }
  }

  void aRequestAfterAWithdrawalIsDrawn() {
    RasterWorker worker;
    Gate gate;
    const LayerRef next = someLayer();
    worker.request("a", gate.draw(someLayer()));
    QVERIFY(gate.waitReached());
    worker.withdraw("a");
    worker.request("a", gives(next));
    gate.open();
    LayerRef last;
    QVERIFY(QTest::qWaitFor(
        [&] {
          std::vector<RasterWorker::Drawn> drawn;
          worker.collect(drawn);
          for (const RasterWorker::Drawn& one : drawn)
            last = one.layer;
          return last != nullptr;
        },
        10000));
    QVERIFY(last == next);
  }

  void whatIsLeftToTheCollectionDiesOnTheWorkersThread() {
    RasterWorker worker;
    std::atomic<bool> gone{false};
    std::atomic<bool> onThisThread{true};
    const auto self = std::this_thread::get_id();
    LayerRef shown(new Layer, [&](const Layer* layer) {
      delete layer;
      onThisThread = std::this_thread::get_id() == self;
      gone = true;
    });
    std::vector<RasterWorker::Drawn> drawn;
    drawn.push_back({"a", std::move(shown)});
    worker.collect(drawn);
    QVERIFY(drawn.empty());
    QTRY_VERIFY(gone);
    QVERIFY(!onThisThread);
  }

  void theEndWaitsForTheDrawingUnderWay() {
    std::atomic<bool> drawn{false};
    Gate gate;
    std::thread opener;
    {
      RasterWorker worker;
      worker.request("a", [&, draw = gate.draw({})] {
        LayerRef layer = draw();
        drawn = true;
        return layer;
      });
      QVERIFY(gate.waitReached());
      opener = std::thread([&] { gate.open(); });
    }
    QVERIFY(drawn);
    opener.join();
  }
};

QTEST_GUILESS_MAIN(RasterWorkerTest)
#include "tst_raster_worker.moc"
