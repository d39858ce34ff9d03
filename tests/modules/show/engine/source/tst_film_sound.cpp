// The sound of films, tick by tick beside their pictures.
#include "SoundRig.h"

#include <QFile>
#include <QTemporaryDir>

#include "engine/audio/GainRamp.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kTick = SoundRig::kTickSamples;
constexpr int kMs = kSampleRate / 1000;
constexpr int kLastAacBlock = 1024;
constexpr int kFade = GainRamp::kSamples;
// Between two samples of a tone of 1 kHz and of amplitude 0.5 are 0.066 at most; a fade adds a little.
constexpr float kToneStep = 0.075F;

QString clip(const char* name) {
  return QStringLiteral(MEDIA_DIR "/") + QLatin1String(name);
}

// Transport streams of ffmpeg.
constexpr int kPacket = 188;
constexpr int kPicturePid = 0x100;
constexpr int kSoundPid = 0x101;

int pidAt(const QByteArray& stream, int packet) {
  return (stream[packet + 1] & 0x1F) << 8 | (stream[packet + 2] & 0xFF);
}

QString write(const QTemporaryDir& folder, const char* name, const QByteArray& bytes) {
  QFile file(folder.filePath(QLatin1String(name)));
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName() : QString();
}

float largestStep(const Sound& sound) {
  float most = 0;
  for (std::size_t i = 1; i < sound.left.size(); ++i)
    most = std::max(most, std::abs(sound.left[i] - sound.left[i - 1]));
  return most;
}

/// The longest run of silence in the sound, in samples. Not in the first tick, which may show the first
/// picture before the film plays.
int longestSilence(const Sound& sound) {
  int longest = 0;
  int length = 0;
  for (std::size_t i = kTick; i < sound.left.size(); ++i) {
    length = std::abs(sound.left[i]) < 0.001F ? length + 1 : 0;
    longest = std::max(longest, length);
  }
  return longest;
}

double levelOf(const std::vector<float>& samples, double hz, int first, int count) {
  return std::abs(toneIn(samples, hz, first, count));
}

}  // namespace

class tst_film_sound : public QObject {
  Q_OBJECT

 private slots:
  void beepComesWithItsPicture_data();
  void beepComesWithItsPicture();
  void channelsAreMixedDown_data();
  void channelsAreMixedDown();
  void loopHasNoSeam_data();
  void loopHasNoSeam();
  void listHasNoSeam();
  void soundShorterThanThePicture();
  void soundBeginsLate();
  void gapIsSilence();
  void defaultSoundIsTaken();
  void filmWithoutSoundIsSilent();
  void buttonsFade();
  void holdFades();
  void seekFades();
  void beepIsInPlaceAfterALoopAndASeek_data();
  void beepIsInPlaceAfterALoopAndASeek();
  void filmFarFromItsSoundPlays_data();
  void filmFarFromItsSoundPlays();
  void brokenSoundLeavesThePicture();
  void unknownSoundLeavesThePicture();
  void rateOfTheShowDoesNotBendTheSound();
  void figuresTellOfTheSound();
  void closesAtAnyMoment();
};

void tst_film_sound::beepComesWithItsPicture_data() {
  QTest::addColumn<QString>("file");
  for (const char* file : {"beep_pcm.mov", "beep_aac.mp4", "beep_aac.ts", "beep_aac.mkv", "beep_mp3.mp4",
                           "beep_mp2.ts", "beep_opus.mkv", "beep_vorbis.mkv", "beep_flac.mkv", "beep_ac3.mkv",
                           "beep_44100.mp4", "beep_22050.mov"})
    QTest::newRow(file) << QString(file);
}

// The encoders' priming must not delay the sound, so the beep lies within a millisecond of its picture.
void tst_film_sound::beepComesWithItsPicture() {
  QFETCH(QString, file);
  SoundRig rig;
  rig.openFilm(clip(qUtf8Printable(file)), EndActionStop);
  QVERIFY(rig.begin());
  rig.soundTicks(40);
  const int picture = rig.sampleOfPicture(25);
  QVERIFY2(picture >= 0, text(QVector<int>(rig.numbers().begin(), rig.numbers().end())));
  const int from = picture - 10 * kTick;
  const int count = 18 * kTick;
  for (const auto* side : {&rig.sound().left, &rig.sound().right}) {
    const double middle = middleOf(*side, from, count) - picture;
    QVERIFY2(std::abs(middle - 50 * kMs) < kMs, QByteArray::number(middle / kMs));
    QVERIFY2(std::abs(peakOf(*side, from, count) - 0.5F) < 0.1F,
             QByteArray::number(double(peakOf(*side, from, count))));
    QVERIFY(peakOf(*side, picture - 8 * kTick, 7 * kTick) < 0.001F);
  }
}

