// The end of a show does not wait for a source that was given up.
#include <QElapsedTimer>
#include <QtTest>
#include <condition_variable>
#include <mutex>

#include "engine/source/SourceThreads.h"

using namespace korvia;

class SourceThreadsTest : public QObject {
  Q_OBJECT

 private slots:
  void threadsThatEndAreWaitedFor() {
    const quint64 thread = startSourceThread("short", [] {});
    markSourceThreadClosing(thread);
    QVERIFY(waitForClosedSources(10'000));
  }

  void anAbandonedThreadHoldsUpNoLaterEnd() {
    std::mutex mutex;
    std::condition_variable changed;
    bool mayEnd = false;
    const quint64 thread = startSourceThread("hangs", [&] {
      std::unique_lock lock(mutex);
      changed.wait(lock, [&] { return mayEnd; });
    });
    markSourceThreadClosing(thread);
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!waitForClosedSources(300));
    QVERIFY(clock.elapsed() >= 300);
    QTest::ignoreMessage(QtWarningMsg, "source does not close, abandoned : hangs");
    QVERIFY(!waitForClosedSources(10'000));
    QVERIFY2(clock.elapsed() < 9'000, "given up after 5 s, it is not waited for any longer");
    clock.restart();
    QVERIFY(!waitForClosedSources(10'000));
    QVERIFY(clock.elapsed() < 1000);
    {
      std::lock_guard lock(mutex);
      mayEnd = true;
      changed.notify_all();
    }
    QTRY_VERIFY(waitForClosedSources(0));
  }
};

QTEST_GUILESS_MAIN(SourceThreadsTest)
#include "tst_source_threads.moc"
