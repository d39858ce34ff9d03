// Program carried to a device of another clock, in simulated time: what the device shows and plays.
#include <QtTest>
#include <cmath>
#include <random>
#include <unordered_map>
#include <vector>

#include "../../audio/ToneCheck.h"
#include "DeviceRig.h"
#include "engine/audio/Limiter.h"
#include "engine/output/device/ProgramPacer.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr FrameSize kSize{16, 16};
constexpr double kSecondNs = 1e9;
constexpr double kToneHz = 1000;

struct Clocks {
  FrameRate show;
  FrameRate device;
  double devicePpm = 0;  ///< how much faster the device runs
  double jitterNs = 0;   ///< of both sides
};

/// What a device has shown and played.
struct Seen {
  QVector<int> numbers;     ///< of the frames; -1 for none
  QVector<double> samples;  ///< the number of the sample that is played with the beginning of each picture
  int silentPictures = 0;   ///< after the first sound
  std::vector<float> tone;  ///< without its beginning
};

/// Runs both clocks. The left side of program tells the number of each sample, the right side is a tone.
class Simulation {
 public:
  explicit Simulation(const Clocks& clocks) : clocks_(clocks), pacer_(clocks.show, clocks.device) {
    pacer_.begin();
  }

  ProgramPacer& pacer() { return pacer_; }
  const Seen& seen() const { return seen_; }

  /// The show pauses between `stallAt` and `stallEnd`, and makes up for it at once.
  void run(double seconds, double stallAt = -1, double stallEnd = -1) {
    const double end = seconds * kSecondNs;
    double nextPush = 0;
    double nextPull = 0;
    std::mt19937 random(1);
    std::uniform_real_distribution<> jitter(0, clocks_.jitterNs);
    while (std::min(nextPush, nextPull) < end) {
      if (nextPush <= nextPull) {
        push(nextPush);
        double due = static_cast<double>(clocks_.show.nsOf(pushed_));
        if (due > stallAt * kSecondNs && due < stallEnd * kSecondNs)
          due = stallEnd * kSecondNs;
        nextPush = std::max(nextPush, due + jitter(random));
      } else {
        pull(nextPull);
        const double due = static_cast<double>(clocks_.device.nsOf(pulled_)) / (1 + clocks_.devicePpm * 1e-6);
        nextPull = std::max(nextPull, due + jitter(random));
      }
    }
  }

 private:
  void push(double nowNs) {
    const auto count = static_cast<int>(clocks_.show.samplesIn(pushed_, 1, kSampleRate));
    const StereoSpan sound = block_.span(count);
    for (int i = 0; i < count; ++i) {
      sound.left[i] = static_cast<float>(samples_ + i) / kScale;
      sound.right[i] = tone(kToneHz, static_cast<double>(samples_ + i));
    }
    samples_ += count;
    pacer_.pushSound(sound, static_cast<qint64>(nowNs));
    pacer_.pushFrame(frameOf(pushed_));
    ++pushed_;
  }
  void pull(double nowNs) {
    const auto count = static_cast<int>(clocks_.device.samplesIn(pulled_++, 1, kSampleRate));
    const StereoSpan sound = block_.span(count);
    const FrameRef frame = pacer_.pull(sound, static_cast<qint64>(nowNs));
    seen_.numbers.append(frame ? numbers_.at(frame.get()) : -1);
    const bool silent = sound.left[count - 1] == 0;
    if (silent)
      seen_.silentPictures += seen_.samples.isEmpty() || seen_.samples.last() < 0 ? 0 : 1;
    seen_.samples.append(silent ? -1 : static_cast<double>(sound.left[0]) * kScale);
    if (heard_ > kSampleRate)
      seen_.tone.insert(seen_.tone.end(), sound.right, sound.right + count);
    heard_ += silent ? 0 : count;
  }
  FrameRef frameOf(qint64 number) {
    auto* frame = new Frame(kSize);
    frames_.append(FrameRef::adopt(frame));
    numbers_[frame] = static_cast<int>(number);
    return frames_.last();
  }

  static constexpr float kScale = 8'388'608;  // more samples than a test has

  const Clocks clocks_;
  ProgramPacer pacer_;
  Seen seen_;
  StereoBlock block_;
  qint64 pushed_ = 0;
  qint64 pulled_ = 0;
  qint64 samples_ = 0;
  qint64 heard_ = 0;
  QVector<FrameRef> frames_;  // so that no address is used twice
  std::unordered_map<const Frame*, int> numbers_;
};

}  // namespace

class ProgramPacerTest : public QObject {
  Q_OBJECT

 private:
  /// The picture belongs to the sound that is played with it, within so many frames of the show.
  static void verifyTogether(const Seen& seen, FrameRate show, double mostFrames) {
    const double frame = kSampleRate / show.framesPerSecond();
    int count = 0;
    for (int i = 25; i < seen.numbers.size(); ++i) {
      if (seen.samples[i] < 0 || seen.numbers[i] < 0)
        continue;
      const double picture = (seen.samples[i] - Limiter::kLatencySamples) / frame - seen.numbers[i];
      QVERIFY2(std::abs(picture) < mostFrames, qPrintable(QString("%1 at picture %2").arg(picture).arg(i)));
      ++count;
    }
    QVERIFY(count > 100);
  }