void tst_film_sound::channelsAreMixedDown_data() {
  QTest::addColumn<QString>("file");
  QTest::addColumn<QVector<double>>("left");
  QTest::addColumn<QVector<double>>("right");
  const double k3Db = std::sqrt(0.5);
  QTest::newRow("mono") << "mono.mov" << QVector<double>{1} << QVector<double>{1};
  QTest::newRow("stereo") << "stereo.mkv" << QVector<double>{1, 0} << QVector<double>{0, 1};
  // In ffmpeg's order: L R C LFE Ls Rs, and L R C LFE Lb Rb Ls Rs.
  const QVector<double> left51{1, 0, k3Db, 0, k3Db, 0};
  const QVector<double> right51{0, 1, k3Db, 0, 0, k3Db};
  QTest::newRow("5.1") << "surround51.mkv" << left51 << right51;
  QTest::newRow("5.1 in aac") << "surround51.mp4" << left51 << right51;
  QTest::newRow("7.1") << "surround71.mkv" << QVector<double>{1, 0, k3Db, 0, k3Db, 0, k3Db, 0}
                       << QVector<double>{0, 1, k3Db, 0, 0, k3Db, 0, k3Db};
}

void tst_film_sound::channelsAreMixedDown() {
  QFETCH(QString, file);
  QFETCH(QVector<double>, left);
  QFETCH(QVector<double>, right);
  SoundRig rig;
  rig.openFilm(clip(qUtf8Printable(file)), EndActionStop);
  QVERIFY(rig.begin());
  rig.soundTicks(20);
  for (int channel = 0; channel < left.size(); ++channel) {
    const double hz = 400.0 * (channel + 1);
    const double onLeft = levelOf(rig.sound().left, hz, 5 * kTick, 10 * kTick);
    const double onRight = levelOf(rig.sound().right, hz, 5 * kTick, 10 * kTick);
    QVERIFY2(std::abs(onLeft - 0.1 * left[channel]) < 0.003, text({channel, qRound(onLeft * 1000)}));
    QVERIFY2(std::abs(onRight - 0.1 * right[channel]) < 0.003, text({channel, qRound(onRight * 1000)}));
  }
}

void tst_film_sound::loopHasNoSeam_data() {
  QTest::addColumn<QString>("file");
  QTest::addColumn<float>("step");
  QTest::addColumn<int>("silence");
  QTest::newRow("as long as the picture") << "tone.mov" << kToneStep << kMs;
  QTest::newRow("longer than the picture") << "tone_longer.mov" << kToneStep << kMs;
  // The encoder rings at the ends of the film, and GStreamer's demuxer leaves out the last block, of 21 ms.
  QTest::newRow("aac") << "tone_aac.mp4" << 0.1F << kLastAacBlock;
}

// The tone has whole periods in the second of the film, so it goes on as if there were no seam.
void tst_film_sound::loopHasNoSeam() {
  QFETCH(QString, file);
  QFETCH(float, step);
  QFETCH(int, silence);
  SoundRig rig;
  rig.openFilm(clip(qUtf8Printable(file)), EndActionLoop);
  QVERIFY(rig.begin());
  rig.soundTicks(100);
  QVERIFY(rig.sampleOfPicture(24) > 0);
  QVERIFY2(largestStep(rig.sound()) < step, QByteArray::number(double(largestStep(rig.sound()))));
  QVERIFY2(longestSilence(rig.sound()) < silence, QByteArray::number(longestSilence(rig.sound())));
  const auto first = toneIn(rig.sound().left, 1000, 12 * kTick, 10 * kTick);
  const auto later = toneIn(rig.sound().left, 1000, 87 * kTick, 10 * kTick);
  QVERIFY2(std::abs(first - later) < 0.02, QByteArray::number(std::abs(first - later)));
}

