#include <QtTest>

#include "PacketRig.h"
#include "engine/output/PacketQueue.h"

using namespace korvia;
using namespace korvia::test;

class TestPacketQueue : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void keepsOrderAndSums() {
    PacketQueue queue(1000, 10 * kFrameNs);
    QVERIFY(queue.isEmpty());
    QCOMPARE(queue.durationNs(), qint64(0));
    QVERIFY(queue.push(packetOf(3, true, 300)));
    QVERIFY(queue.push(packetOf(4, false, 100)));
    QCOMPARE(queue.bytes(), qint64(400));
    QCOMPARE(queue.durationNs(), 2 * kFrameNs);
    QCOMPARE(queue.pop().ptsNs, 3 * kFrameNs);
    QCOMPARE(queue.bytes(), qint64(100));
    QCOMPARE(queue.pop().ptsNs, 4 * kFrameNs);
    QVERIFY(queue.isEmpty());
  }

  void fullOfBytesUntilAKeyFrame() {
    PacketQueue queue(250, 100 * kFrameNs);
    QVERIFY(queue.push(packetOf(0, true)));
    QVERIFY(queue.push(packetOf(1, false)));
    QVERIFY(!queue.push(packetOf(2, false)));
    queue.pop();
    queue.pop();
    QVERIFY(!queue.push(packetOf(3, false)));  // there is room, but frame 2 is missing
    QVERIFY(queue.push(packetOf(4, true)));
    QVERIFY(queue.push(packetOf(5, false)));
  }

  void fullOfTimeUntilAKeyFrame() {
    PacketQueue queue(1'000'000, 3 * kFrameNs);
    for (int i = 0; i < 3; ++i)
      QVERIFY(queue.push(packetOf(i, i == 0)));
    QVERIFY(!queue.push(packetOf(3, false)));
    QVERIFY(!queue.push(packetOf(4, true)));  // a key frame needs room too
    queue.pop();
    queue.pop();
    queue.pop();
    QVERIFY(!queue.push(packetOf(5, false)));
    QVERIFY(queue.push(packetOf(6, true)));
  }

  void anEmptyQueueKeepsItsGap() {
    PacketQueue queue(150, 100 * kFrameNs);
    QVERIFY(queue.push(packetOf(0, true)));
    QVERIFY(!queue.push(packetOf(1, false)));
    queue.clear();
    QCOMPARE(queue.bytes(), qint64(0));
    QVERIFY(!queue.push(packetOf(2, false)));
    QVERIFY(queue.push(packetOf(3, true)));
  }
};

QTEST_APPLESS_MAIN(TestPacketQueue)
#include "tst_packet_queue.moc"
