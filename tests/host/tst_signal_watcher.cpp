#include <QSignalSpy>
#include <QtTest>
#include <csignal>

#include "SignalWatcher.h"

class TestSignalWatcher : public QObject {
  Q_OBJECT

 private slots:
  void turnsSignalsIntoRequests_data();
  void turnsSignalsIntoRequests();
  void survivesManySignals();
  void tellsAHangUpApart();
  void leavesAnIgnoredHangUpAlone();
  void ignoresSignalsOnceTheProgramEnds();
};

void TestSignalWatcher::turnsSignalsIntoRequests_data() {
  QTest::addColumn<int>("number");
  QTest::newRow("SIGINT") << SIGINT;
  QTest::newRow("SIGTERM") << SIGTERM;
}

void TestSignalWatcher::turnsSignalsIntoRequests() {
  QFETCH(int, number);
  korvia::SignalWatcher watcher;
  QSignalSpy requests(&watcher, &korvia::SignalWatcher::closeRequested);
  std::raise(number);
  QTRY_COMPARE(requests.count(), 1);
  std::raise(number);
  QTRY_COMPARE(requests.count(), 2);
}

void TestSignalWatcher::survivesManySignals() {
  korvia::SignalWatcher watcher;
  QSignalSpy requests(&watcher, &korvia::SignalWatcher::closeRequested);
  // More than a pipe holds.
  for (int i = 0; i < 100000; ++i)
    std::raise(SIGTERM);
  QTRY_VERIFY(requests.count() >= 1);
}

void TestSignalWatcher::tellsAHangUpApart() {
  std::signal(SIGHUP, SIG_DFL);  // watchers of the tests before left it ignored
  korvia::SignalWatcher watcher;
  QSignalSpy requests(&watcher, &korvia::SignalWatcher::closeRequested);
  QSignalSpy hangUps(&watcher, &korvia::SignalWatcher::hungUp);
  std::raise(SIGHUP);
  QTRY_COMPARE(hangUps.count(), 1);
  std::raise(SIGTERM);
  QTRY_COMPARE(requests.count(), 1);
  QCOMPARE(hangUps.count(), 1);
}

void TestSignalWatcher::leavesAnIgnoredHangUpAlone() {
  std::signal(SIGHUP, SIG_IGN);
  {
    korvia::SignalWatcher watcher;
    QSignalSpy hangUps(&watcher, &korvia::SignalWatcher::hungUp);
    QSignalSpy requests(&watcher, &korvia::SignalWatcher::closeRequested);
    std::raise(SIGHUP);
    std::raise(SIGTERM);
    QTRY_COMPARE(requests.count(), 1);
    QCOMPARE(hangUps.count(), 0);
  }
  std::signal(SIGHUP, SIG_DFL);
}

void TestSignalWatcher::ignoresSignalsOnceTheProgramEnds() {
  { korvia::SignalWatcher watcher; }
  struct sigaction action {};
  sigaction(SIGTERM, nullptr, &action);
  QVERIFY(action.sa_handler == SIG_IGN);
}

QTEST_GUILESS_MAIN(TestSignalWatcher)
#include "tst_signal_watcher.moc"
