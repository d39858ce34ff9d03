// Segments and their list, as players read them.
#include "StreamRig.h"
#include "engine/output/stream/HlsTarget.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

struct ListedSegment {
  QByteArray name;
  double seconds = 0;
};

QVector<ListedSegment> segmentsIn(const QByteArray& list) {
  QVector<ListedSegment> segments;
  double seconds = 0;
  for (const QByteArray& line : list.split('\n')) {
    if (line.startsWith("#EXTINF:"))
      seconds = line.mid(8).split(',')[0].toDouble();
    else if (!line.isEmpty() && !line.startsWith('#'))
      segments.append({line, seconds});
  }
  return segments;
}

}  // namespace

class HlsTargetTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<QTemporaryDir> folder_;

  HlsSettings settings() const {
    HlsSettings settings;
    settings.folder = folder_->filePath("hls");
    settings.segmentSeconds = 1;
    settings.listedSegments = 3;
    settings.retry.firstMs = 200;
    settings.retry.longestMs = 200;
    return settings;
  }
  /// Empty as long as there is none.
  QByteArray list() const {
    QFile file(folder_->filePath("hls/index.m3u8"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
  }
  bool waitForSegments(int count) const {
    return QTest::qWaitFor([&] { return segmentsIn(list()).size() >= count; }, 15'000);
  }

 private slots:
  void init() { folder_ = std::make_unique<QTemporaryDir>(); }

  void segmentsBeginWithKeyFrames_data() {
    QTest::addColumn<bool>("anywhere");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("tolerance");
    QTest::newRow("a key frame is asked for") << true << 1.0 << 0.5;
    QTest::newRow("regular key frames") << false << 2.0 << 0.001;
  }
  void segmentsBeginWithKeyFrames() {
    QFETCH(bool, anywhere);
    QFETCH(double, seconds);
    QFETCH(double, tolerance);
    HlsSettings settings = this->settings();
    settings.split = anywhere ? HlsSettings::Split::Anywhere : HlsSettings::Split::AtKeyFrame;
    LiveSlot live({std::make_shared<HlsTarget>(settings)});
    QVERIFY(waitForSegments(2));
    QCOMPARE(live.report().name, QString("HLS"));
    QCOMPARE(live.report().state, KorviaShowTargetState::Up);
    for (const ListedSegment& segment : segmentsIn(list())) {
      QVERIFY2(std::abs(segment.seconds - seconds) <= tolerance,
               qPrintable(QString::number(segment.seconds)));
      const VideoVerdict verdict = VideoJudge::judge(settings.folder + '/' + segment.name);
      QCOMPARE(verdict.keyFrames.value(0, -1), 0);
      QCOMPARE(verdict.frames, qRound(segment.seconds * 25));
    }
  }

  void playersReadOnOverTheSeams() {
    const HlsSettings settings = this->settings();
    {
      LiveSlot live({std::make_shared<HlsTarget>(settings)});
      QVERIFY(waitForSegments(3));
      live.stop();
      live.slot().finish();
      QVERIFY(live.slot().waitFinished(5000));
    }
    // The finished list plays from the disk without gaps.
    const QString fileName = folder_->filePath("hls/index.m3u8");
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray list = file.readAll();
    QVERIFY(list.endsWith("#EXT-X-ENDLIST\n"));
    const VideoVerdict verdict = VideoJudge::judge(fileName);
    double seconds = 0;
    for (const ListedSegment& segment : segmentsIn(list))
      seconds += segment.seconds;
    QCOMPARE(verdict.frames, qRound(seconds * 25));
    for (int i = 1; i < verdict.pts.size(); ++i)
      QVERIFY(std::abs(verdict.pts[i] - verdict.pts[i - 1] - 0.04) < 0.001);
  }

  void settingsComeFromTheRecord() {
    OutputRequest request;
    request.slot = OutputSlotStream;
    tagKorviaShowOutputItem& item = request.param.items[OutputSlotStream];
    item.hlsTemporaryFolder = settings().folder;
    item.hlsSegmentLength = 2;
    item.hlsSegmentNumber = 1;
    QVERIFY(!HlsTarget::create(request));
    item.hlsEnable = 1;
    // The record's own fields of the recording's item mean nothing.
    request.slot = OutputSlotRecord;
    request.param.items[OutputSlotRecord].hlsEnable = 1;
    QVERIFY(!HlsTarget::create(request));
    request.slot = OutputSlotStream;
    LiveSlot live({std::shared_ptr<Target>(HlsTarget::create(request))});
    const QDir folder(settings().folder);
    const auto written = [&] { return folder.entryList({"segment-*.ts"}, QDir::Files).size(); };
    QVERIFY(QTest::qWaitFor([&] { return written() >= 2; }, 15'000));
    const QVector<ListedSegment> listed = segmentsIn(list());
    QCOMPARE(listed.size(), 1);
    QVERIFY2(std::abs(listed[0].seconds - 2) < 0.5, qPrintable(QString::number(listed[0].seconds)));
  }

  void aFolderThatIsRemovedIsMadeAgain() {
    const HlsSettings settings = this->settings();
    LiveSlot live({std::make_shared<HlsTarget>(settings)});
    QVERIFY(waitForSegments(1));
    QVERIFY(QDir(settings.folder).removeRecursively());
    QVERIFY(live.waitFor(KorviaShowTargetState::Lost));
    QCOMPARE(live.report().reason, QString("the segments cannot be written"));
    QVERIFY(waitForSegments(1));
    for (const ListedSegment& segment : segmentsIn(list()))
      QVERIFY(QFile::exists(settings.folder + '/' + segment.name));
  }

  void aFolderThatCannotBeMadeIsTriedAgain() {
    const HlsSettings settings = this->settings();
    QFile file(settings.folder);
    QVERIFY(file.open(QIODevice::WriteOnly));
    LiveSlot live({std::make_shared<HlsTarget>(settings)});
    QVERIFY(live.waitFor(KorviaShowTargetState::Lost));
    QCOMPARE(live.report().reason, QString("the folder cannot be made"));
    QVERIFY(file.remove());
    QVERIFY(live.waitFor(KorviaShowTargetState::Up));
  }
};

QTEST_GUILESS_MAIN(HlsTargetTest)
#include "tst_hls_target.moc"
