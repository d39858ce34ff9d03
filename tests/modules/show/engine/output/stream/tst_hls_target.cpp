// Segments and their list over HTTP, as players ask for them.
#include "StreamRig.h"
#include "engine/output/stream/HlsTarget.h"
#include "engine/output/stream/HttpTarget.h"
#include "support/VideoJudge.h"
#include "support/http_exchange.h"

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

  HlsSettings settingsFor(int port) const {
    HlsSettings settings;
    settings.port = port;
    settings.path = QStringLiteral("/hls/0");
    settings.folder = folder_->filePath("hls");
    settings.segmentSeconds = 1;
    settings.listedSegments = 3;
    settings.retry.firstMs = 200;
    settings.retry.longestMs = 200;
    return settings;
  }
  /// Empty as long as there is none.
  static QByteArray listAt(int port) {
    const HttpReply reply = request(port, "GET", "/hls/0/index.m3u8");
    return reply.status == 200 ? reply.body : QByteArray();
  }
  static bool waitForSegments(int port, int count) {
    return QTest::qWaitFor([&] { return segmentsIn(listAt(port)).size() >= count; }, 15'000);
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
    HlsSettings settings = settingsFor(freePort());
    settings.split = anywhere ? HlsSettings::Split::Anywhere : HlsSettings::Split::AtKeyFrame;
    LiveSlot live({std::make_shared<HlsTarget>(settings)});
    QVERIFY(waitForSegments(settings.port, 2));
    QCOMPARE(live.report().name, QString("HLS"));
    QCOMPARE(live.report().state, KorviaShowTargetState::Up);
    for (const ListedSegment& segment : segmentsIn(listAt(settings.port))) {
      QVERIFY2(std::abs(segment.seconds - seconds) <= tolerance,
               qPrintable(QString::number(segment.seconds)));
      const HttpReply reply = request(settings.port, "GET", "/hls/0/" + segment.name);
      QCOMPARE(reply.status, 200);
      QFile file(folder_->filePath("segment.ts"));
      QVERIFY(file.open(QIODevice::WriteOnly));
      file.write(reply.body);
      file.close();
      const VideoVerdict verdict = VideoJudge::judge(file.fileName());
      QCOMPARE(verdict.keyFrames.value(0, -1), 0);
      QCOMPARE(verdict.frames, qRound(segment.seconds * 25));
    }
  }

  void playersReadOnOverTheSeams() {
    const HlsSettings settings = settingsFor(freePort());
    {
      LiveSlot live({std::make_shared<HlsTarget>(settings)});
      QVERIFY(waitForSegments(settings.port, 3));
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

  void sharesThePortWithTheLiveStream() {
    const HlsSettings settings = settingsFor(freePort());
    HttpSettings http;
    http.port = settings.port;
    http.path = QStringLiteral("/live/0");
    LiveSlot live({std::make_shared<HlsTarget>(settings), std::make_shared<HttpTarget>(http)});
    QVERIFY(waitForSegments(settings.port, 1));
    QVERIFY(live.waitFor(KorviaShowTargetState::Up, 5000, 1));
    QCOMPARE(request(settings.port, "HEAD", "/live/0").status, 200);
  }

  void nothingElseOfTheFolderIsServed() {
    const HlsSettings settings = settingsFor(freePort());
    LiveSlot live({std::make_shared<HlsTarget>(settings)});
    QVERIFY(waitForSegments(settings.port, 1));
    for (const char* name : {"secret.txt", "link.ts"}) {
      QFile file(folder_->filePath(name));
      QVERIFY(file.open(QIODevice::WriteOnly));
    }
    QVERIFY(QFile::copy(folder_->filePath("secret.txt"), settings.folder + "/secret.txt"));
    QVERIFY(QFile::link(folder_->filePath("link.ts"), settings.folder + "/link.ts"));
    for (const char* path : {"/hls/0/secret.txt", "/hls/0/link.ts", "/hls/0/../link.ts",
                             "/hls/0/%2e%2e/link.ts", "/hls/0/", "/hls/0", "/hls/0/none.ts"})
      QVERIFY2(request(settings.port, "GET", path).status == 404, path);
  }

  void aFolderThatIsRemovedIsMadeAgain() {
    const HlsSettings settings = settingsFor(freePort());
    LiveSlot live({std::make_shared<HlsTarget>(settings)});
    QVERIFY(waitForSegments(settings.port, 1));
    QVERIFY(QDir(settings.folder).removeRecursively());
    QVERIFY(live.waitFor(KorviaShowTargetState::Lost));
    QCOMPARE(live.report().reason, QString("the segments cannot be written"));
    QVERIFY(waitForSegments(settings.port, 1));
    for (const ListedSegment& segment : segmentsIn(listAt(settings.port)))
      QCOMPARE(request(settings.port, "HEAD", "/hls/0/" + segment.name).status, 200);
  }

  void aFolderThatCannotBeMadeIsTriedAgain() {
    const HlsSettings settings = settingsFor(freePort());
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
