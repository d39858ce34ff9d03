// How the black box gets its lines to the file without holding up those who note them.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>
#include <thread>

#include "KorviaShowEvents.h"
#include "trace/BlackBox.h"

using korvia::BlackBox;

namespace {

QByteArray contentOf(const QString& fileName) {
  QFile file(fileName);
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QList<QJsonObject> linesOf(const QByteArray& text) {
  QList<QJsonObject> lines;
  for (const QByteArray& line : text.split('\n')) {
    if (!line.isEmpty())
      lines.append(QJsonDocument::fromJson(line).object());
  }
  return lines;
}

void postNumber(int number) {
  BlackBox::instance().post(ShowEventVolume, number, QVariant(), QVariant(), QVariant());
}

}  // namespace

class BlackBoxTest : public QObject {
  Q_OBJECT

 private slots:
  void cleanup() { BlackBox::instance().open(QString()); }

  void linesReachTheFileByThemselves() {
    QTemporaryDir folder;
    const QString fileName = folder.filePath("t.jsonl");
    QVERIFY(BlackBox::instance().open(fileName));
    postNumber(7);
    QTRY_VERIFY_WITH_TIMEOUT(contentOf(fileName).endsWith("}\n"), 1000);
    QCOMPARE(linesOf(contentOf(fileName))[0]["args"].toArray(), QJsonArray{7});
  }

  void flushAndCloseWaitForTheFile() {
    QTemporaryDir folder;
    QVERIFY(BlackBox::instance().open(folder.filePath("a.jsonl")));
    for (int n = 0; n < 1000; ++n)
      postNumber(n);
    BlackBox::instance().flush();
    QCOMPARE(linesOf(contentOf(folder.filePath("a.jsonl"))).size(), 1000);
    postNumber(1000);
    QVERIFY(BlackBox::instance().open(folder.filePath("b.jsonl")));
    QCOMPARE(linesOf(contentOf(folder.filePath("a.jsonl"))).size(), 1001);
    postNumber(1);
    QVERIFY(BlackBox::instance().open(QString()));
    postNumber(2);
    QCOMPARE(linesOf(contentOf(folder.filePath("b.jsonl"))).size(), 1);
  }

  void fileThatTakesNothingHoldsNobodyUp() {
    constexpr int kPosts = 30000;
    QTemporaryDir folder;
    const QByteArray pipe = QFile::encodeName(folder.filePath("pipe"));
    QCOMPARE(::mkfifo(pipe.constData(), 0600), 0);
    const int reader = ::open(pipe.constData(), O_RDONLY | O_NONBLOCK);
    QVERIFY(BlackBox::instance().open(folder.filePath("pipe")));

    QElapsedTimer timer;
    timer.start();
    for (int n = 0; n < kPosts; ++n)
      postNumber(n);
    QVERIFY2(timer.elapsed() < 3000, qPrintable(QString::number(timer.elapsed())));

    QByteArray text;
    QCOMPARE(::fcntl(reader, F_SETFL, 0), 0);
    std::thread reading([&] {
      char bytes[65536];
      for (ssize_t count = 0; (count = ::read(reader, bytes, sizeof bytes)) > 0;)
        text.append(bytes, static_cast<int>(count));
    });
    BlackBox::instance().flush();
    postNumber(kPosts);
    BlackBox::instance().open(QString());
    reading.join();
    ::close(reader);

    // Each number is there in its order, or counted at the place where it is missing.
    int next = 0;
    int dropped = 0;
    for (const QJsonObject& line : linesOf(text)) {
      if (line["dir"] == "dropped") {
        dropped += line["count"].toInt();
        next += line["count"].toInt();
      } else {
        QCOMPARE(line["args"].toArray()[0].toInt(-1), next);
        ++next;
      }
    }
    QCOMPARE(next, kPosts + 1);
    QVERIFY(dropped > 0);
  }

  void picturesAreNotKept() {
    QTemporaryDir folder;
    QVERIFY(BlackBox::instance().open(folder.filePath("t.jsonl")));
    QImage image(64, 36, QImage::Format_ARGB32);
    BlackBox::instance().call("commitPaintPadImage", 0, {image});
    QVERIFY(image.isDetached());
    BlackBox::instance().flush();
    const QJsonObject size =
        linesOf(contentOf(folder.filePath("t.jsonl")))[0]["args"].toArray()[0].toObject();
    QCOMPARE(size["width"].toInt(), 64);
    QCOMPARE(size["height"].toInt(), 36);
  }
};

QTEST_APPLESS_MAIN(BlackBoxTest)
#include "tst_black_box.moc"
