#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QtTest>
#include <algorithm>
#include <cmath>
#include <vector>

#include "DemoPicture.h"
#include "DemoSound.h"
#include "Mp4Times.h"

namespace {

QString outputOf(const QString& program, const QStringList& arguments) {
  QProcess process;
  process.start(program, arguments, QIODevice::ReadOnly);
  if (!process.waitForFinished(60000) || process.exitCode() != 0) {
    return QStringLiteral("%1 : %2").arg(process.errorString(),
                                         QString::fromUtf8(process.readAllStandardError()));
  }
  return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

// The share of a 1 kHz tone in the left channel of one millisecond, as its amplitude.
double kilohertzLevel(const float* interleaved) {
  double re = 0.0;
  double im = 0.0;
  for (int n = 0; n < 48; ++n) {
    re += interleaved[n * 2] * std::cos(2.0 * M_PI * n / 48);
    im += interleaved[n * 2] * std::sin(2.0 * M_PI * n / 48);
  }
  return std::hypot(re, im) / 24;
}

QByteArray box(const char* type, const QByteArray& body) {
  QByteArray result(4, '\0');
  result[3] = static_cast<char>(8 + body.size());
  return result + type + body;
}

}  // namespace

class TestDemoClip : public QObject {
  Q_OBJECT

 private slots:
  void flashIsOnForTheFirstTwoFramesOfEachSecond_data() {
    QTest::addColumn<int>("variant");
    QTest::addColumn<QPoint>("middle");
    QTest::newRow("film 1") << 1 << QPoint(185, 175);
    QTest::newRow("film 2") << 2 << QPoint(1735, 125);
  }

  void flashIsOnForTheFirstTwoFramesOfEachSecond() {
    QFETCH(int, variant);
    QFETCH(QPoint, middle);
    korvia::DemoPicture picture(variant);
    QCOMPARE(picture.draw(0).size(), QSize(1920, 1080));
    const QRgb white = 0xffffffff;
    const QRgb dark = 0xff080c14;
    QCOMPARE(picture.draw(0).pixel(middle), white);
    QCOMPARE(picture.draw(1).pixel(middle), white);
    QCOMPARE(picture.draw(2).pixel(middle), dark);
    QCOMPARE(picture.draw(24).pixel(middle), dark);
    QCOMPARE(picture.draw(25).pixel(middle), white);
    QCOMPARE(picture.draw(476).pixel(middle), white);
    QCOMPARE(picture.draw(499).pixel(middle), dark);
  }

  void framesDependOnTheirNumberAlone() {
    korvia::DemoPicture first(1);
    korvia::DemoPicture second(1);
    first.draw(17);
    QCOMPARE(first.draw(130), second.draw(130));
    QVERIFY(first.draw(131) != second.draw(130));
    QVERIFY(korvia::DemoPicture(2).draw(130) != second.draw(130));
  }

  void beepLastsTwoFramesFromTheFullSecond() {
    const korvia::DemoSound sound(1);
    const std::vector<float> part = sound.samples(3 * 48000 - 4800, 2 * 4800 + 4800);
    const auto at = [&part](int sampleOfSecond) { return part.data() + (sampleOfSecond + 4800) * 2; };
    QVERIFY(kilohertzLevel(at(-48)) < 0.02);
    QVERIFY(kilohertzLevel(at(48)) > 0.22);
    QVERIFY(kilohertzLevel(at(3744)) > 0.22);
    QVERIFY(kilohertzLevel(at(3840)) < 0.02);
  }

  void soundNeverClipsAndTheLoopHasNoStep() {
    for (int variant = 1; variant <= 2; ++variant) {
      const korvia::DemoSound sound(variant);
      const std::vector<float> all = sound.samples(0, 20 * 48000);
      QCOMPARE(all.size(), std::size_t{1920000});
      const float loudest = std::abs(*std::max_element(
          all.begin(), all.end(), [](float a, float b) { return std::abs(a) < std::abs(b); }));
      QVERIFY(loudest > 0.2F && loudest < 0.6F);
      QVERIFY(std::abs(all.front()) < 0.001F);
      QVERIFY(std::abs(all.back()) < 0.001F);
    }
  }

