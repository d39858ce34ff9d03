// How many films may refill at a time.
#include <QtTest>

#include "engine/source/RefillTurns.h"

using korvia::RefillTurns;

class RefillTurnsTest : public QObject {
  Q_OBJECT

 private slots:
  void onlySoManyUnlessItIsUrgent() {
    RefillTurns turns(2);
    QVERIFY(turns.take(RefillTurns::Need::CanWait));
    QVERIFY(turns.take(RefillTurns::Need::CanWait));
    QVERIFY(!turns.take(RefillTurns::Need::CanWait));
    QVERIFY(turns.take(RefillTurns::Need::Urgent));
    QCOMPARE(turns.taken(), 3);
    turns.giveBack();
    QVERIFY(!turns.take(RefillTurns::Need::CanWait));
    turns.giveBack();
    QVERIFY(turns.take(RefillTurns::Need::CanWait));
  }

  void everyMachineHasATurn() {
    RefillTurns turns;
    QVERIFY(turns.take(RefillTurns::Need::CanWait));
  }
};

QTEST_GUILESS_MAIN(RefillTurnsTest)
#include "tst_refill_turns.moc"
