// When the machine counts as short of computing time, and when no more.
#include <QtTest>

#include "engine/LoadWatch.h"

using korvia::LoadWatch;

namespace {

/// A process on four cores, second by second.
class Process {
 public:
  Process() { second(0, 0); }
  void second(double cores, int lateTicks = 0, int heldFrames = 0) {
    counts_.cpuSeconds += cores;
    counts_.lateTicks += lateTicks;
    counts_.heldFrames += heldFrames;
    time_ += std::chrono::seconds(1);
    watch_.note(time_, counts_);
  }
  void seconds(int count, double cores) {
    for (int i = 0; i < count; ++i)
      second(cores);
  }
  LoadWatch& watch() { return watch_; }
  LoadWatch::Time time() const { return time_; }

 private:
  LoadWatch watch_{4};
  LoadWatch::Time time_{std::chrono::hours(1)};
  LoadWatch::Counts counts_{100, 7, 50};
};

}  // namespace

class LoadWatchTest : public QObject {
  Q_OBJECT

 private slots:
  void itIsDueOnceASecond() {
    Process process;
    QVERIFY(!process.watch().isDue(process.time() + std::chrono::milliseconds(999)));
    QVERIFY(process.watch().isDue(process.time() + std::chrono::seconds(1)));
  }

  void twoBusySecondsMakeItShort() {
    Process process;
    process.second(3.7);
    QCOMPARE(process.watch().load(), 3.7 / 4);
    QVERIFY(!process.watch().isShort());
    process.second(3.7);
    QVERIFY(process.watch().isShort());
  }

  void aPeakDoesNot() {
    Process process;
    process.second(4);
    process.second(3.5);
    process.second(4);
    QVERIFY(!process.watch().isShort());
  }

  void whatComesLateDoesToo_data() {
    QTest::addColumn<int>("ticks");
    QTest::addColumn<int>("frames");
    QTest::newRow("ticks") << 1 << 0;
    QTest::newRow("pictures of films") << 0 << 1;
  }
  void whatComesLateDoesToo() {
    QFETCH(int, ticks);
    QFETCH(int, frames);
    Process process;
    process.second(1, 2 * ticks, 2 * frames);
    process.second(1, 2 * ticks, 2 * frames);
    QVERIFY(!process.watch().isShort());
    process.second(1, 3 * ticks, 3 * frames);
    process.second(1, 3 * ticks, 3 * frames);
    QVERIFY(process.watch().isShort());
    process.seconds(9, 1);
    process.second(1, ticks, frames);
    process.seconds(9, 1);
    QVERIFY(process.watch().isShort());
    process.second(1);
    QVERIFY(!process.watch().isShort());
  }

  void aFilmThatIsClosedIsNoProgress() {
    Process process;
    process.second(1, 0, -40);
    process.second(1, 3, -40);
    process.second(1, 3, -40);
    QVERIFY(process.watch().isShort());
  }

  void tenCalmSecondsInARowEndIt() {
    Process process;
    process.seconds(2, 4);
    process.seconds(30, 3);
    QVERIFY(process.watch().isShort());
    process.seconds(9, 2);
    process.second(2, 1);
    process.seconds(9, 2);
    QVERIFY(process.watch().isShort());
    process.second(2);
    QVERIFY(!process.watch().isShort());
  }

  void aNewShowBeginsAnew() {
    Process process;
    process.seconds(2, 4);
    process.watch().restart();
    QVERIFY(!process.watch().isShort());
    // The first note after it only sets the marks.
    process.second(4);
    process.second(4);
    QVERIFY(!process.watch().isShort());
    process.second(4);
    QVERIFY(process.watch().isShort());
  }
};

QTEST_APPLESS_MAIN(LoadWatchTest)
#include "tst_load_watch.moc"
