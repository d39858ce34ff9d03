// A list of films of different codecs and sizes, played twice round into a recording: ffmpeg finds every
// picture once and in its order.
#include <QTemporaryDir>
#include <QtTest>

#include "../output/RecordRig.h"
#include "SourceRig.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};
constexpr int kPicturesOfAFilm = 50;
constexpr int kFinishMs = 12'000;

QString clip(const char* name) {
  return QStringLiteral(MEDIA_DIR "/") + QLatin1String(name);
}

/// The numbers of the numbered clips, as ffmpeg decodes them.
std::vector<int> numbersOfClips(const QByteArray& luma) {
  constexpr int kBytes = kSize.width * kSize.height;
  std::vector<int> numbers;
  for (int at = 0; at + kBytes <= luma.size(); at += kBytes) {
    const char* row = luma.constData() + at + kSize.height / 10 * kSize.width;
    constexpr int kBlock = kSize.width / kNumberBits;
    int number = 0;
    for (int bit = 0; bit < kNumberBits; ++bit)
      number |= static_cast<std::uint8_t>(row[bit * kBlock + kBlock / 2]) > 125 ? 1 << bit : 0;
    numbers.push_back(number);
  }
  return numbers;
}

}  // namespace

class RecordedListTest : public QObject {
  Q_OBJECT

 private slots:
  void everyPictureOfThreeFilmsIsRecordedOnce() {
    QTemporaryDir folder;
    RecordingSettings settings;
    settings.file.folder = folder.path();
    settings.file.name = QStringLiteral("list");
    settings.encoder.label = QStringLiteral("the recording");
    settings.encoder.picture.size = kSize;
    settings.encoder.picture.kbps = 4000;
    settings.encoder.burstFrames = 5;
    SourceRig list(kSize);
    list.openFilmList({clip("clip25.mp4"), clip("second.mkv"), clip("third_hevc.mkv")});
    QVERIFY(list.tickUntil(Playing));
    // From the seam on, where the next picture is known.
    constexpr int kLast = 249;
    int shown = -1;
    for (int tick = 0; tick < 400 && shown != kLast; ++tick)
      shown = numberIn(list.tick());
    QCOMPARE(shown, kLast);

    Recording recording(settings);
    std::vector<int> expected;
    for (int round = 0; round < 2; ++round) {
      for (int first : {0, 100, 200}) {
        for (int i = 0; i < kPicturesOfAFilm; ++i) {
          expected.push_back(first + i);
          recording.pushFrame(list.tick());
          QVERIFY(waitForRoom(recording, static_cast<qint64>(expected.size()), 9));
        }
      }
    }
    recording.finish();
    QVERIFY(recording.waitFinished(kFinishMs));
    QByteArray complaints;
    const QByteArray luma = VideoJudge::decodeLuma(recording.fileName(), &complaints);
    QCOMPARE(complaints, QByteArray());
    QCOMPARE(numbersOfClips(luma), expected);
  }
};

QTEST_GUILESS_MAIN(RecordedListTest)
#include "tst_recorded_list.moc"
