// What is left of a recording when the program ends under it.
#include <QtEndian>
#include <QtTest>
#include <algorithm>
#include <csignal>

#include "Desk.h"
#include "support/VideoJudge.h"

using namespace korvia::test;

namespace {

/// Types of the boxes at the top of an MP4 file, in their order.
QStringList topBoxes(const QString& fileName) {
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly))
    return {};
  QStringList types;
  while (true) {
    const qint64 begin = file.pos();
    const QByteArray head = file.read(16);
    if (head.size() < 8)
      return types;
    qint64 size = qFromBigEndian<quint32>(head.constData());
    if (size == 1 && head.size() == 16)
      size = static_cast<qint64>(qFromBigEndian<quint64>(head.constData() + 8));
    types << QString::fromLatin1(head.mid(4, 4));
    if (size < 8 || !file.seek(begin + size))
      return types;
  }
}

bool isGone(qint64 processId) {
  return !QFile::exists(QStringLiteral("/proc/%1").arg(processId));
}

}  // namespace

class TestRecordingEnd : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase();
  void killedProgramLeavesAPlayableFile();
  void hangUpLeavesTheRecordingAlone();
  void signalFinalisesTheFile_data();
  void signalFinalisesTheFile();

 private:
  /// Starts a show and its recording, and lets it run for so many frames.
  void record(KorviaProcess& korvia, int frames, QString& file);

  VirtualDisplay display_;
};

void TestRecordingEnd::initTestCase() {
  QVERIFY(display_.start(kDeskSize));
}

void TestRecordingEnd::record(KorviaProcess& korvia, int frames, QString& file) {
  Desk desk(display_, korvia);
  QVERIFY(korvia.startShow());
  QVERIFY(desk.isMoving(desk.program()));
  QVERIFY(display_.click(place::kRecordButton));
  QVERIFY(korvia.blackBox().waitFor(line("result", "ShowEventStartOutput", {1})) >= 0);
  QVERIFY(desk.runsOn(frames));
  file = korvia.waitForFile(korvia.in("d/records"), "*.mp4");
  QVERIFY(!file.isEmpty());
}

void TestRecordingEnd::killedProgramLeavesAPlayableFile() {
  KorviaProcess korvia(display_);
  QString file;
  record(korvia, 110, file);
  QTRY_VERIFY_WITH_TIMEOUT(!korvia.children("nginx").isEmpty(), 10000);
  const QList<qint64> children = korvia.children("nginx");
  korvia.sendSignal(SIGKILL);
  QVERIFY(korvia.waitForExit());
  for (const qint64 child : children)
    QTRY_VERIFY(isGone(child));

  const VideoVerdict verdict = VideoJudge::judge(file);
  QCOMPARE(verdict.stream["codec_name"].toString(), QStringLiteral("h264"));
  QVERIFY2(verdict.frames >= 75, qPrintable(QString::number(verdict.frames)));
  const QStringList boxes = topBoxes(file);
  QVERIFY2(boxes.count("moof") >= 5, qPrintable(boxes.join(' ')));
}

void TestRecordingEnd::hangUpLeavesTheRecordingAlone() {
  KorviaProcess korvia(display_);
  Desk desk(display_, korvia);
  QString file;
  record(korvia, 25, file);
  QTRY_VERIFY_WITH_TIMEOUT(korvia.status()["outputs"].toObject()["recording"].toBool(), 10000);
  korvia.sendSignal(SIGHUP);
  QVERIFY(korvia.waitForLog("the terminal is gone, going on without it while recording"));
  QVERIFY(desk.runsOn(50));
  korvia.sendSignal(SIGTERM);
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
  const VideoVerdict verdict = VideoJudge::judge(file);
  QVERIFY2(verdict.frames >= 75, qPrintable(QString::number(verdict.frames)));
}

void TestRecordingEnd::signalFinalisesTheFile_data() {
  QTest::addColumn<int>("number");
  QTest::newRow("SIGTERM") << SIGTERM;
  QTest::newRow("SIGINT") << SIGINT;
}

void TestRecordingEnd::signalFinalisesTheFile() {
  QFETCH(int, number);
  KorviaProcess korvia(display_);
  QString file;
  record(korvia, 50, file);
  korvia.sendSignal(number);
  QVERIFY(korvia.waitForExit());
  QCOMPARE(korvia.trouble(), QString());
  QCOMPARE(korvia.blackBox().lines().last().name, QStringLiteral("ShowEventClose"));

  const VideoVerdict verdict = VideoJudge::judge(file);
  QVERIFY2(verdict.frames >= 50, qPrintable(QString::number(verdict.frames)));
  // From the stamps, since a machine under load drops frames.
  const auto [first, last] = std::minmax_element(verdict.pts.begin(), verdict.pts.end());
  QVERIFY2(qAbs(verdict.durationSeconds - (*last - *first + 0.04)) < 0.05,
           qPrintable(QString::number(verdict.durationSeconds)));
  const QStringList boxes = topBoxes(file);
  QVERIFY2(boxes.count("moov") == 1 && !boxes.contains("moof"), qPrintable(boxes.join(' ')));
}

QTEST_GUILESS_MAIN(TestRecordingEnd)
#include "tst_recording_end.moc"
