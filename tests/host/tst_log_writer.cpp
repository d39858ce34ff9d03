#include <QSemaphore>
#include <QtTest>
#include <mutex>

#include "LogLine.h"
#include "LogWriter.h"

using namespace std::chrono_literals;
using korvia::LogWriter;

namespace {

/// A place that takes lines only when it is told to. Lives as long as the writer's thread.
struct Place {
  QSemaphore doors;
  std::mutex mutex;
  QByteArray text;  // guarded by mutex

  QByteArray taken() {
    std::lock_guard lock(mutex);
    return text;
  }
};

LogWriter::Target targetOf(const std::shared_ptr<Place>& place) {
  return [place](const QByteArray& lines) {
    place->doors.acquire();
    std::lock_guard lock(place->mutex);
    place->text += lines;
  };
}

}  // namespace

class TestLogWriter : public QObject {
  Q_OBJECT

 private slots:
  void writesInOrder() {
    const auto place = std::make_shared<Place>();
    place->doors.release(1000);
    LogWriter writer(targetOf(place));
    QByteArray expected;
    for (int n = 0; n < 500; ++n) {
      const QByteArray line = QByteArray::number(n) + '\n';
      expected += line;
      writer.add(line);
    }
    QVERIFY(writer.drain(5s));
    QCOMPARE(place->taken(), expected);
  }

  void placeThatBlocksHoldsNobodyUp() {
    constexpr int kLines = 100000;
    const auto place = std::make_shared<Place>();
    LogWriter writer(targetOf(place));
    QElapsedTimer timer;
    timer.start();
    for (int n = 0; n < kLines; ++n)
      writer.add("a line of some length, with its number " + QByteArray::number(n) + '\n');
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(!writer.drain(10ms));

    place->doors.release(1000);
    QVERIFY(writer.drain(5s));
    const QList<QByteArray> lines = place->taken().split('\n');
    const int written = place->taken().count("a line of");
    QVERIFY(written > 0 && written < kLines);
    const QByteArray last = lines[lines.size() - 2];
    QVERIFY2(last.endsWith(" : " + QByteArray::number(kLines - written) + " lines dropped"),
             last.constData());

    writer.add("there is room again\n");
    QVERIFY(writer.drain(5s));
    QVERIFY(place->taken().endsWith("there is room again\n"));
  }

  void placeThatBlocksDoesNotHoldUpTheEnd() {
    const auto place = std::make_shared<Place>();
    {
      LogWriter writer(targetOf(place));
      writer.add("one\n");
    }
    place->doors.release(1000);
    QTRY_COMPARE(place->taken(), QByteArray("one\n"));
  }

  void linesTellTimeLevelAndCategory() {
    const QByteArray line = korvia::logLine(QtWarningMsg, "korvia.web", "port 1\nis in use");
    QVERIFY(QDateTime::fromString(QString::fromLatin1(line.left(23)), "yyyy-MM-dd hh:mm:ss.zzz").isValid());
    QCOMPARE(line.mid(23), QByteArray(" warning korvia.web : port 1\n    is in use\n"));
    QCOMPARE(korvia::logLine(QtDebugMsg, nullptr, "x").mid(23), QByteArray(" debug default : x\n"));
  }
};

QTEST_APPLESS_MAIN(TestLogWriter)
#include "tst_log_writer.moc"