void tst_film_sound::listHasNoSeam() {
  SoundRig rig;
  rig.openFilmList({clip("tone.mov"), clip("tone_longer.mov"), clip("tone_aac.mp4")}, EndActionLoop);
  QVERIFY(rig.begin());
  rig.soundTicks(160);
  QVERIFY2(largestStep(rig.sound()) < 0.1F, QByteArray::number(double(largestStep(rig.sound()))));
  QVERIFY2(longestSilence(rig.sound()) < kLastAacBlock, QByteArray::number(longestSilence(rig.sound())));
}

void tst_film_sound::soundShorterThanThePicture() {
  SoundRig rig;
  rig.expectSilence();
  rig.openFilm(clip("tone_shorter.mov"), EndActionStop);
  QVERIFY(rig.begin());
  rig.soundTicks(23);
  QVERIFY(peakOf(rig.sound().left, 11 * kTick, kTick) > 0.49F);
  QCOMPARE(peakOf(rig.sound().left, kSampleRate / 2 + kMs, 8 * kTick), 0.0F);
  QVERIFY(largestStep(rig.sound()) < kToneStep);
  QVERIFY(rig.tickUntil(Ended));
}

void tst_film_sound::soundBeginsLate() {
  SoundRig rig;
  rig.expectSilence();
  rig.openFilm(clip("tone_late.mkv"), EndActionStop);
  QVERIFY(rig.begin());
  rig.soundTicks(23);
  QCOMPARE(rig.numbers().front(), 0);
  QCOMPARE(peakOf(rig.sound().left, 0, kSampleRate / 2 - kMs), 0.0F);
  QVERIFY(peakOf(rig.sound().left, kSampleRate / 2 + kFade, kTick) > 0.49F);
  QVERIFY(largestStep(rig.sound()) < kToneStep);
}

void tst_film_sound::gapIsSilence() {
  SoundRig rig;
  rig.expectSilence();
  rig.openFilm(clip("tone_gap.mkv"), EndActionStop);
  QVERIFY(rig.begin());
  rig.soundTicks(23);
  QVERIFY(peakOf(rig.sound().left, 5 * kTick, kTick) > 0.49F);
  QCOMPARE(peakOf(rig.sound().left, 9 * kTick, 5 * kTick), 0.0F);
  QVERIFY(peakOf(rig.sound().left, 18 * kTick, kTick) > 0.49F);
  QVERIFY(largestStep(rig.sound()) < kToneStep);
}

void tst_film_sound::defaultSoundIsTaken() {
  SoundRig rig;
  rig.openFilm(clip("two_sounds.mkv"), EndActionStop);
  QVERIFY(rig.begin());
  rig.soundTicks(20);
  QVERIFY(levelOf(rig.sound().left, 1000, 5 * kTick, 10 * kTick) < 0.001);
  QVERIFY(levelOf(rig.sound().left, 600, 5 * kTick, 10 * kTick) > 0.49);
}

void tst_film_sound::filmWithoutSoundIsSilent() {
  SoundRig rig;
  rig.expectSilence();
  rig.openFilm(clip("clip25.mp4"));
  QVERIFY(rig.begin());
  StereoSpan untouched = Sound().append(0);
  QVERIFY(!rig->pullSound(untouched));
  rig.soundTicks(5);
  QVERIFY(!rig.isSounding());
  QCOMPARE(rig->figures().samplesPerSecond, 0.0F);
}

void tst_film_sound::buttonsFade() {
  SoundRig rig;
  rig.openFilm(clip("tone_20s.mkv"));
  QVERIFY(rig.begin());
  rig.soundTicks(10);
  rig->pause();
  QTRY_COMPARE(rig->getPlayState(), int(Paused));
  rig.soundTicks(2);
  QVERIFY(!rig.isSounding());
  rig->play();
  QTRY_COMPARE(rig->getPlayState(), int(Playing));
  rig.soundTicks(5);
  QVERIFY(rig.isSounding());
  // Nothing is left out or repeated by the pause.
  const auto before = toneIn(rig.sound().left, 1000, 5 * kTick, 4 * kTick);
  const auto after = toneIn(rig.sound().left, 1000, 14 * kTick, 2 * kTick);
  QVERIFY(std::abs(before - after) < 0.01);
  rig->stop();
  QTRY_COMPARE(rig->getPlayState(), int(Stopped));
  rig.soundTicks(3);
  QVERIFY(!rig.isSounding());
  QVERIFY2(largestStep(rig.sound()) < kToneStep, QByteArray::number(double(largestStep(rig.sound()))));
}

