#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>
#include <cmath>
#include <condition_variable>
#include <mutex>

#include "RecordFeed.h"
#include "engine/output/OutputFactory.h"
#include "engine/output/RecordOutput.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};
constexpr int kFinishMs = 12000;
constexpr int kProcessMs = 60000;

RecordSettings settingsFor(const QString& folder, int encapsulation) {
  RecordSettings settings;
  settings.folder = folder;
  settings.name = QStringLiteral("take");
  settings.container = RecordContainer::of(encapsulation);
  settings.size = kSize;
  settings.videoKbps = 1000;
  return settings;
}

void addContainers() {
  QTest::addColumn<int>("encapsulation");
  QTest::addColumn<QString>("suffix");
  QTest::newRow("ts") << 0 << "ts";
  QTest::newRow("flv") << 1 << "flv";
  QTest::newRow("mp4") << 2 << "mp4";
  QTest::newRow("mkv") << 4 << "mkv";
  QTest::newRow("mov") << 5 << "mov";
}

QVector<int> numbersIn(const QByteArray& luma, FrameSize size) {
  QVector<int> numbers;
  const int bytes = size.width * size.height;
  for (int at = 0; at + bytes <= luma.size(); at += bytes)
    numbers.append(patternNumber(reinterpret_cast<const std::uint8_t*>(luma.constData()) + at, size.width));
  return numbers;
}

QVector<int> countTo(int count) {
  QVector<int> numbers(count);
  std::iota(numbers.begin(), numbers.end(), 0);
  return numbers;
}

/// Whether packet i has the time index(i) × step after the first, to the microsecond.
bool areSpaced(const QVector<double>& pts, double step, const QVector<int>& indices) {
  if (pts.size() != indices.size())
    return false;
  for (int i = 0; i < pts.size(); ++i) {
    if (std::abs(pts[i] - pts[0] - step * (indices[i] - indices[0])) > 2e-6)
      return false;
  }
  return true;
}

/// The kinds of the boxes at the top of an mp4 or mov.
QStringList boxesIn(const QString& fileName) {
  QStringList kinds;
  QFile file(fileName);
  if (!file.open(QIODevice::ReadOnly))
    return kinds;
  for (QByteArray head = file.read(8); head.size() == 8; head = file.read(8)) {
    kinds.append(QString::fromLatin1(head.mid(4)));
    const quint32 size = qFromBigEndian<quint32>(head.constData());
    if (size < 8 || !file.seek(file.pos() - 8 + size))
      break;
  }
  return kinds;
}

/// A gate for the free-space question, which the output's own thread asks: while shut, that thread hangs.
class Gate {
 public:
  void open() {
    std::lock_guard lock(mutex_);
    open_ = true;
    changed_.notify_all();
  }
  qint64 pass() {
    std::unique_lock lock(mutex_);
    reached_ = true;
    changed_.notify_all();
    changed_.wait(lock, [this] { return open_; });
    return -1;
  }
  bool waitReached() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [this] { return reached_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  bool open_ = false;
  bool reached_ = false;
};

/// Pushes counted frames and kills the host without notice; gives the frames pushed by then.
int recordAndKill(const QString& folder, int encapsulation, int frames) {
  QProcess host;
  host.start(qEnvironmentVariable("KORVIA_RECORD_HOST"), {folder, QString::number(encapsulation)});
  int pushed = 0;
  while (pushed < frames && (host.canReadLine() || host.waitForReadyRead(kProcessMs))) {
    while (host.canReadLine())
      pushed = host.readLine().trimmed().toInt();
  }
  host.kill();
  host.waitForFinished(kProcessMs);
  while (host.canReadLine())
    pushed = host.readLine().trimmed().toInt();
  return pushed;
}

}  // namespace

class TestRecordOutput : public QObject {
  Q_OBJECT

