// Data that come too fast wait for their time, and data that come late move all that follows.
#include <QElapsedTimer>
#include <QtTest>
#include <thread>

#include "engine/source/live/StampPacer.h"

using namespace korvia;

class StampPacerTest : public QObject {
  Q_OBJECT

 private:
  static constexpr std::int64_t kMs = 1'000'000;

 private slots:
  void dataWaitUntilTheyAreDue() {
    StampPacer pacer;
    QElapsedTimer timer;
    timer.start();
    for (int frame = 0; frame <= 5; ++frame)
      QCOMPARE(pacer.wait(7'000'000 * kMs + frame * 40 * kMs).result, StampPacer::Result::Due);
    QVERIFY2(timer.elapsed() >= 199, QByteArray::number(timer.elapsed()));
  }

  void theHoldGrowsAndIsTold() {
    StampPacer pacer(100 * kMs);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(pacer.wait(0).heldNs, std::int64_t(0));
    QCOMPARE(pacer.wait(200 * kMs).heldNs, 50 * kMs);
    QVERIFY2(timer.elapsed() >= 249, QByteArray::number(timer.elapsed()));
    QCOMPARE(pacer.wait(600 * kMs).heldNs, 100 * kMs);
    QVERIFY2(timer.elapsed() >= 699, QByteArray::number(timer.elapsed()));
  }

  void lateDataMoveWhatFollows() {
    StampPacer pacer;
    QCOMPARE(pacer.wait(0).result, StampPacer::Result::Due);
    QTest::qSleep(400);
    QCOMPARE(pacer.wait(40 * kMs).result, StampPacer::Result::Anew);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(pacer.wait(140 * kMs).result, StampPacer::Result::Due);
    QVERIFY(timer.elapsed() >= 99);
  }

  void jumpsOfTheStampsAreNotWaitedFor() {
    StampPacer pacer;
    QCOMPARE(pacer.wait(0).result, StampPacer::Result::Due);
    QCOMPARE(pacer.wait(3'600'000 * kMs).result, StampPacer::Result::Anew);
    QCOMPARE(pacer.wait(0).result, StampPacer::Result::Anew);
  }

  void closeEndsAWait() {
    StampPacer pacer;
    QCOMPARE(pacer.wait(0).result, StampPacer::Result::Due);
    std::thread closer([&pacer] { pacer.close(); });
    QCOMPARE(pacer.wait(9'000 * kMs).result, StampPacer::Result::Closed);
    closer.join();
    QCOMPARE(pacer.wait(9'000 * kMs).result, StampPacer::Result::Closed);
  }
};

QTEST_APPLESS_MAIN(StampPacerTest)
#include "tst_stamp_pacer.moc"
