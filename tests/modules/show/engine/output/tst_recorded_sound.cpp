// Sound in recordings, in every container: in step with the picture from the first to the last sample, as
// ffmpeg decodes it.
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>
#include <cmath>
#include <cstring>

#include "RecordRig.h"
#include "engine/output/SoundQueue.h"
#include "support/VideoJudge.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{320, 180};
constexpr int kFinishMs = 12'000;
constexpr int kFrames = 75;
constexpr int kFrameSamples = kSampleRate / 25;

/// A sweep from 200 Hz to 4 kHz over the recording, which is like itself at one place only.
float sweep(qint64 sample) {
  const double seconds = static_cast<double>(sample) / kSampleRate;
  return static_cast<float>(0.4 * std::sin(2 * M_PI * (200 * seconds + 3'800 / 6.0 * seconds * seconds)));
}

/// The sound of frame `index`, the right side half as loud.
struct FrameSound {
  explicit FrameSound(qint64 index) {
    for (int i = 0; i < kFrameSamples; ++i) {
      left[static_cast<std::size_t>(i)] = sweep(index * kFrameSamples + i);
      right[static_cast<std::size_t>(i)] = left[static_cast<std::size_t>(i)] / 2;
    }
  }
  StereoSpan span() { return {left.data(), right.data(), kFrameSamples}; }

  std::array<float, kFrameSamples> left;
  std::array<float, kFrameSamples> right;
};

/// Both sides, interleaved, from time 0 of the file on; with the filter "anull" from the first packet on.
std::vector<float> decodeSound(const QString& fileName,
                               const QString& filter = "aresample=async=1:first_pts=0") {
  QProcess ffmpeg;
  ffmpeg.start("ffmpeg", {"-nostdin", "-v", "error", "-i", fileName, "-map", "0:a", "-af", filter, "-ac", "2",
                          "-f", "f32le", "-"});
  ffmpeg.waitForFinished(60'000);
  const QByteArray bytes = ffmpeg.readAllStandardOutput();
  std::vector<float> samples(static_cast<std::size_t>(bytes.size()) / sizeof(float));
  std::memcpy(samples.data(), bytes.constData(), samples.size() * sizeof(float));
  return samples;
}

/// The time of the first packet of the first stream of a kind, "v" or "a", in seconds.
double startOf(const QString& fileName, const char* kind) {
  QProcess ffprobe;
  ffprobe.start("ffprobe", {"-v", "error", "-select_streams", QString("%1:0").arg(kind), "-show_entries",
                            "stream=start_time", "-of", "default=nw=1:nk=1", fileName});
  ffprobe.waitForFinished(60'000);
  return ffprobe.readAllStandardOutput().trimmed().split('\n').front().toDouble();
}

/// Times of the packets of sound, in seconds.
QVector<double> soundPackets(const QString& fileName) {
  QProcess ffprobe;
  ffprobe.start("ffprobe", {"-v", "error", "-select_streams", "a:0", "-show_entries", "packet=pts_time",
                            "-of", "csv=p=0", fileName});
  ffprobe.waitForFinished(60'000);
  QVector<double> times;
  for (const QByteArray& line : ffprobe.readAllStandardOutput().split('\n')) {
    if (!line.trimmed().isEmpty())
      times.append(line.split(',').front().toDouble());
  }
  return times;
}

/// By how many samples the sound lies behind its time, found where it is most like the sweep. The file begins
/// with sample `first` of the sweep.
int delayAt(const std::vector<float>& decoded, qint64 place, qint64 first = 0) {
  constexpr int kCompared = 2'400;
  constexpr int kFarthest = 1'200;
  double best = 0;
  int delay = kFarthest + 1;
  for (int lag = -kFarthest; lag <= kFarthest; ++lag) {
    double likeness = 0;
    for (int i = 0; i < kCompared; ++i) {
      const auto at = static_cast<std::size_t>(2 * (place + i + lag));
      likeness += at < decoded.size() ? decoded[at] * sweep(first + place + i) : 0;
    }
    if (likeness > best) {
      best = likeness;
      delay = lag;
    }
  }
  return delay;
}

double loudest(const std::vector<float>& decoded, std::size_t side) {
  double most = 0;
  for (std::size_t i = 2 * kSampleRate + side; i + 2 < decoded.size() && i < 4 * kSampleRate; i += 2)
    most = std::max<double>(most, std::abs(decoded[i]));
  return most;
}

RecordingSettings settingsFor(const QTemporaryDir& folder, int encapsulation) {
  RecordingSettings settings;
  settings.file.folder = folder.path();
  settings.file.name = QStringLiteral("sound");
  settings.file.container = RecordContainer::of(encapsulation);
  settings.encoder.label = QStringLiteral("the recording");
  settings.encoder.picture.size = kSize;
  settings.encoder.soundKbps = 128;
  settings.encoder.burstFrames = 5;
  return settings;
}

/// Of interleaved stereo.
double secondsOf(const std::vector<float>& sound) {
  const std::size_t samples = sound.size() / 2;
  return static_cast<double>(samples) / kSampleRate;
}

}  // namespace

class RecordedSoundTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { gst_init(nullptr, nullptr); }

  void soundIsInStepInEveryContainer_data() {
    QTest::addColumn<int>("encapsulation");
    QTest::newRow("ts") << int(EncapsulationTs);
    QTest::newRow("flv") << int(EncapsulationFlv);
    QTest::newRow("mp4") << int(EncapsulationMp4);
    QTest::newRow("mkv") << int(EncapsulationMkv);
    QTest::newRow("mov") << int(EncapsulationMov);
  }
  void soundIsInStepInEveryContainer() {
    QFETCH(int, encapsulation);
    QTemporaryDir folder;
    Recording recording(settingsFor(folder, encapsulation));
    FramePool pool(kSize);
    for (int i = 0; i < kFrames; ++i) {
      recording.pushFrame(patternFrame(pool, i));
      FrameSound sound(i);
      recording.slot().encoder()->pushSound(sound.span());
      QVERIFY(waitForRoom(recording, i + 1, 15));
    }
    recording.finish();
    QVERIFY(recording.waitFinished(kFinishMs));
    const VideoVerdict verdict = VideoJudge::judge(recording.fileName());
    QCOMPARE(verdict.frames, kFrames);

    const std::vector<float> decoded = decodeSound(recording.fileName());
    QVERIFY(std::abs(startOf(recording.fileName(), "v") - startOf(recording.fileName(), "a")) < 0.001);
    for (qint64 place : {4'800, 72'000, 130'000})
      QVERIFY2(std::abs(delayAt(decoded, place)) <= 1, qPrintable(QString::number(delayAt(decoded, place))));
    // The end of the sound is within a frame of the end of the picture.
    const double seconds = secondsOf(decoded);
    QVERIFY2(std::abs(seconds - kFrames / 25.0) <= 0.04, qPrintable(QString::number(seconds)));
    QVERIFY(std::abs(loudest(decoded, 0) - 0.4) < 0.05);
    QVERIFY(std::abs(loudest(decoded, 1) - 0.2) < 0.03);
  }

  void soundOfOneThatSharesAnEncoderIsInStep_data() { soundIsInStepInEveryContainer_data(); }
  void soundOfOneThatSharesAnEncoderIsInStep() {
    QFETCH(int, encapsulation);
    // The second one begins after the first and ends before it.
    constexpr int kFirst = 10;
    constexpr int kEnd = 60;
    QTemporaryDir folder;
    const RecordingSettings settings = settingsFor(folder, encapsulation);
    Recording first(settings);
    Janitor janitor;
    const auto file = std::make_shared<FileTarget>(settings.file);
    std::unique_ptr<OutputSlot> second;
    FramePool pool(kSize);
    for (int i = 0; i < kFrames; ++i) {
      if (i == kFirst)
        second = std::make_unique<OutputSlot>(settings.encoder, OutputSlot::Targets{file}, janitor,
                                              first.slot().encoder());
      if (i == kEnd)
        second->finish();
      first.pushFrame(patternFrame(pool, i));
      FrameSound sound(i);
      first.slot().encoder()->pushSound(sound.span());
      QVERIFY(waitForRoom(first, i + 1, 15));
    }
    QVERIFY(second->waitFinished(kFinishMs));
    first.finish();
    QVERIFY(first.waitFinished(kFinishMs));

    QCOMPARE(VideoJudge::judge(file->fileName()).frames, kEnd - kFirst);
    const double lead = startOf(file->fileName(), "a") - startOf(file->fileName(), "v");
    QVERIFY2(lead > -0.001 && lead < 0.022, qPrintable(QString::number(lead)));
    const std::vector<float> decoded = decodeSound(file->fileName(), "anull");
    const qint64 begin = kFirst * kFrameSamples + std::llround(lead * kSampleRate);
    for (qint64 place : {9'600, 48'000, 81'600})
      QVERIFY2(std::abs(delayAt(decoded, place, begin)) <= 48,
               qPrintable(QString::number(delayAt(decoded, place, begin))));
    const double seconds = lead + secondsOf(decoded);
    QVERIFY2(std::abs(seconds - (kEnd - kFirst) / 25.0) <= 0.04, qPrintable(QString::number(seconds)));
    QCOMPARE(VideoJudge::judge(first.fileName()).frames, kFrames);
    const std::vector<float> whole = decodeSound(first.fileName());
    for (qint64 place : {4'800, 72'000, 130'000})
      QVERIFY(std::abs(delayAt(whole, place)) <= 1);
  }

  void filesFollowOneAnotherWithoutAGap_data() { soundIsInStepInEveryContainer_data(); }
  void filesFollowOneAnotherWithoutAGap() {
    QFETCH(int, encapsulation);
    constexpr int kPartFrames = 50;  // a key frame comes every 2 s
    constexpr int kAllFrames = 130;
    constexpr double kPacketSeconds = 1024.0 / kSampleRate;
    QTemporaryDir folder;
    RecordingSettings settings = settingsFor(folder, encapsulation);
    settings.file.cutNs = 2'000'000'000;
    int part = 1;
    settings.file.nextName = [&part] { return QStringLiteral("part/%1").arg(++part); };
    {
      Recording recording(settings);
      FramePool pool(kSize);
      for (int i = 0; i < kAllFrames; ++i) {
        recording.pushFrame(patternFrame(pool, i));
        FrameSound sound(i);
        recording.slot().encoder()->pushSound(sound.span());
        QVERIFY(waitForRoom(recording, i + 1, 15));
      }
      recording.finish();
      QVERIFY(recording.waitFinished(kFinishMs));
      QCOMPARE(recording.slot().report().writtenMs, qint64(kAllFrames * 40));
      QVERIFY(recording.fileName().contains("/part/3."));
    }
    const QString suffix = QLatin1String(settings.file.container.suffix);
    double soundEnd = 0;
    QVector<int> numbers;
    for (int i = 0; i < 3; ++i) {
      const QString file =
          folder.filePath(i == 0 ? "sound." + suffix : QString("part/%1.%2").arg(i + 1).arg(suffix));
      numbers += numbersIn(VideoJudge::decodeLuma(file), kSize);
      const QVector<double> packets = soundPackets(file);
      const double start = i * kPartFrames / 25.0;
      const double soundStart = start + packets.first() - startOf(file, "v");
      // Stamps of mkv and flv are rounded to milliseconds, those of both tracks.
      if (i > 0)
        QVERIFY2(std::abs(soundStart - soundEnd) < 0.0015, qPrintable(QString::number(soundEnd)));
      soundEnd = soundStart + packets.last() - packets.first() + kPacketSeconds;
      const int delay = delayAt(decodeSound(file, "anull"), 9'600, std::llround(soundStart * kSampleRate));
      QVERIFY2(std::abs(delay) <= 48, qPrintable(QString::number(delay)));
    }
    QCOMPARE(numbers, countTo(kAllFrames));
    QVERIFY(std::abs(soundEnd - kAllFrames / 25.0) < 0.04);
  }

  // Still pictures and silence make packets of equal sizes, which the index of a fragment abbreviates.
  void unfinishedFileOfSilencePlays_data() { soundIsInStepInEveryContainer_data(); }
  void unfinishedFileOfSilencePlays() {
    QFETCH(int, encapsulation);
    QTemporaryDir folder;
    Recording recording(settingsFor(folder, encapsulation));
    FramePool pool(kSize);
    std::vector<float> silence(kFrameSamples);
    for (int i = 0; i < 2 * kFrames; ++i) {
      // Now and then it moves, so that not all packets have the same size.
      recording.pushFrame(patternFrame(pool, i / 40));
      FrameSound sound(i);
      recording.slot().encoder()->pushSound(
          i % 40 < 3 ? sound.span() : StereoSpan{silence.data(), silence.data(), kFrameSamples});
      QVERIFY(waitForRoom(recording, i + 1, 15));
    }
    const QString copy = folder.filePath("copy");
    const auto framesInCopy = [&] {
      QFile::remove(copy);
      return QFile::copy(recording.fileName(), copy) ? VideoJudge::judge(copy).frames : 0;
    };
    // The newest frames may still be on their way.
    QVERIFY(QTest::qWaitFor([&] { return framesInCopy() >= 2 * kFrames - 45; }, kFinishMs));
  }

  void aGapIsSilenceAndKeepsTheTime() {
    QTemporaryDir folder;
    Recording recording(settingsFor(folder, EncapsulationMkv));
    FramePool pool(kSize);
    // The engine stalls for more than the queue holds: what is left out must not move what comes after it.
    for (int i = 0; i < kFrames; ++i) {
      recording.pushFrame(patternFrame(pool, i));
      std::vector<float> silence(2 * kSampleRate);
      FrameSound sound(i);
      if (i == 20)
        recording.slot().encoder()->pushSound({silence.data(), silence.data(), kFrameSamples * 30});
      else if (i < 20 || i >= 50)
        recording.slot().encoder()->pushSound(sound.span());
      QVERIFY(waitForRoom(recording, i + 1, 45));
    }
    recording.finish();
    QVERIFY(recording.waitFinished(kFinishMs));
    const std::vector<float> decoded = decodeSound(recording.fileName());
    for (qint64 place : {4'800, 110'000})
      QVERIFY2(std::abs(delayAt(decoded, place)) <= 1, qPrintable(QString::number(delayAt(decoded, place))));
  }

  void soundThatComesLateIsPutInItsPlace() {
    QTemporaryDir folder;
    RecordingSettings settings = settingsFor(folder, EncapsulationMkv);
    settings.encoder.soundDelaySamples = kFrameSamples + 100;
    Recording recording(settings);
    FramePool pool(kSize);
    std::vector<float> late(kFrameSamples + 100);
    for (int i = 0; i < kFrames; ++i) {
      recording.pushFrame(patternFrame(pool, i));
      FrameSound sound(i);
      late.insert(late.end(), sound.left.begin(), sound.left.end());
      recording.slot().encoder()->pushSound({late.data(), late.data(), kFrameSamples});
      late.erase(late.begin(), late.begin() + kFrameSamples);
      QVERIFY(waitForRoom(recording, i + 1, 15));
    }
    recording.finish();
    QVERIFY(recording.waitFinished(kFinishMs));
    const std::vector<float> decoded = decodeSound(recording.fileName());
    for (qint64 place : {4'800, 110'000})
      QVERIFY2(std::abs(delayAt(decoded, place)) <= 1, qPrintable(QString::number(delayAt(decoded, place))));
  }

  void theQueueLeavesOutWhatDoesNotFit() {
    SoundQueue queue(10);
    std::vector<float> left{1, 2, 3, 4, 5, 6, 7};
    std::vector<float> right{-1, -2, -3, -4, -5, -6, -7};
    const StereoSpan seven{left.data(), right.data(), 7};
    QVERIFY(queue.push(seven, 100));
    QVERIFY(!queue.push(seven, 107));
    // What follows on the gap has to wait until the reader has seen it.
    QVERIFY(!queue.push(seven.part(0, 2), 114));
    QVERIFY(queue.push(seven.part(0, 2), 107));
    std::vector<float> out;
    QCOMPARE(queue.popAll(out), qint64{100});
    QCOMPARE(out, (std::vector<float>{1, -1, 2, -2, 3, -3, 4, -4, 5, -5, 6, -6, 7, -7, 1, -1, 2, -2}));
    QVERIFY(queue.push(seven.part(3, 4), 116));
    QCOMPARE(queue.popAll(out), qint64{116});
    QCOMPARE(out, (std::vector<float>{4, -4, 5, -5, 6, -6, 7, -7}));
  }
};

QTEST_GUILESS_MAIN(RecordedSoundTest)
#include "tst_recorded_sound.moc"