void tst_film_sound::holdFades() {
  SoundRig rig;
  rig.openFilm(clip("tone_20s.mkv"));
  QVERIFY(rig.begin());
  rig.soundTicks(10);
  rig->setHold(true);
  rig.soundTicks(3);
  QVERIFY(!rig.isSounding());
  rig->setHold(false);
  rig.soundTicks(5);
  QVERIFY(rig.isSounding());
  QVERIFY(largestStep(rig.sound()) < kToneStep);
}

void tst_film_sound::seekFades() {
  SoundRig rig;
  rig.openFilm(clip("tone_20s.mkv"));
  QVERIFY(rig.begin());
  rig.soundTicks(10);
  for (const int percent : {50, 20, 90}) {
    rig->setPosition(percent);
    QVERIFY(rig.soundTicksUntilPicture(percent * 5));
    rig.soundTicks(3);
    QVERIFY(rig.isSounding());
  }
  QVERIFY2(largestStep(rig.sound()) < kToneStep, QByteArray::number(double(largestStep(rig.sound()))));
}

void tst_film_sound::beepIsInPlaceAfterALoopAndASeek_data() {
  QTest::addColumn<QString>("file");
  for (const char* file : {"beep_pcm.mov", "beep_aac.mp4", "beep_aac.mkv", "beep_opus.mkv", "beep_aac.ts"})
    QTest::newRow(file) << QString(file);
}

void tst_film_sound::beepIsInPlaceAfterALoopAndASeek() {
  QFETCH(QString, file);
  SoundRig rig;
  rig.openFilm(clip(qUtf8Printable(file)), EndActionLoop);
  QVERIFY(rig.begin());
  const auto beepIsInPlace = [&rig] {
    rig.forget();
    if (!rig.soundTicksUntilPicture(25))
      return false;
    const int picture = rig.sampleOfPicture(25);
    rig.soundTicks(6);
    const double middle = middleOf(rig.sound().left, picture - kTick, 5 * kTick) - picture;
    return std::abs(middle - 50 * kMs) < kMs;
  };
  QVERIFY(beepIsInPlace());
  QVERIFY(beepIsInPlace());
  rig->setPosition(30);
  QVERIFY(rig.soundTicksUntilPicture(15));
  QVERIFY(beepIsInPlace());
  QVERIFY(beepIsInPlace());
}

void tst_film_sound::filmFarFromItsSoundPlays_data() {
  QTest::addColumn<bool>("picturesFirst");
  QTest::newRow("all pictures before all sound") << true;
  QTest::newRow("all sound before all pictures") << false;
}

// A transport stream whose packets are put into another order.
void tst_film_sound::filmFarFromItsSoundPlays() {
  QFETCH(bool, picturesFirst);
  QFile original(clip("tone_2s.ts"));
  QVERIFY(original.open(QIODevice::ReadOnly));
  const QByteArray bytes = original.readAll();
  QByteArray tables;
  QByteArray pictures;
  QByteArray sound;
  for (int at = 0; at + kPacket <= bytes.size(); at += kPacket) {
    const int pid = pidAt(bytes, at);
    (pid == kPicturePid ? pictures : pid == kSoundPid ? sound : tables) += bytes.mid(at, kPacket);
  }
  QTemporaryDir folder;
  const QString path =
      write(folder, "reordered.ts",
            tables.left(3 * kPacket) + (picturesFirst ? pictures + sound : sound + pictures));
  SoundRig rig;
  rig.expectSilence();
  rig.openFilm(path, EndActionStop);
  QVERIFY(rig.begin());
  QVERIFY(rig.soundTicksUntilPicture(45));
  QVERIFY(rig.isSounding());
  const int from = rig.sampleOfPicture(30);
  QVERIFY(levelOf(rig.sound().left, 1000, from, 10 * kTick) > 0.45);
  QVERIFY(rig.tickUntil(Ended));
}

