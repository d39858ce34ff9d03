// What the console is told of its outputs, from the start to the end.
#include <QTcpServer>
#include <QTemporaryDir>
#include <QtTest>

#include "KorviaShowEvents.h"
#include "RecordRig.h"
#include "engine/output/OutputRack.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};

int freePort() {
  QTcpServer server;
  return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
}

class Host final : public IShowBackendHost {
 public:
  void postResult(quint64 id, const QVariant& a1, const QVariant& a2, const QVariant&,
                  const QVariant&) override {
    log << QString("%1 %2").arg(id).arg(a1.toInt());
    kinds << a2;
  }
  void setFrameRate(FrameRate) override {}
  IKorviaShowEngineSink* engineSink() override { return nullptr; }

  QStringList log;
  QList<QVariant> kinds;
};

}  // namespace

class OutputRackTest : public QObject {
  Q_OBJECT

 private:
  QTemporaryDir folder_;
  Host host_;
  Janitor janitor_;
  FramePool pool_{kSize};
  std::unique_ptr<OutputRack> rack_;
  int frames_ = 0;

  void record(const QString& path) {
    tagKorviaShowOutputParam param;
    param.items[OutputSlotRecord].recordPath = path;
    param.items[OutputSlotRecord].recordNameFormat = QStringLiteral("take");
    tagKorviaFormatInfo format;
    format.video.width = kSize.width;
    format.video.height = kSize.height;
    rack_->start(OutputSlotRecord, param, QStringLiteral("show"), format);
  }
  tagKorviaShowOutputReport report(int slot = OutputSlotRecord) const {
    return rack_->reports()[static_cast<std::size_t>(slot)];
  }
  void push(int count) {
    std::vector<float> silence(static_cast<std::size_t>(count) * kSampleRate / 25);
    rack_->push(patternFrame(pool_, frames_), count);
    rack_->pushSound({silence.data(), silence.data(), static_cast<int>(silence.size())});
    ++frames_;
  }
  bool pushUntil(KorviaShowOutputState state) {
    return QTest::qWaitFor(
        [&] {
          push(1);
          return report().state == state;
        },
        20'000);
  }

 private slots:
  void init() {
    host_.log.clear();
    host_.kinds.clear();
    rack_ = std::make_unique<OutputRack>(janitor_);
    rack_->setHost(&host_);
    rack_->open({kSize, {25, 1}});
  }
  void cleanup() { rack_.reset(); }

  void aRecordingRunsAndFinishes() {
    QCOMPARE(report().state, KorviaShowOutputState::Idle);
    record(folder_.path() + '/');
    QVERIFY(report().state == KorviaShowOutputState::Starting);
    QVERIFY(pushUntil(KorviaShowOutputState::Running));
    QVERIFY(rack_->isRunning(OutputSlotRecord));
    const QString fileName = report().fileName;
    QVERIFY(QFile::exists(fileName));
    rack_->stop(OutputSlotRecord, OutputKindRecord);
    QCOMPARE(report().fileName, fileName);
    QTRY_COMPARE_WITH_TIMEOUT(report().state, KorviaShowOutputState::Finished, 20'000);
    QCOMPARE(report().reason, QString());
    QCOMPARE(host_.log, (QStringList{"41 1", "42 1"}));
    QCOMPARE(host_.kinds.last().toInt(), int(OutputKindRecord));
  }

  void aFrameIsWrittenAsOftenAsItIsPushed() {
    // A late tick pushes the frame before it once for each missed one.
    record(folder_.path() + '/');
    frames_ = 0;
    const QVector<int> counts{1, 1, 4, 1, 0, 2, 7, 1};
    QVector<int> expected;
    for (const int count : counts) {
      expected += QVector<int>(count, frames_);
      push(count);
    }
    rack_->stop(OutputSlotRecord, OutputKindRecord);
    QTRY_COMPARE_WITH_TIMEOUT(report().state, KorviaShowOutputState::Finished, 20'000);
    QCOMPARE(report().droppedFrames, qint64(0));
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(report().fileName), kSize), expected);
    const VideoVerdict verdict = VideoJudge::judge(report().fileName);
    QVERIFY(areSpaced(verdict.pts, 0.04, countTo(expected.size())));
  }

  void aStreamBesideARecordingSharesItsEncoder() {
    record(folder_.path() + '/');
    frames_ = 0;
    for (int i = 0; i < 5; ++i)
      push(1);
    tagKorviaShowOutputParam param;
    param.items[OutputSlotStream].udpEnable = 1;
    param.items[OutputSlotStream].udpAddress = QStringLiteral("127.0.0.1");
    param.items[OutputSlotStream].udpPort = static_cast<quint16>(freePort());
    tagKorviaFormatInfo format;
    format.video.width = kSize.width;
    format.video.height = kSize.height;
    QTest::ignoreMessage(QtInfoMsg, "the stream shares the encoder of the recording");
    rack_->start(OutputSlotStream, param, {}, format);
    // At the pace of a show, since no frame may be dropped.
    const auto pushAtPace = [&] {
      QTest::qWait(40);
      push(1);
    };
    const auto isUp = [&] {
      pushAtPace();
      return report(OutputSlotStream).targets[0].state == KorviaShowTargetState::Up;
    };
    QVERIFY(QTest::qWaitFor(isUp, 20'000));
    rack_->stop(OutputSlotStream, OutputKindStream);
    const auto isFinished = [&] {
      pushAtPace();
      return report(OutputSlotStream).state == KorviaShowOutputState::Finished;
    };
    QVERIFY(QTest::qWaitFor(isFinished, 20'000));
    rack_->stop(OutputSlotRecord, OutputKindRecord);
    QTRY_COMPARE_WITH_TIMEOUT(report().state, KorviaShowOutputState::Finished, 20'000);
    // Each frame was pushed once.
    QCOMPARE(report().droppedFrames, qint64(0));
    QCOMPARE(numbersIn(VideoJudge::decodeLuma(report().fileName), kSize), countTo(frames_));
  }

  void statisticsAreThoseOfTheRunningOutput() {
    tagKorviaOutputStatistics statistics;
    rack_->statistics(statistics);
    QCOMPARE(statistics.blocks[OutputSlotRecord].record.bitrate, 0.0F);
    record(folder_.path() + '/');
    QVERIFY(pushUntil(KorviaShowOutputState::Running));
    // Each is measured over a second of its own.
    const auto hasRates = [&] {
      push(1);
      rack_->statistics(statistics);
      const auto& block = statistics.blocks[OutputSlotRecord];
      return block.record.bitrate > 0 && block.videoBitrate > 0 && block.videoFps > 0 &&
             block.audioRate > 0 && block.audioBitrate > 0 && block.encodeDelay > 0;
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasRates(), 20'000);
    const auto hasTypes = [&] {
      push(1);
      statistics = {};
      rack_->statistics(statistics);
      return QRegularExpression("^I [1-9]\\d*, P [1-9]\\d*$")
          .match(QString::fromLatin1(statistics.blocks[OutputSlotRecord].frameType.data()))
          .hasMatch();
    };
    QTRY_VERIFY_WITH_TIMEOUT(hasTypes(), 20'000);
    // Sound comes in pieces of 21 ms.
    QVERIFY(qAbs(statistics.blocks[OutputSlotRecord].videoAudioDrift) < 100);
    QCOMPARE(statistics.blocks[OutputSlotStream].videoBitrate, 0.0F);
    rack_->stop(OutputSlotRecord, OutputKindRecord);
    QTRY_COMPARE_WITH_TIMEOUT(report().state, KorviaShowOutputState::Finished, 20'000);
    QVERIFY(!rack_->isRunning(OutputSlotRecord));
  }

  void theRackMayGoBeforeItsOutputsHaveEnded() {
    record(folder_.path() + '/');
    QVERIFY(pushUntil(KorviaShowOutputState::Running));
    const QString fileName = report().fileName;
    const int pushed = std::exchange(frames_, 0);
    rack_->close();
    rack_.reset();
    // The janitor writes the end of the file; its own end waits for that.
    const auto isWhole = [&] { return VideoJudge::judge(fileName).frames > 0; };
    QTRY_VERIFY_WITH_TIMEOUT(isWhole(), 20'000);
    QVERIFY(VideoJudge::judge(fileName).frames <= pushed);
  }

  void aFolderThatCannotBeMadeIsAFailure() {
    QFile file(folder_.filePath("file"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    record(file.fileName() + "/below/");
    QVERIFY(pushUntil(KorviaShowOutputState::Failed));
    QVERIFY(!report().reason.isEmpty());
    // The failure stays told after the console has stopped it, until the next start.
    rack_->stop(OutputSlotRecord, OutputKindRecord);
    QCOMPARE(report().state, KorviaShowOutputState::Failed);
    record(folder_.path() + '/');
    QCOMPARE(report().state, KorviaShowOutputState::Starting);
    QCOMPARE(report().reason, QString());
  }

  void aLateEndDoesNotOverwriteTheNextStart() {
    record(folder_.path() + '/');
    QVERIFY(pushUntil(KorviaShowOutputState::Running));
    const QString first = report().fileName;
    record(folder_.path() + '/');
    QVERIFY(pushUntil(KorviaShowOutputState::Running));
    const QString second = report().fileName;
    QVERIFY(second != first);
    rack_->stop(OutputSlotRecord, OutputKindRecord);
    QTRY_COMPARE_WITH_TIMEOUT(report().state, KorviaShowOutputState::Finished, 20'000);
    QCOMPARE(report().fileName, second);
  }

  void aStreamHasNothingToSendTo() {
    rack_->start(OutputSlotStream, {}, {}, {});
    QCOMPARE(report(OutputSlotStream).state, KorviaShowOutputState::Failed);
    QCOMPARE(report(OutputSlotStream).reason, QString("no target of the output is enabled"));
    QCOMPARE(host_.log, QStringList{"41 0"});
  }

  void aStreamTellsOfEachTarget() {
    tagKorviaShowOutputParam param;
    tagKorviaShowOutputItem& item = param.items[OutputSlotStream];
    item.rtmp0Enable = item.rtmp1Enable = item.httpEnable = item.udpEnable = 1;
    item.rtmp0Url = QString("rtmp://127.0.0.1:%1/live/key").arg(freePort());  // nobody listens
    item.rtmp1Url = QStringLiteral("ftp://127.0.0.1/");
    item.httpPort = static_cast<quint16>(freePort());
    item.udpAddress = QStringLiteral("127.0.0.1");
    item.udpPort = static_cast<quint16>(freePort());
    tagKorviaFormatInfo format;
    format.video.width = kSize.width;
    format.video.height = kSize.height;
    rack_->start(OutputSlotStream, param, {}, format);
    const auto targets = [&] { return report(OutputSlotStream).targets; };
    const auto isAt = [&](int target, KorviaShowTargetState state) {
      return targets()[target].state == state;
    };
    tagKorviaOutputStatistics statistics;
    const auto hasSettled = [&] {
      push(1);
      rack_->statistics(statistics);
      const tagKorviaOutputStatisticsBlock& block = statistics.blocks[OutputSlotStream];
      return isAt(0, KorviaShowTargetState::Lost) && isAt(1, KorviaShowTargetState::Failed) &&
             isAt(2, KorviaShowTargetState::Up) && isAt(3, KorviaShowTargetState::Up) &&
             block.http.bitrate > 0 && block.udp.bitrate > 0;
    };
    QVERIFY(QTest::qWaitFor(hasSettled, 20'000));
    QStringList names;
    for (const tagKorviaShowTargetReport& target : targets())
      names << target.name;
    QCOMPARE(names, (QStringList{"RTMP Push - 0", "RTMP Push - 1", "HTTP", "UDP"}));
    // One that has failed and one that is lost leave the others alone.
    QCOMPARE(report(OutputSlotStream).state, KorviaShowOutputState::Running);
    QVERIFY(rack_->isRunning(OutputSlotStream));
    QCOMPARE(targets()[0].reason, QString("the server cannot be reached"));
    QVERIFY(!targets()[1].reason.isEmpty());
    QCOMPARE(targets()[2].reason, QString());
    const tagKorviaOutputStatisticsBlock& block = statistics.blocks[OutputSlotStream];
    QVERIFY(std::abs(block.http.bitrate - targets()[2].bitrate) < 0.5F * block.http.bitrate);
    QCOMPARE(block.rtmp[0].bitrate, 0.0F);
    QCOMPARE(block.hls.bitrate, 0.0F);
    QCOMPARE(statistics.blocks[OutputSlotRecord].http.bitrate, 0.0F);
    rack_->stop(OutputSlotStream, OutputKindStream);
    QTRY_COMPARE_WITH_TIMEOUT(report(OutputSlotStream).state, KorviaShowOutputState::Finished, 20'000);
    QCOMPARE(report(OutputSlotStream).reason, QString());
  }

  void aStreamThatIsLostStillRuns() {
    // A closed terminal may not end the program while a server is away for a moment.
    tagKorviaShowOutputParam param;
    param.items[OutputSlotStream].rtmp0Enable = 1;
    param.items[OutputSlotStream].rtmp0Url = QString("rtmp://127.0.0.1:%1/live/key").arg(freePort());
    rack_->start(OutputSlotStream, param, {}, {});
    const auto isLost = [&] {
      push(1);
      return report(OutputSlotStream).targets[0].state == KorviaShowTargetState::Lost;
    };
    QVERIFY(QTest::qWaitFor(isLost, 20'000));
    QVERIFY(rack_->isRunning(OutputSlotStream));
  }

  void aStreamWithoutAnyTargetLeftHasFailed() {
    tagKorviaShowOutputParam param;
    param.items[OutputSlotStream].rtmp0Enable = 1;
    param.items[OutputSlotStream].rtmp0Url = QStringLiteral("ftp://127.0.0.1/");
    rack_->start(OutputSlotStream, param, {}, {});
    QTRY_COMPARE_WITH_TIMEOUT(report(OutputSlotStream).state, KorviaShowOutputState::Failed, 20'000);
    QCOMPARE(report(OutputSlotStream).reason, QString("the address is not one of rtmp, rtmps or srt"));
  }

  void slotsThatDoNotExistAreAnsweredAndNothingElse() {
    rack_->start(7, {}, {}, {});
    rack_->stop(-1, OutputKindRecord);
    QCOMPARE(host_.log, (QStringList{"41 7", "42 -1"}));
  }

  void nothingStartsBeforeTheShowIsOpen() {
    rack_->close();
    QTest::ignoreMessage(QtWarningMsg, "no output starts before the show is open");
    record(folder_.path() + '/');
    QCOMPARE(report().state, KorviaShowOutputState::Idle);
    QCOMPARE(host_.log, QStringList{"41 1"});
  }
};

QTEST_GUILESS_MAIN(OutputRackTest)
#include "tst_output_rack.moc"
