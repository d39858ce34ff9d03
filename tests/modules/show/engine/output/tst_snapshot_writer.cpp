#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

#include "engine/frame/FramePool.h"
#include "engine/output/SnapshotWriter.h"

using namespace korvia;

namespace {

FrameRef plainFrame(FrameSize size, int y, int u, int v) {
  FramePool pool(size);
  MutableFrame frame = pool.acquire();
  const int value[3] = {y, u, v};
  for (int plane = 0; plane < 3; ++plane) {
    for (int row = 0; row < frame->planeHeight(plane); ++row)
      std::fill_n(frame->writablePlane(plane) + static_cast<std::ptrdiff_t>(row) * frame->stride(plane),
                  frame->planeWidth(plane), static_cast<std::uint8_t>(value[plane]));
  }
  return std::move(frame).publish();
}

}  // namespace

class TestSnapshotWriter : public QObject {
  Q_OBJECT

 private slots:
  // Limited-range BT.709 values of the 100 % colours.
  void colours_data() {
    QTest::addColumn<int>("y");
    QTest::addColumn<int>("u");
    QTest::addColumn<int>("v");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("black") << 16 << 128 << 128 << QColor(0, 0, 0);
    QTest::newRow("white") << 235 << 128 << 128 << QColor(255, 255, 255);
    QTest::newRow("red") << 63 << 102 << 240 << QColor(255, 0, 0);
    QTest::newRow("green") << 173 << 42 << 26 << QColor(0, 255, 0);
    QTest::newRow("blue") << 32 << 240 << 118 << QColor(0, 0, 255);
    QTest::newRow("grey") << 126 << 128 << 128 << QColor(128, 128, 128);
  }
  void colours() {
    QFETCH(int, y);
    QFETCH(int, u);
    QFETCH(int, v);
    QFETCH(QColor, colour);
    QTemporaryDir folder;
    const QString path = folder.path() + "/new folder/shot.png";
    SnapshotWriter writer;
    QVERIFY(writer.write(plainFrame({322, 181}, y, u, v), path));
    QVERIFY(writer.flush());
    const QImage image(path);
    QCOMPARE(image.size(), QSize(322, 181));
    for (const QPoint point : {QPoint(0, 0), QPoint(161, 90), QPoint(321, 180)}) {
      const QColor got = image.pixelColor(point);
      const auto close = [](int a, int b) { return std::abs(a - b) <= 2; };
      QVERIFY2(close(got.red(), colour.red()) && close(got.green(), colour.green()) &&
                   close(got.blue(), colour.blue()),
               qPrintable(got.name()));
    }
    QCOMPARE(QDir(folder.path() + "/new folder").entryList(QDir::Files | QDir::Hidden),
             QStringList("shot.png"));
  }

  void failureIsLoggedAndTheNextOneIsWritten() {
    QTemporaryDir folder;
    SnapshotWriter writer;
    const FrameRef frame = plainFrame({64, 36}, 100, 128, 128);
    QTest::ignoreMessage(
        QtWarningMsg,
        QRegularExpression("snapshot \"/dev/null/a/shot.png\" failed : the folder .* cannot be made"));
    QVERIFY(writer.write(frame, "/dev/null/a/shot.png"));
    QVERIFY(writer.write(frame, folder.path() + "/b.png"));
    QVERIFY(writer.flush());
    QVERIFY(QFile::exists(folder.path() + "/b.png"));
    QVERIFY(!writer.write(FrameRef(), folder.path() + "/c.png"));
  }

  void queueIsBounded() {
    QTemporaryDir folder;
    SnapshotWriter writer;
    // Pictures that take far longer to pack than to queue.
    const FrameRef frame = plainFrame({4096, 2160}, 100, 128, 128);
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("too many snapshots at once"));
    int taken = 0;
    QString path;
    do {
      path = folder.path() + QStringLiteral("/%1.png").arg(taken);
    } while (writer.write(frame, path) && ++taken < 100);
    QVERIFY(taken >= SnapshotWriter::kQueueCapacity && taken <= SnapshotWriter::kQueueCapacity + 2);
    QVERIFY(writer.flush(60000));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files).size(), taken);
  }
};

QTEST_GUILESS_MAIN(TestSnapshotWriter)
#include "tst_snapshot_writer.moc"