// Nothing but noise behind the headers of the packets of the sound.
void tst_film_sound::brokenSoundLeavesThePicture() {
  QFile original(clip("tone_2s.ts"));
  QVERIFY(original.open(QIODevice::ReadOnly));
  QByteArray bytes = original.readAll();
  for (int at = 0; at + kPacket <= bytes.size(); at += kPacket) {
    if (pidAt(bytes, at) != kSoundPid)
      continue;
    const bool begins = bytes[at + 1] & 0x40;
    const int header = bytes[at + 3] & 0x20 ? 5 + (bytes[at + 4] & 0xFF) : 4;
    for (int i = at + header + (begins ? 14 : 0); i < at + kPacket; ++i)
      bytes[i] = static_cast<char>(i * 7 & 0x7F);
  }
  QTemporaryDir folder;
  const QString path = write(folder, "broken.ts", bytes);
  WarningKeeper log;
  SoundRig rig;
  rig.expectSilence();
  rig.openFilm(path, EndActionStop);
  QVERIFY(rig.begin());
  QVERIFY(rig.soundTicksUntilPicture(45));
  QVERIFY(rig.tickUntil(Ended));
  QCOMPARE(log.lines().filter("sound does not play").size(), 1);
}

void tst_film_sound::unknownSoundLeavesThePicture() {
  QFile original(clip("beep_aac.mp4"));
  QVERIFY(original.open(QIODevice::ReadOnly));
  QByteArray bytes = original.readAll();
  bytes.replace("mp4a", "zzza");
  QTemporaryDir folder;
  const QString path = write(folder, "unknown.mp4", bytes);
  WarningKeeper log;
  SoundRig rig;
  rig.expectSilence();
  rig.openFilm(path, EndActionLoop);
  QVERIFY(rig.begin());
  QVERIFY(rig.soundTicksUntilPicture(49));
  // Around the loop too.
  QVERIFY(rig.soundTicksUntilPicture(25));
  QCOMPARE(log.lines().filter("sound does not play").size(), 1);
}

// Time is time: a film of 50 pictures a second shows each second one, and its sound is what it was.
void tst_film_sound::rateOfTheShowDoesNotBendTheSound() {
  SoundRig rig({320, 180}, 50);
  rig.openFilm(clip("tone_20s.mkv"));
  QVERIFY(rig.begin());
  Sound sound;
  for (int i = 0; i < 50; ++i) {
    rig.waitForSound();
    rig.tick();
    rig->pullSound(sound.append(kSampleRate / 50));
  }
  QVERIFY(levelOf(sound.left, 1000, kTick, 20 * kTick) > 0.49);
  sound.left.erase(sound.left.begin(), sound.left.begin() + kTick);
  QVERIFY(roughness(sound.left, 1000) < 0.001);
}

void tst_film_sound::figuresTellOfTheSound() {
  SoundRig rig;
  rig.openFilm(clip("tone_20s.mkv"));
  QVERIFY(rig.begin());
  // As fast as the show, since the rate is that of real time.
  const auto start = std::chrono::steady_clock::now();
  for (int i = 1; i <= 40; ++i) {
    rig.soundTick();
    QCOMPARE(rig->figures().videoAudioDriftMs, qint64(0));
    std::this_thread::sleep_until(start + i * std::chrono::milliseconds(40));
  }
  const float rate = rig->figures().samplesPerSecond;
  QVERIFY2(std::abs(rate - 48'000) < 4'800, QByteArray::number(double(rate)));
}

// While the decoders are looked for, while the first sound waits, and in play.
void tst_film_sound::closesAtAnyMoment() {
  for (int i = 0; i < 60; ++i) {
    SoundRig rig;
    rig.openFilm(clip(i % 2 ? "tone_2s.ts" : "tone_aac.mp4"));
    const auto until = std::chrono::steady_clock::now() + std::chrono::microseconds(i * 700);
    while (std::chrono::steady_clock::now() < until)
      rig->pullFrame(1);
  }
  QVERIFY(waitForClosedSources(10'000));
}

QTEST_GUILESS_MAIN(tst_film_sound)
#include "tst_film_sound.moc"