  void timesOfAnMp4AreCleared() {
    const QByteArray version0("\0\0\0\0", 4);
    const QByteArray version1("\1\0\0\0", 4);
    QByteArray file =
        box("ftyp", "isom") + box("moov", box("mvhd", version0 + "CREAMODIrest") +
                                              box("trak", box("tkhd", version1 + "CREATIONMODIFIEDrest")));
    const QByteArray expected =
        box("ftyp", "isom") +
        box("moov", box("mvhd", version0 + QByteArray(8, '\0') + "rest") +
                        box("trak", box("tkhd", version1 + QByteArray(16, '\0') + "rest")));
    korvia::clearMp4Times(file);
    QCOMPARE(file, expected);
  }

  void brokenMp4IsLeftAlone_data() {
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("text") << QByteArray("this is no film at all");
    QTest::newRow("length 0") << QByteArray("\0\0\0\0moov", 8);
    QTest::newRow("cut off") << box("mvhd", QByteArray(30, 'x')).left(20);
    QTest::newRow("too short for times") << box("mvhd", "1234567");
  }

  void brokenMp4IsLeftAlone() {
    QFETCH(QByteArray, file);
    QByteArray touched = file;
    korvia::clearMp4Times(touched);
    QCOMPARE(touched, file);
  }

  void builtFilmIsWhatItClaims_data() {
    QTest::addColumn<QString>("path");
    QTest::newRow("film 1") << QStringLiteral(DEMO_DIR "/demo.mp4");
    QTest::newRow("film 2") << QStringLiteral(DEMO_DIR "/demo2.mp4");
  }

  void builtFilmIsWhatItClaims() {
    QFETCH(QString, path);
    const QStringList quiet{QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-of"),
                            QStringLiteral("csv=p=0")};
    QVERIFY(QFileInfo(path).size() > 500'000);
    QVERIFY(QFileInfo(path).size() <= 3'000'000);
    QCOMPARE(outputOf(QStringLiteral("ffprobe"),
                      quiet + QStringList{"-select_streams", "v", "-count_frames", "-show_entries",
                                          "stream=codec_name,profile,width,height,pix_fmt,color_range,"
                                          "color_space,color_transfer,color_primaries,r_frame_rate,"
                                          "start_time,duration,nb_read_frames",
                                          path}),
             QStringLiteral("h264,High,1920,1080,yuv420p,tv,bt709,bt709,bt709,25/1,0.000000,20.000000,500"));
    QCOMPARE(
        outputOf(
            QStringLiteral("ffprobe"),
            quiet + QStringList{"-select_streams", "a", "-show_entries",
                                "stream=codec_name,profile,sample_rate,channels,start_time,duration", path}),
        QStringLiteral("aac,LC,48000,2,0.000000,20.000000"));

    // The index stands before the pictures, so that a player can start while the rest is on its way.
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QVERIFY(bytes.indexOf("moov") > 0);
    QVERIFY(bytes.indexOf("moov") < bytes.indexOf("mdat"));
  }

  void beepOfTheBuiltFilmIsOnTheFlash() {
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"),
                 {"-v", "error", "-i", QStringLiteral(DEMO_DIR "/demo.mp4"), "-f", "f32le", "-ac", "2", "-"},
                 QIODevice::ReadOnly);
    QVERIFY(ffmpeg.waitForFinished(60000));
    const QByteArray bytes = ffmpeg.readAllStandardOutput();
    std::vector<float> sound(static_cast<std::size_t>(bytes.size()) / sizeof(float));
    std::copy_n(bytes.constData(), sound.size() * sizeof(float), reinterpret_cast<char*>(sound.data()));
    QVERIFY(sound.size() >= 2 * 959'000);
    for (int second = 1; second < 20; ++second) {
      int begin = second * 48000 - 2400;
      while (begin < second * 48000 + 2400 && kilohertzLevel(&sound[std::size_t(begin) * 2]) < 0.125) {
        ++begin;
      }
      // Half the level is reached half way through a window that straddles the beginning.
      const int offBySamples = begin + 24 - second * 48000;
      QVERIFY2(std::abs(offBySamples) <= 48, qPrintable(QString::number(offBySamples)));
    }
  }
};

QTEST_MAIN(TestDemoClip)
#include "tst_demo_clip.moc"
