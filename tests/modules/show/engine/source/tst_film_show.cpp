// A film with a beep through the whole engine: meters, the console's sink, and a recording in which ffmpeg
// finds picture and sound together.
#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <cstring>

#include "../audio/MixerRig.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "engine/SoftwareBackend.h"
#include "support/VideoJudge.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowOutputParam.h"
#include "tagKorviaWindowInfo.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 180;
constexpr int kTickMs = 40;
// The picture of the film with which its beep begins; the beep lasts a tenth of a second.
constexpr int kBeepPicture = 25;
constexpr double kHalfBeepSeconds = 0.05;

/// The time of the first frame that shows the number; -1 when none does.
double secondsOfPicture(const QByteArray& luma, int number) {
  constexpr int kBits = 16;
  for (int frame = 0; (frame + 1) * kWidth * kHeight <= luma.size(); ++frame) {
    const char* row = luma.constData() + (frame * kHeight + kHeight / 10) * kWidth;
    int found = 0;
    for (int bit = 0; bit < kBits; ++bit)
      found |= static_cast<std::uint8_t>(row[bit * kWidth / kBits + kWidth / kBits / 2]) > 125 ? 1 << bit : 0;
    if (found == number)
      return frame / 25.0;
  }
  return -1;
}

/// The middle of the energy of the left side.
double secondsOfBeep(const QString& fileName) {
  QProcess ffmpeg;
  ffmpeg.start("ffmpeg", {"-nostdin", "-v", "error", "-i", fileName, "-map", "0:a", "-af",
                          "aresample=async=1:first_pts=0", "-ac", "2", "-f", "f32le", "-"});
  ffmpeg.waitForFinished(60'000);
  const QByteArray bytes = ffmpeg.readAllStandardOutput();
  double energy = 0;
  double moment = 0;
  for (int at = 0; at + 8 <= bytes.size(); at += 8) {
    float left = 0;
    std::memcpy(&left, bytes.constData() + at, sizeof left);
    const double square = double{left} * double{left};
    energy += square;
    moment += square * at / 8;
  }
  return energy > 0 ? moment / energy / kSampleRate : -1;
}

}  // namespace

class FilmShowTest : public QObject {
  Q_OBJECT

 private slots:
  void aBeepIsMeteredAndRecordedWithItsPicture() {
    QTemporaryDir folder;
    MixerHost host;
    host.keepPieces = true;
    SoftwareBackend backend;
    backend.begin(host);
    const auto post = [&backend](quint64 id, const QVariant& a1 = {}, const QVariant& a2 = {},
                                 const QVariant& a3 = {}, const QVariant& a4 = {}) {
      backend.handleEvent({id, {a1, a2, a3, a4}});
    };
    tagKorviaShowEngineInfo info;
    info.format.width = kWidth;
    info.format.height = kHeight;
    post(ShowEventOpen, toVariant(info), toVariant(tagKorviaShowWindowPackInfo()));
    post(ShowEventSelectChannel, PGMObject, int(MediaChannel));
    tagKorviaShowOutputParam output;
    output.items[OutputSlotRecord].recordPath = folder.path() + '/';
    output.items[OutputSlotRecord].recordNameFormat = "beep";
    tagKorviaFormatInfo format;
    format.video.width = kWidth;
    format.video.height = kHeight;
    post(ShowEventStartOutput, OutputSlotRecord, toVariant(output), "show", toVariant(format));
    tagKorviaShowSourceInfo film;
    film.kind = SourceKindMovie;
    film.moviePath = QStringLiteral(MEDIA_DIR "/beep_aac.mp4");
    QVERIFY(backend.openSource(SourceObject, film, format, nullptr));

    QElapsedTimer clock;
    clock.start();
    float channelLevel = 0;
    float programLevel = 0;
    // The film of two seconds begins within a second; it loops, so the recording ends before its second beep.
    int ticksAfterBeep = 0;
    for (qint64 frame = 1; frame < 250 && ticksAfterBeep < 15; ++frame) {
      backend.frameStep({frame, 0});
      tagKorviaShowAudioLevel levels;
      backend.getAudioLevel(levels);
      channelLevel = std::max(channelLevel, levels.channel(0).left);
      programLevel = std::max(programLevel, levels.pgm().right);
      ticksAfterBeep += channelLevel > 50 ? 1 : 0;
      QTest::qWait(static_cast<int>(std::max<qint64>(0, frame * kTickMs - clock.elapsed())));
    }
    post(ShowEventStopOutput, OutputSlotRecord, OutputKindRecord);
    tagKorviaShowEngineFigures figures;
    QTRY_VERIFY_WITH_TIMEOUT((backend.getFigures(figures),
                              figures.outputs[OutputSlotRecord].state == KorviaShowOutputState::Finished),
                             20'000);
    const QString fileName = figures.outputs[OutputSlotRecord].fileName;
    backend.end();

    // The beep has half of full scale, -6 dBFS.
    QVERIFY2(std::abs(channelLevel - 90) < 2, QByteArray::number(double(channelLevel)));
    QVERIFY2(std::abs(programLevel - 90) < 2, QByteArray::number(double(programLevel)));
    QVERIFY(!host.pieces.empty());
    QCOMPARE(host.pieces.front().object, int(MediaChannel));
    const double picture = secondsOfPicture(VideoJudge::decodeLuma(fileName), kBeepPicture);
    const double beep = secondsOfBeep(fileName) - kHalfBeepSeconds;
    QVERIFY2(picture > 0 && beep > 0, qPrintable(QString("%1 %2").arg(picture).arg(beep)));
    // The delay of the limiter is counted off.
    const double lateMs = (beep - picture) * 1000;
    QVERIFY2(std::abs(lateMs) < 1, QByteArray::number(lateMs));
  }
};

QTEST_GUILESS_MAIN(FilmShowTest)
#include "tst_film_show.moc"
