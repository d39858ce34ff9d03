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
      QCOMPARE(pacer.wait(7'000'000 * kMs + frame * 40 * kMs), StampPacer::Result::Due);
    QVERIFY2(timer.elapsed() >= 199, QByteArray::number(timer.elapsed()));
  }

  void lateDataMoveWhatFollows() {
    StampPacer pacer;
    QCOMPARE(pacer.wait(0), StampPacer::Result::Due);
    QTest::qSleep(400);
    QCOMPARE(pacer.wait(40 * kMs), StampPacer::Result::Anew);
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(pacer.wait(140 * kMs), StampPacer::Result::Due);
    QVERIFY(timer.elapsed() >= 99);
  }

  void jumpsOfTheStampsAreNotWaitedFor() {
    StampPacer pacer;
    QCOMPARE(pacer.wait(0), StampPacer::Result::Due);
    QCOMPARE(pacer.wait(3'600'000 * kMs), StampPacer::Result::Anew);
    QCOMPARE(pacer.wait(0), StampPacer::Result::Anew);
  }

  void closeEndsAWait() {
    StampPacer pacer;
    QCOMPARE(pacer.wait(0), StampPacer::Result::Due);
    std::thread closer([&pacer] { pacer.close(); });
    QCOMPARE(pacer.wait(9'000 * kMs), StampPacer::Result::Closed);
    closer.join();
    QCOMPARE(pacer.wait(9'000 * kMs), StampPacer::Result::Closed);
  }
};

QTEST_APPLESS_MAIN(StampPacerTest)
#include "tst_stamp_pacer.moc"
