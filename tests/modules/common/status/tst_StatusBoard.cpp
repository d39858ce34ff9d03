// Sections of the status board, and many threads at once.
#include <QJsonArray>
#include <QtTest>
#include <thread>
#include <vector>

#include "StatusBoard.h"

using korvia::StatusBoard;

class StatusBoardTest : public QObject {
  Q_OBJECT

 private slots:
  void newestValueOfASectionStays() {
    StatusBoard board;
    QCOMPARE(board.snapshot(), QJsonObject());
    board.publish("engine", {{"fps", 25.0}, {"lateTicks", 0}});
    board.publish("buses", {{"pgm", 16}});
    board.publish("engine", {{"fps", 24.9}});
    const QJsonObject expected{{"engine", QJsonObject{{"fps", 24.9}}}, {"buses", QJsonObject{{"pgm", 16}}}};
    QCOMPARE(board.snapshot(), expected);
  }

  void emptySectionLeavesTheBoard() {
    StatusBoard board;
    board.publish("engine", {{"fps", 25.0}});
    board.publish("engine", {});
    QCOMPARE(board.snapshot(), QJsonObject());
  }

  void snapshotIsACopy() {
    StatusBoard board;
    board.publish("engine", {{"fps", 25.0}});
    const QJsonObject before = board.snapshot();
    board.publish("engine", {{"fps", 1.0}});
    QCOMPARE(before["engine"].toObject()["fps"].toDouble(), 25.0);
  }

  void oneBoardForTheProcess() {
    StatusBoard::instance().publish("one", {{"a", 1}});
    QCOMPARE(StatusBoard::instance().snapshot()["one"].toObject()["a"].toInt(), 1);
    StatusBoard::instance().publish("one", {});
  }

  void sectionsAreNeverMixed() {
    StatusBoard board;
    std::atomic<bool> torn{false};
    std::vector<std::thread> threads;
    for (int writer = 0; writer < 3; ++writer) {
      threads.emplace_back([&board, writer] {
        for (int n = 0; n < 500; ++n)
          board.publish(QString::number(writer), {{"a", n}, {"b", n}});
      });
    }
    threads.emplace_back([&] {
      for (int n = 0; n < 500; ++n) {
        const QJsonObject all = board.snapshot();
        for (const auto& section : all)
          torn = torn || section.toObject()["a"] != section.toObject()["b"];
      }
    });
    for (std::thread& thread : threads)
      thread.join();
    QVERIFY(!torn);
    QCOMPARE(board.snapshot()["2"].toObject()["a"].toInt(), 499);
  }
};

QTEST_GUILESS_MAIN(StatusBoardTest)
#include "tst_StatusBoard.moc"
