// Coded data pass shortly before they are shown.
#include <QtTest>
#include <thread>

#include "engine/source/live/CodedHold.h"
#include "engine/source/live/LiveConnection.h"

using namespace korvia;

class CodedHoldTest : public QObject {
  Q_OBJECT

  static constexpr std::int64_t kMs = 1'000'000;
  static constexpr std::int64_t kSecond = 1000 * kMs;
  static constexpr std::int64_t kLatency = 1300 * kMs;
  static constexpr std::int64_t kHold = 1000 * kMs;

  static CodedHold::Stamps at(std::int64_t ns) { return {ns, ns}; }

  /// A hold that began so long ago that it has its full length.
  static void begin(CodedHold& hold) {
    hold.arrive(at(0), LiveConnection::nowNs());
    QVERIFY(hold.waitUntilDue(at(0), std::nullopt));
    QCOMPARE(hold.heldNs(0), std::int64_t(0));
  }
  /// Lets data pass that came so long after the begin, in a past that makes no difference, and are shown
  /// `shownInNs` after they came. Returns how long they were held back.
  static std::int64_t heldFor(CodedHold& hold, std::int64_t sinceBeginNs, std::int64_t shownInNs) {
    const std::int64_t arrivalNs = LiveConnection::nowNs() + sinceBeginNs;
    hold.arrive(at(sinceBeginNs), arrivalNs);
    // The wait is of no interest here.
    std::thread waiting([&] { hold.waitUntilDue(at(sinceBeginNs), arrivalNs + shownInNs); });
    hold.close();
    waiting.join();
    return hold.heldNs(sinceBeginNs);
  }

 private slots:
  void shortLatenciesHoldNothing() {
    QCOMPARE(CodedHold::holdFor(40 * kMs), std::int64_t(0));
    QCOMPARE(CodedHold::holdFor(300 * kMs), std::int64_t(0));
    QCOMPARE(CodedHold::holdFor(kLatency), kHold);
  }

  void dataPassBeforeTheyAreShown_data() {
    QTest::addColumn<qint64>("sinceBeginNs");
    QTest::addColumn<qint64>("shownInNs");
    QTest::addColumn<qint64>("heldNs");
    QTest::newRow("in time") << qint64(60 * kSecond) << qint64(kLatency) << qint64(kHold);
    QTest::newRow("delayed") << qint64(60 * kSecond) << qint64(900 * kMs) << qint64(600 * kMs);
    QTest::newRow("nearly late") << qint64(60 * kSecond) << qint64(200 * kMs) << qint64(0);
    QTest::newRow("late") << qint64(60 * kSecond) << qint64(-900 * kMs) << qint64(0);
    QTest::newRow("stamps jumped forth") << qint64(60 * kSecond) << qint64(3600 * kSecond) << qint64(kHold);
    QTest::newRow("stamps jumped back") << qint64(60 * kSecond) << qint64(-3600 * kSecond) << qint64(0);
  }
  void dataPassBeforeTheyAreShown() {
    QFETCH(qint64, sinceBeginNs);
    QFETCH(qint64, shownInNs);
    QFETCH(qint64, heldNs);
    CodedHold hold(kLatency);
    begin(hold);
    QCOMPARE(heldFor(hold, sinceBeginNs, shownInNs), std::int64_t(heldNs));
  }

  void theHoldGrowsFromNothing() {
    CodedHold hold(kLatency);
    begin(hold);
    // The test's own time adds to what has passed since the begin.
    const std::int64_t heldNs = heldFor(hold, 2 * kSecond, kLatency);
    QVERIFY2(heldNs >= 500 * kMs && heldNs < kHold, QByteArray::number(qint64(heldNs)));
  }

  void nothingIsHeldBeforeTheFirstPictureIsDecoded() {
    CodedHold hold(kLatency);
    const std::int64_t nowNs = LiveConnection::nowNs();
    hold.arrive(at(0), nowNs);
    QVERIFY(hold.waitUntilDue(at(0), nowNs + 3600 * kSecond));
    QCOMPARE(hold.heldNs(0), std::int64_t(0));
  }

  void aPictureOfManyPacketsIsOne() {
    CodedHold hold(kLatency);
    begin(hold);
    const std::int64_t nowNs = LiveConnection::nowNs();
    for (int packet = 0; packet < 2000; ++packet) {
      hold.arrive(at(40 * kMs), nowNs);
      QVERIFY(hold.waitUntilDue(at(40 * kMs), nowNs));
    }
    hold.arrive(at(80 * kMs), nowNs + 60 * kSecond);
    std::thread waiting([&] { hold.waitUntilDue(at(80 * kMs), nowNs + 61 * kSecond); });
    hold.close();
    waiting.join();
    QCOMPARE(hold.heldNs(80 * kMs), 700 * kMs);
    QCOMPARE(hold.heldNs(40 * kMs), std::int64_t(0));
    QCOMPARE(hold.heldNs(kSecond),
             std::int64_t(0));  // a stamp that the decoder has made up: as the one before
  }

  void whatWasDroppedOnTheWayIsNotWaitedFor() {
    CodedHold hold(kLatency);
    begin(hold);
    const std::int64_t nowNs = LiveConnection::nowNs();
    for (int second = 1; second < 6; ++second)
      hold.arrive(at(second * kSecond), nowNs + second);
    QVERIFY(hold.waitUntilDue(at(5 * kSecond), nowNs));
    QVERIFY(hold.waitUntilDue(at(9 * kSecond), nowNs + 3600 * kSecond));  // has not come this way
  }

  void dataWaitUntilTheyAreDue() {
    CodedHold hold(kLatency);
    begin(hold);
    const std::int64_t arrivalNs = LiveConnection::nowNs() + 400 * kMs;
    hold.arrive(at(kSecond), arrivalNs);
    QVERIFY(hold.waitUntilDue(at(kSecond), arrivalNs + kLatency));
    QVERIFY(LiveConnection::nowNs() >= arrivalNs + 100 * kMs);
  }
};

QTEST_APPLESS_MAIN(CodedHoldTest)
#include "tst_coded_hold.moc"