 private slots:
  void everyContainer_data() { addContainers(); }
  void everyContainer() {
    QFETCH(int, encapsulation);
    QFETCH(QString, suffix);
    constexpr int kFrames = 63;  // no whole number of fragments or key pictures
    QTemporaryDir folder;
    FramePool pool(kSize);
    RecordOutput output(settingsFor(folder.path(), encapsulation));
    QVERIFY(feedFrames(output, pool, 0, kFrames));
    QVERIFY(output.figures().up);
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
    QCOMPARE(output.fileName(), folder.path() + "/take." + suffix);

    const OutputFigures figures = output.figures();
    QVERIFY(!figures.up);
    QCOMPARE(figures.framesEncoded, qint64(kFrames));
    QCOMPARE(figures.framesDropped, qint64(0));
    QVERIFY(figures.bytesWritten >= QFileInfo(output.fileName()).size());

    const VideoVerdict verdict = VideoJudge::judge(output.fileName());
    QCOMPARE(verdict.stream["codec_name"].toString(), QString("h264"));
    QCOMPARE(verdict.stream["profile"].toString(), QString("High"));
    QCOMPARE(verdict.stream["width"].toInt(), 320);
    QCOMPARE(verdict.stream["height"].toInt(), 180);
    QCOMPARE(verdict.stream["pix_fmt"].toString(), QString("yuv420p"));
    QCOMPARE(verdict.stream["color_range"].toString(), QString("tv"));
    QCOMPARE(verdict.stream["color_space"].toString(), QString("bt709"));
    QCOMPARE(verdict.stream["color_primaries"].toString(), QString("bt709"));
    QCOMPARE(verdict.stream["color_transfer"].toString(), QString("bt709"));
    QCOMPARE(verdict.stream["r_frame_rate"].toString(), QString("25/1"));
    QCOMPARE(verdict.frames, kFrames);
    QVERIFY(areSpaced(verdict.pts, 0.04, countTo(kFrames)));
    QVERIFY2(std::abs(verdict.durationSeconds - 2.52) <= 0.041,
             qPrintable(QString::number(verdict.durationSeconds)));

    QByteArray complaints;
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(output.fileName(), &complaints), kSize), countTo(kFrames));
    // In the header of an flv lies a filler for the index, a longer text than ffmpeg reads.
    if (encapsulation != EncapsulationFlv)
      QCOMPARE(complaints, QByteArray());
  }

  void killedFilesPlay_data() { addContainers(); }
  void killedFilesPlay() {
    QFETCH(int, encapsulation);
    QFETCH(QString, suffix);
    QTemporaryDir folder;
    const int pushed = recordAndKill(folder.path(), encapsulation, 75);
    QVERIFY(pushed >= 75);
    const QVector<int> numbers = numbersIn(VideoJudge::decodeLuma(folder.path() + "/host." + suffix), kSize);
    QVERIFY2(numbers.size() >= pushed - 25, qPrintable(QString("%1 of %2").arg(numbers.size()).arg(pushed)));
    QCOMPARE(numbers, countTo(numbers.size()));
  }

  void stoppedFilesHaveOneIndex_data() {
    QTest::addColumn<int>("encapsulation");
    QTest::newRow("mp4") << 2;
    QTest::newRow("mov") << 5;
  }
  void stoppedFilesHaveOneIndex() {
    QFETCH(int, encapsulation);
    QTemporaryDir folder;
    FramePool pool(kSize);
    RecordOutput output(settingsFor(folder.path(), encapsulation));
    QVERIFY(feedFrames(output, pool, 0, 40));
    QTRY_VERIFY(boxesIn(output.fileName()).contains("moof"));  // while it runs, it is fragmented
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
    const QStringList boxes = boxesIn(output.fileName());
    QVERIFY2(!boxes.contains("moof") && boxes.count("moov") == 1, qPrintable(boxes.join(' ')));
  }

  void otherRatesKeepTheirGrid() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    RecordSettings settings = settingsFor(folder.path(), 2);
    settings.rate = {30000, 1001};
    RecordOutput output(settings);
    QVERIFY(feedFrames(output, pool, 0, 61));
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
    const VideoVerdict verdict = VideoJudge::judge(output.fileName());
    QCOMPARE(verdict.stream["r_frame_rate"].toString(), QString("30000/1001"));
    QVERIFY(areSpaced(verdict.pts, 1001.0 / 30000.0, countTo(61)));
  }

  void scalesToItsOwnSize() {
    QTemporaryDir folder;
    FramePool pool({640, 360});
    RecordOutput output(settingsFor(folder.path(), 4));
    QVERIFY(feedFrames(output, pool, 0, 30));
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
    const VideoVerdict verdict = VideoJudge::judge(output.fileName());
    QCOMPARE(verdict.stream["width"].toInt(), 320);
    QCOMPARE(verdict.stream["height"].toInt(), 180);
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(output.fileName()), kSize), countTo(30));
  }

  void fullQueueDropsTheNewestAndNeverBlocks() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    Gate gate;
    RecordSettings settings = settingsFor(folder.path(), 2);
    settings.freeBytes = [&gate](const QString&) { return gate.pass(); };
    settings.queueCapacity = 12;
    RecordOutput output(settings);
    const auto opener = qScopeGuard([&gate] { gate.open(); });
    QVERIFY(gate.waitReached());
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 40; ++i)
      output.pushFrame(patternFrame(pool, i), i);
    QVERIFY(timer.elapsed() < 5000);
    QCOMPARE(output.figures().framesDropped, qint64(28));
    QVERIFY(!output.figures().up);
    gate.open();
    QTRY_COMPARE_WITH_TIMEOUT(output.figures().up, true, 10000);
    QVERIFY(waitForRoom(output, 12, 9));
    for (int i = 40; i < 60; ++i) {
      output.pushFrame(patternFrame(pool, i), i);
      QVERIFY(waitForRoom(output, i + 1 - 28, 9));
    }
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));

    QVector<int> kept = countTo(12);
    for (int i = 40; i < 60; ++i)
      kept.append(i);
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(output.fileName()), kSize), kept);
    QVERIFY(areSpaced(VideoJudge::judge(output.fileName()).pts, 0.04, kept));
  }

  void droppedFramesAreReported() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    Gate gate;
    RecordSettings settings = settingsFor(folder.path(), 0);
    settings.freeBytes = [&gate](const QString&) { return gate.pass(); };
    settings.queueCapacity = 12;
    RecordOutput output(settings);
    const auto opener = qScopeGuard([&gate] { gate.open(); });
    QVERIFY(gate.waitReached());
    for (int i = 0; i < 15; ++i)
      output.pushFrame(patternFrame(pool, i), i);
    QTest::ignoreMessage(QtWarningMsg, "the recording cannot keep up, 3 frames dropped");
    gate.open();
    QTRY_VERIFY_WITH_TIMEOUT(output.figures().framesPerSecond > 0, 10000);
  }

  void stuckOutputIsLeftBehindInTime() {
    QTemporaryDir folder;
    static Gate gate;  // outlives the thread that hangs in it
    RecordSettings settings = settingsFor(folder.path(), 0);
    settings.finishTimeoutMs = 100;
    settings.freeBytes = [](const QString&) { return gate.pass(); };
    auto output = std::make_unique<RecordOutput>(settings);
    QVERIFY(gate.waitReached());
    QTest::ignoreMessage(QtWarningMsg, "a recording does not end, left behind");
    QElapsedTimer timer;
    timer.start();
    output.reset();
    QVERIFY(timer.elapsed() < 5000);
    gate.open();
    // The thread that was left behind ends by itself and takes its empty file along.
    QTRY_VERIFY_WITH_TIMEOUT(QDir(folder.path()).isEmpty(), 10000);
  }

  void nothingRecordedLeavesNoFile() {
    QTemporaryDir folder;
    RecordOutput output(settingsFor(folder.path(), 2));
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
    QVERIFY(QDir(folder.path()).isEmpty());
  }

  void destructionClosesTheFile() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    {
      RecordOutput output(settingsFor(folder.path(), 2));
      QVERIFY(feedFrames(output, pool, 0, 20));
    }
    QCOMPARE(VideoJudge::judge(folder.path() + "/take.mp4").frames, 20);
  }

  void framesAfterTheEndAreIgnored() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    RecordOutput output(settingsFor(folder.path(), 2));
    QVERIFY(feedFrames(output, pool, 0, 10));
    output.finish();
    for (int i = 10; i < 40; ++i)
      output.pushFrame(patternFrame(pool, i), i);
    QVERIFY(output.waitFinished(kFinishMs));
    QCOMPARE(output.figures().framesEncoded, qint64(10));
    QCOMPARE(output.figures().framesDropped, qint64(0));
  }

  void twoRecordingsOfOneName() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    RecordOutput first(settingsFor(folder.path(), 2));
    RecordOutput second(settingsFor(folder.path(), 2));
    QVERIFY(feedFrames(first, pool, 0, 10));
    QVERIFY(feedFrames(second, pool, 0, 10));
    first.finish();
    second.finish();
    QVERIFY(first.waitFinished(kFinishMs) && second.waitFinished(kFinishMs));
    QCOMPARE(QDir(folder.path()).entryList(QDir::Files), QStringList({"take (2).mp4", "take.mp4"}));
    QCOMPARE(VideoJudge::judge(first.fileName()).frames, 10);
    QCOMPARE(VideoJudge::judge(second.fileName()).frames, 10);
  }

  void folderThatCannotBeWritten() {
    FramePool pool(kSize);
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression("recording \"take\" failed : the folder .* cannot be made"));
    RecordOutput output(settingsFor("/dev/null/records", 2));
    QVERIFY(output.waitFinished(kFinishMs));
    output.pushFrame(patternFrame(pool, 0), 0);
    QVERIFY(!output.figures().up);
    QCOMPARE(output.fileName(), QString());
  }

  void fullDiskAtTheStart() {
    QTemporaryDir folder;
    RecordSettings settings = settingsFor(folder.path(), 2);
    settings.freeBytes = [](const QString&) { return 1000; };
    QTest::ignoreMessage(QtWarningMsg, "recording \"take\" failed : the disk is full");
    RecordOutput output(settings);
    QVERIFY(output.waitFinished(kFinishMs));
    QVERIFY(QDir(folder.path()).isEmpty());
  }

  void diskThatFillsClosesTheFileInTime() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    RecordSettings settings = settingsFor(folder.path(), 2);
    auto asked = std::make_shared<std::atomic<int>>(0);
    settings.freeBytes = [asked](const QString&) { return ++*asked == 1 ? 1LL << 40 : 1000; };
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("the disk is nearly full, closing"));
    RecordOutput output(settings);
    QVERIFY(feedFrames(output, pool, 0, 20));
    QVERIFY(output.waitFinished(kFinishMs));
    QVERIFY(!output.figures().up);
    QCOMPARE(VideoJudge::judge(output.fileName()).frames, 20);
  }

  // A file that may not grow past a size fails where a full disk does: in write().
  void writeErrorEndsTheRecording_data() { addContainers(); }
  void writeErrorEndsTheRecording() {
    QFETCH(int, encapsulation);
    QFETCH(QString, suffix);
    QTemporaryDir folder;
    QProcess host;
    host.start(qEnvironmentVariable("KORVIA_RECORD_HOST"),
               {folder.path(), QString::number(encapsulation), QStringLiteral("150000")});
    QVERIFY(host.waitForFinished(kProcessMs));
    QCOMPARE(host.exitStatus(), QProcess::NormalExit);
    QCOMPARE(host.exitCode(), 0);
    QVERIFY(host.readAllStandardOutput().endsWith("down\n"));
    const QByteArray log = host.readAllStandardError();
    QCOMPARE(log.count("recording \"host\" failed : "), 1);
    const QVector<int> numbers = numbersIn(VideoJudge::decodeLuma(folder.path() + "/host." + suffix), kSize);
    QVERIFY2(numbers.size() > 10, log.constData());
  }

  void factoryMakesTheRecording() {
    QTemporaryDir folder;
    FramePool pool({640, 360});
    OutputRequest request;
    request.slot = OutputSlotRecord;
    request.param.items[1].recordPath = folder.path();
    request.param.items[1].recordEncapsulation = 5;
    request.param.encode[1].videoBitrate = 0;
    request.programName = "a/b";
    request.format.video.width = 321;
    request.format.video.height = 181;
    const std::unique_ptr<ProgramOutput> output = createProgramOutput(request);
    QVERIFY(output != nullptr);
    QVERIFY(feedFrames(*output, pool, 0, 10));
    output->finish();
    QVERIFY(output->waitFinished(kFinishMs));
    const QStringList files = QDir(folder.path()).entryList(QDir::Files);
    QCOMPARE(files.size(), 1);
    QVERIFY2(QRegularExpression("^a-b_\\d\\d-\\d\\d-\\d\\d-\\d\\d_\\d\\d_\\d\\d\\.mov$")
                 .match(files[0])
                 .hasMatch(),
             qPrintable(files[0]));
    const VideoVerdict verdict = VideoJudge::judge(folder.filePath(files[0]));
    QCOMPARE(verdict.stream["width"].toInt(), 320);
    QCOMPARE(verdict.stream["height"].toInt(), 180);
    QCOMPARE(verdict.frames, 10);
  }

  void factoryHasNoOtherOutputs() {
    OutputRequest request;
    request.slot = OutputSlotStream;
    QTest::ignoreMessage(QtWarningMsg, "streams are not available in this version");
    QVERIFY(!createProgramOutput(request));
    request.slot = 7;
    QTest::ignoreMessage(QtWarningMsg, "there is no output 7");
    QVERIFY(!createProgramOutput(request));
  }
};

QTEST_GUILESS_MAIN(TestRecordOutput)
#include "tst_record_output.moc"