 private slots:
  void aCardOfAnotherClockRepeatsAndLosesSinglePictures_data() {
    QTest::addColumn<double>("ppm");
    QTest::addColumn<double>("jitterMs");
    QTest::newRow("the same clock, jitter") << 0.0 << 15.0;
    QTest::newRow("fast") << 200.0 << 0.0;
    QTest::newRow("fast, jitter") << 200.0 << 15.0;
    QTest::newRow("slow, jitter") << -200.0 << 15.0;
  }
  void aCardOfAnotherClockRepeatsAndLosesSinglePictures() {
    QFETCH(double, ppm);
    QFETCH(double, jitterMs);
    constexpr double kSeconds = 170;
    constexpr FrameRate kRate{50, 1};
    Simulation simulation({kRate, kRate, ppm, jitterMs * 1e6});
    simulation.run(kSeconds);
    const Seen& seen = simulation.seen();
    int repeats = 0;
    int losses = 0;
    for (int i = 25; i < seen.numbers.size(); ++i) {
      const int step = seen.numbers[i] - seen.numbers[i - 1];
      QVERIFY2(step >= 0 && step <= 2, qPrintable(QString("%1 at %2").arg(step).arg(i)));
      repeats += step == 0 ? 1 : 0;
      losses += step == 2 ? 1 : 0;
    }
    const double drifted = kSeconds * ppm * 1e-6 * kRate.framesPerSecond();
    QVERIFY2(std::abs(repeats - losses - drifted) <= 1.5,
             qPrintable(QString("%1 repeated, %2 lost").arg(repeats).arg(losses)));
    QVERIFY(repeats == 0 || losses == 0 || jitterMs > 0);
    QVERIFY(repeats + losses <= std::abs(drifted) + 2);
    QCOMPARE(seen.silentPictures, 0);
    QCOMPARE(simulation.pacer().soundFigures().underruns, qint64(0));
    QCOMPARE(simulation.pacer().soundFigures().overruns, qint64(0));
    QCOMPARE(simulation.pacer().droppedFrames(), qint64(0));
    const double rough = roughness(seen.tone, kToneHz);
    QVERIFY2(rough < 0.005, qPrintable(QString::number(rough)));
    verifyTogether(seen, kRate, 0.8);
  }

  void anotherRateRepeatsOrLeavesOutByTime_data() {
    QTest::addColumn<int>("show");
    QTest::addColumn<int>("device");
    QTest::addColumn<int>("denominator");
    QTest::newRow("25 to 50") << 25 << 50 << 1;
    QTest::newRow("50 to 25") << 50 << 25 << 1;
    QTest::newRow("25 to 29.97") << 25 << 30000 << 1001;
    QTest::newRow("60 to 23.98") << 60 << 24000 << 1001;
  }
  void anotherRateRepeatsOrLeavesOutByTime() {
    QFETCH(int, show);
    QFETCH(int, device);
    QFETCH(int, denominator);
    const FrameRate showRate{show, 1};
    const FrameRate deviceRate{device, denominator};
    Simulation simulation({showRate, deviceRate, 0, 5e6});
    simulation.run(60);
    const Seen& seen = simulation.seen();
    const double ratio = showRate.framesPerSecond() / deviceRate.framesPerSecond();
    for (int i = 26; i < seen.numbers.size(); ++i) {
      const int step = seen.numbers[i] - seen.numbers[i - 1];
      QVERIFY2(step >= static_cast<int>(std::floor(ratio)) && step <= static_cast<int>(std::ceil(ratio)),
               qPrintable(QString("%1 at %2").arg(step).arg(i)));
    }
    const double mean =
        static_cast<double>(seen.numbers.last() - seen.numbers[25]) / (seen.numbers.size() - 26);
    QVERIFY(std::abs(mean - ratio) < 0.01);
    QCOMPARE(seen.silentPictures, 0);
    // The frames of the show do not begin with the pictures of the device.
    verifyTogether(seen, showRate, 1.3);
  }

  void aStallOfTheShowHoldsThePictureAndGoesOn() {
    Simulation simulation({{25, 1}, {25, 1}, 0, 0});
    simulation.run(30, 10, 10.5);
    const Seen& seen = simulation.seen();
    int held = 0;
    for (int i = 25; i < seen.numbers.size(); ++i) {
      QVERIFY(seen.numbers[i] >= seen.numbers[i - 1]);
      held += seen.numbers[i] == seen.numbers[i - 1] ? 1 : 0;
    }
    QVERIFY(held > 5);
    QVERIFY(held < 25);
    QVERIFY(seen.numbers.last() >= 29 * 25);
  }

  void aDeviceThatPausesLosesItsOwnFrames() {
    constexpr FrameRate kRate{25, 1};
    ProgramPacer pacer(kRate, kRate);
    StereoBlock block;
    const FrameRef frame = numberedFrame(kSize, 1);
    // Nobody wants frames yet.
    for (int i = 0; i < 100; ++i)
      pacer.pushFrame(frame);
    QCOMPARE(pacer.droppedFrames(), qint64(0));
    QVERIFY(!pacer.newest());
    pacer.begin();
    for (int i = 0; i < 100; ++i) {
      const StereoSpan sound = block.span(1920);
      pacer.pushSound(sound, i * 40'000'000LL);
      pacer.pushFrame(frame);
    }
    QVERIFY(pacer.droppedFrames() > 80);
    pacer.end();
    QVERIFY(!pacer.newest());
  }
};

QTEST_GUILESS_MAIN(ProgramPacerTest)
#include "tst_program_pacer.moc"
