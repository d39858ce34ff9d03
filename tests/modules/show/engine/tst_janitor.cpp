// The janitor destroys what it gets, in order, on its own thread, and everything before its own end.
#include <QtTest>
#include <atomic>
#include <future>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "engine/Janitor.h"

using namespace korvia;

namespace {

/// Calls a function when it is destroyed, unless it was moved from.
class AtItsEnd {
 public:
  explicit AtItsEnd(std::function<void()> end) : end_(std::move(end)) {}
  AtItsEnd(AtItsEnd&& other) noexcept : end_(std::exchange(other.end_, nullptr)) {}
  AtItsEnd& operator=(AtItsEnd&&) = delete;
  ~AtItsEnd() {
    if (end_)
      end_();
  }

 private:
  std::function<void()> end_;
};

}  // namespace

class JanitorTest : public QObject {
  Q_OBJECT

 private slots:
  void destroysOnAThreadOfItsOwn() {
    Janitor janitor;
    std::promise<std::thread::id> destroyedOn;
    janitor.dispose(AtItsEnd([&] { destroyedOn.set_value(std::this_thread::get_id()); }));
    std::future<std::thread::id> thread = destroyedOn.get_future();
    QVERIFY(thread.wait_for(std::chrono::seconds(10)) == std::future_status::ready);
    QVERIFY(thread.get() != std::this_thread::get_id());
  }

  // The janitor may be done with an object before dispose() returns.
  void theThreadThatGivesDestroysNothing() {
    const std::thread::id giver = std::this_thread::get_id();
    std::atomic<int> ended{0};
    std::atomic<int> endedOnGiver{0};
    constexpr int kThings = 100'000;
    {
      Janitor janitor;
      for (int i = 0; i < kThings; ++i) {
        janitor.dispose(AtItsEnd([&] {
          ++ended;
          endedOnGiver += std::this_thread::get_id() == giver ? 1 : 0;
        }));
      }
    }
    QCOMPARE(ended.load(), kThings);
    QCOMPARE(endedOnGiver.load(), 0);
  }

  void nobodyWaitsForAnEndThatHangs() {
    std::promise<void> gate;
    const std::shared_future<void> open = gate.get_future().share();
    std::atomic<int> ended{0};
    Janitor janitor;
    for (int i = 0; i < 100; ++i) {
      janitor.dispose(AtItsEnd([&ended, open] {
        open.wait();
        ++ended;
      }));
    }
    // All hundred are handed over while the first one still hangs.
    const int endedBehindTheGate = ended;
    gate.set_value();
    QCOMPARE(endedBehindTheGate, 0);
    QTRY_COMPARE(ended.load(), 100);
  }

  void destroysInOrderAndAllBeforeItsEnd() {
    std::vector<int> ended;
    {
      Janitor janitor;
      for (int i = 0; i < 100; ++i)
        janitor.dispose(AtItsEnd([&ended, i] { ended.push_back(i); }));
    }
    QCOMPARE(ended.size(), std::size_t(100));
    for (int i = 0; i < 100; ++i)
      QCOMPARE(ended[static_cast<std::size_t>(i)], i);
  }

  void whatIsDisposedOfAtAnEndIsDestroyedToo() {
    std::atomic<bool> ended{false};
    {
      Janitor janitor;
      janitor.dispose(AtItsEnd([&] { janitor.dispose(AtItsEnd([&] { ended = true; })); }));
    }
    QVERIFY(ended);
  }

  void aSharedObjectLivesWhileSomebodyElseHoldsIt() {
    auto held = std::make_shared<int>(7);
    const std::weak_ptr<int> watched = held;
    {
      Janitor janitor;
      janitor.dispose(std::shared_ptr<int>(held));
    }
    QCOMPARE(watched.use_count(), 1L);
    QCOMPARE(*held, 7);
    held.reset();
    QVERIFY(watched.expired());
  }
};

QTEST_GUILESS_MAIN(JanitorTest)
#include "tst_janitor.moc"
