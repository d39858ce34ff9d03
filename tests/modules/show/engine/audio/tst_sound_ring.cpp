// The queue of sound between two threads: order, bounds, and both threads at once.
#include <QtTest>
#include <thread>

#include "engine/audio/SoundRing.h"

using namespace korvia;

namespace {

/// Numbers from `first` on at the left, their negatives at the right.
struct Piece {
  Piece(int first, int count) : left(count), right(count) {
    for (int i = 0; i < count; ++i) {
      left[i] = static_cast<float>(first + i);
      right[i] = -left[i];
    }
  }
  StereoSpan span() { return {left.data(), right.data(), static_cast<int>(left.size())}; }

  std::vector<float> left;
  std::vector<float> right;
};

}  // namespace

class SoundRingTest : public QObject {
  Q_OBJECT

 private slots:
  void whatComesOutIsWhatWentIn() {
    SoundRing ring(64);
    std::vector<float> pairs(128);
    int in = 0;
    int out = 0;
    for (int count = 1; count <= 60; ++count) {
      QVERIFY(ring.push(Piece(in, count).span()));
      in += count;
      while (const int got = ring.pop(pairs.data(), 17))
        for (int i = 0; i < got; ++i, ++out) {
          QCOMPARE(pairs[2 * i], static_cast<float>(out));
          QCOMPARE(pairs[2 * i + 1], static_cast<float>(-out));
        }
    }
    QCOMPARE(out, in);
    QCOMPARE(ring.pushed(), static_cast<std::size_t>(in));
    QCOMPARE(ring.popped(), static_cast<std::size_t>(in));
  }

  void whatDoesNotFitIsRefusedWhole() {
    SoundRing ring(64);
    QVERIFY(ring.push(Piece(0, 40).span()));
    QVERIFY(!ring.push(Piece(40, 25).span()));
    QVERIFY(ring.push(Piece(40, 24).span()));
    QVERIFY(!ring.push(Piece(64, 1).span()));
    std::vector<float> pairs(128);
    QCOMPARE(ring.pop(pairs.data(), 64), 64);
    QCOMPARE(pairs[126], 63.0F);
    QCOMPARE(ring.pop(pairs.data(), 64), 0);
  }

  void twoThreadsKeepTheOrder() {
    constexpr int kPieces = 5000;
    SoundRing ring(256);
    std::thread pusher([&ring] {
      for (int n = 0; n < kPieces; ++n)
        while (!ring.push(Piece(n * 13 % 1000, 13).span()))
          std::this_thread::yield();
    });
    std::vector<float> pairs(26);
    bool inOrder = true;
    for (int at = 0; at < 13 * kPieces;) {
      const int got = ring.pop(pairs.data(), 13);
      if (got == 0)
        std::this_thread::yield();
      for (int i = 0; i < got; ++i, ++at)
        inOrder = inOrder && pairs[2 * i] == static_cast<float>(at / 13 * 13 % 1000 + at % 13);
    }
    pusher.join();
    QVERIFY(inOrder);
  }
};

QTEST_GUILESS_MAIN(SoundRingTest)
#include "tst_sound_ring.moc"
