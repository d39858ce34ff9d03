// Frames come back to their pool, outlive it, and end external memory once.
#include <QtTest>
#include <thread>

#include "engine/frame/FramePool.h"

using namespace korvia;

class FramePoolTest : public QObject {
  Q_OBJECT

 private slots:
  void reusesAFrameThatWasDropped() {
    FramePool pool({64, 36});
    const Frame* first = nullptr;
    {
      FrameRef frame = pool.acquire().publish();
      first = frame.get();
    }
    FrameRef again = pool.acquire().publish();
    QCOMPARE(again.get(), first);
    FrameRef other = pool.acquire().publish();
    QVERIFY(other.get() != first);
  }

  void frameOutlivesItsPool() {
    FrameRef frame;
    {
      FramePool pool({16, 16});
      MutableFrame black = pool.acquire();
      black->fillBlack();
      frame = std::move(black).publish();
    }
    QCOMPARE(int(frame->plane(Frame::Y)[0]), 16);
    QCOMPARE(int(frame->plane(Frame::U)[0]), 128);
  }

  void blackIsMadeOnce() {
    FramePool pool({16, 16});
    QVERIFY(pool.black() == pool.black());
  }

  void oddSizesRoundChromaUp() {
    FramePool pool({33, 17});
    MutableFrame frame = pool.acquire();
    QCOMPARE(frame->planeWidth(Frame::U), 17);
    QCOMPARE(frame->planeHeight(Frame::V), 9);
    QCOMPARE(frame->stride(Frame::Y) % 64, 0);
  }

  void externalMemoryIsReleasedOnce() {
    int released = 0;
    const std::uint8_t memory[16] = {};
    Frame::External external;
    for (int i = 0; i < 3; ++i) {
      external.data[i] = memory;
      external.stride[i] = 4;
    }
    external.opaque = &released;
    external.release = [](void* opaque) { ++*static_cast<int*>(opaque); };
    {
      FrameRef frame = FrameRef::adopt(new Frame({4, 4}, external));
      FrameRef copy = frame;
      frame.reset();
      QCOMPARE(released, 0);
    }
    QCOMPARE(released, 1);
  }

  void threadsMayDropTheLastHold() {
    FramePool pool({64, 36});
    for (int round = 0; round < 200; ++round) {
      FrameRef frame = pool.acquire().publish();
      std::thread a([copy = frame]() mutable { copy.reset(); });
      std::thread b([copy = frame]() mutable { copy.reset(); });
      frame.reset();
      a.join();
      b.join();
    }
  }
};

QTEST_GUILESS_MAIN(FramePoolTest)
#include "tst_frame_pool.moc"
