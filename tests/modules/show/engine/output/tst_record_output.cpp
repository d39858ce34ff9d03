#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QScopeGuard>
#include <QTemporaryDir>
#include <QtEndian>
#include <QtTest>

#include "RecordRig.h"
#include "engine/output/OutputFactory.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};
constexpr int kFinishMs = 12000;
constexpr int kProcessMs = 60000;

RecordingSettings settingsFor(const QString& folder, int encapsulation) {
  RecordingSettings settings;
  settings.file.folder = folder;
  settings.file.name = QStringLiteral("take");
  settings.file.container = RecordContainer::of(encapsulation);
  settings.encoder.label = QStringLiteral("the recording");
  settings.encoder.picture.size = kSize;
  settings.encoder.picture.kbps = 1000;
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
    Recording output(settingsFor(folder.path(), encapsulation));
    QVERIFY(feedFrames(output, pool, 0, kFrames));
    QTRY_VERIFY(output.figures().up);
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
    const QString fileName = folder.path() + "/host." + suffix;
    const QVector<int> numbers = numbersIn(VideoJudge::decodeLuma(fileName), kSize);
    QVERIFY2(numbers.size() >= pushed - 25, qPrintable(QString("%1 of %2").arg(numbers.size()).arg(pushed)));
    QCOMPARE(numbers, countTo(numbers.size()));
    const double seconds = VideoJudge::judge(fileName).durationSeconds;  // 0 when the file tells none
    QVERIFY2(seconds <= pushed / 25.0 + 1, qPrintable(QString::number(seconds)));
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
    Recording output(settingsFor(folder.path(), encapsulation));
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
    RecordingSettings settings = settingsFor(folder.path(), 2);
    settings.encoder.picture.rate = {30000, 1001};
    Recording output(settings);
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
    Recording output(settingsFor(folder.path(), 4));
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
    RecordingSettings settings = settingsFor(folder.path(), 2);
    settings.encoder.queueCapacity = 12;
    Recording output(settings);
    const auto opener = qScopeGuard([&gate] { gate.open(); });
    // Of another size, so that the encoder's own thread is the last to hold it.
    output.pushFrame(gatedFrame(gate, {640, 360}));
    QVERIFY(gate.waitReached());
    QElapsedTimer timer;
    timer.start();
    for (int i = 1; i <= 40; ++i)
      output.pushFrame(patternFrame(pool, i));
    QVERIFY(timer.elapsed() < 5000);
    QCOMPARE(output.figures().framesDropped, qint64(28));
    QVERIFY(!output.figures().up);
    gate.open();
    QTRY_COMPARE_WITH_TIMEOUT(output.figures().up, true, 10000);
    QVERIFY(waitForRoom(output, 13, 9));
    for (int i = 41; i <= 60; ++i) {
      output.pushFrame(patternFrame(pool, i));
      QVERIFY(waitForRoom(output, i + 1 - 28, 9));
    }
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
    QCOMPARE(output.figures().framesDropped, qint64(28));

    const QVector<int> kept = countTo(13) + countFrom(41, 61);
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(output.fileName()), kSize), kept);
    QVERIFY(areSpaced(VideoJudge::judge(output.fileName()).pts, 0.04, kept));
  }

  void droppedFramesAreReported() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    Gate gate;
    RecordingSettings settings = settingsFor(folder.path(), 0);
    settings.encoder.queueCapacity = 12;
    Recording output(settings);
    const auto opener = qScopeGuard([&gate] { gate.open(); });
    output.pushFrame(gatedFrame(gate, {640, 360}));
    QVERIFY(gate.waitReached());
    for (int i = 1; i <= 15; ++i)
      output.pushFrame(patternFrame(pool, i));
    QTest::ignoreMessage(QtWarningMsg, "the recording cannot keep up, 3 frames dropped");
    QTest::ignoreMessage(QtInfoMsg, QRegularExpression("recording \".*take.ts\" closed : 14 frames, 0.7 s"));
    QTest::ignoreMessage(QtWarningMsg, "recording \"take\" lacks 3 frames");
    gate.open();
    QTRY_VERIFY_WITH_TIMEOUT(output.figures().framesPerSecond > 0, 10000);
    output.pushFrame(patternFrame(pool, 16));
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
  }

  void stuckOutputIsLeftBehindInTime() {
    QTemporaryDir folder;
    static Gate gate;  // outlives the thread that hangs in it
    RecordingSettings settings = settingsFor(folder.path(), 0);
    settings.file.target.finishTimeoutMs = 100;
    settings.file.freeBytes = [](const QString&) {
      gate.pass();
      return qint64(-1);
    };
    auto output = std::make_unique<Recording>(settings);
    QVERIFY(gate.waitReached());
    QTest::ignoreMessage(QtWarningMsg, "a recording does not end, left behind");
    QElapsedTimer timer;
    timer.start();
    output.reset();
    QVERIFY(timer.elapsed() < 5000);
    gate.open();
    // The detached thread ends and removes its empty file.
    QTRY_VERIFY_WITH_TIMEOUT(QDir(folder.path()).isEmpty(), 10000);
  }

  void nothingRecordedLeavesNoFile() {
    QTemporaryDir folder;
    Recording output(settingsFor(folder.path(), 2));
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
    QVERIFY(QDir(folder.path()).isEmpty());
  }

  void destructionClosesTheFile() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    {
      Recording output(settingsFor(folder.path(), 2));
      QVERIFY(feedFrames(output, pool, 0, 20));
    }
    QCOMPARE(VideoJudge::judge(folder.path() + "/take.mp4").frames, 20);
  }

  void framesAfterTheEndAreIgnored() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    Recording output(settingsFor(folder.path(), 2));
    QVERIFY(feedFrames(output, pool, 0, 10));
    output.finish();
    for (int i = 10; i < 40; ++i)
      output.pushFrame(patternFrame(pool, i));
    QVERIFY(output.waitFinished(kFinishMs));
    QCOMPARE(output.figures().framesEncoded, qint64(10));
    QCOMPARE(output.figures().framesDropped, qint64(0));
  }

  void twoRecordingsOfOneName() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    Recording first(settingsFor(folder.path(), 2));
    Recording second(settingsFor(folder.path(), 2));
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
    Recording output(settingsFor("/dev/null/records", 2));
    QVERIFY(output.waitFinished(kFinishMs));
    output.pushFrame(patternFrame(pool, 0));
    QVERIFY(!output.figures().up);
    QCOMPARE(output.fileName(), QString());
  }

  void fullDiskAtTheStart() {
    QTemporaryDir folder;
    RecordingSettings settings = settingsFor(folder.path(), 2);
    settings.file.freeBytes = [](const QString&) { return 1000; };
    QTest::ignoreMessage(QtWarningMsg, "recording \"take\" failed : the disk is full");
    Recording output(settings);
    QVERIFY(output.waitFinished(kFinishMs));
    QVERIFY(QDir(folder.path()).isEmpty());
  }

  void diskThatFillsClosesTheFileInTime() {
    QTemporaryDir folder;
    FramePool pool(kSize);
    RecordingSettings settings = settingsFor(folder.path(), 2);
    const auto free = std::make_shared<std::atomic<qint64>>(1LL << 40);
    settings.file.freeBytes = [free](const QString&) { return free->load(); };
    Recording output(settings);
    QVERIFY(feedFrames(output, pool, 0, 20));
    *free = 1000;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression("the disk is nearly full, closing"));
    const auto target = [&output] { return output.slot().report().targets.value(0); };
    int pushed = 20;
    const auto feedUntil = [&](KorviaShowTargetState state, int timeoutMs = kFinishMs) {
      return QTest::qWaitFor([&] { return feedFrames(output, pool, pushed++, 1) && target().state == state; },
                             timeoutMs);
    };
    QVERIFY(feedUntil(KorviaShowTargetState::Lost));
    QCOMPARE(target().reason, QString("the disk is nearly full"));
    QCOMPARE(output.slot().report().state, KorviaShowOutputState::Running);
    QCOMPARE(output.slot().report().roomSeconds, qint64(0));
    const int framesBefore = VideoJudge::judge(folder.filePath("take.mp4")).frames;
    QVERIFY2(framesBefore >= 20 && framesBefore < pushed, qPrintable(QString::number(framesBefore)));

    // A little room would be used up at once.
    *free = settings.file.minimumFreeBytes + 1000;
    QVERIFY(!feedUntil(KorviaShowTargetState::Up, 1500));
    *free = 1LL << 40;
    QVERIFY(feedUntil(KorviaShowTargetState::Up));
    QVERIFY(feedFrames(output, pool, pushed, 20));
    output.finish();
    QVERIFY(output.waitFinished(kFinishMs));
    QCOMPARE(output.slot().report().state, KorviaShowOutputState::Finished);
    QCOMPARE(output.fileName(), folder.filePath("take (2).mp4"));
    const QVector<int> numbers = numbersIn(VideoJudge::decodeLuma(output.fileName()), kSize);
    QVERIFY(numbers.size() >= 20);
    QCOMPARE(numbers, countFrom(pushed + 20 - numbers.size(), pushed + 20));
    QCOMPARE(output.slot().report().droppedFrames, qint64(pushed + 20 - framesBefore - numbers.size()));
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
    Janitor janitor;
    QTest::ignoreMessage(QtWarningMsg, "a bitrate of 0 kbit/s is out of range, taking 256");
    const std::unique_ptr<OutputSlot> output = createOutputSlot(request, janitor);
    QVERIFY(output != nullptr);
    QVERIFY(feedFrames(*output, pool, 0, 10));
    output->finish();
    QVERIFY(output->waitFinished(kFinishMs));
    const QString file = output->report().fileName;
    QVERIFY2(QRegularExpression("^/a-b_\\d\\d-\\d\\d-\\d\\d/\\d\\d_\\d\\d_\\d\\d\\.mov$")
                 .match(file.mid(folder.path().size()))
                 .hasMatch(),
             qPrintable(file));
    const VideoVerdict verdict = VideoJudge::judge(file);
    QCOMPARE(verdict.stream["width"].toInt(), 320);
    QCOMPARE(verdict.stream["height"].toInt(), 180);
    QCOMPARE(verdict.frames, 10);
  }

  void factoryHasNoOtherOutputs() {
    Janitor janitor;
    OutputRequest request;
    request.slot = OutputSlotStream;
    QTest::ignoreMessage(QtWarningMsg, "no target of the output is enabled");
    QVERIFY(!createOutputSlot(request, janitor));
    request.slot = 7;
    QTest::ignoreMessage(QtWarningMsg, "there is no output 7");
    QVERIFY(!createOutputSlot(request, janitor));
  }
};

QTEST_GUILESS_MAIN(TestRecordOutput)
#include "tst_record_output.moc"
