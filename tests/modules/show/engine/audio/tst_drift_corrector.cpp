// Two clocks in simulated time: one pushes sound, the other pulls it, with jitter and outages.
#include <QtTest>
#include <functional>
#include <random>

#include "ToneCheck.h"
#include "engine/audio/DriftCorrector.h"
#include "engine/audio/DriftLoop.h"

using korvia::DriftCorrector;
using korvia::DriftLoop;
using korvia::kSampleRate;
using korvia::test::Sound;

namespace {

constexpr double kMs = 1e6;
constexpr double kSecond = 1e9;
constexpr int kTarget = 6000;

struct Side {
  int block = 1024;
  double ppm = 0;       // of its sample clock
  double jitterNs = 0;  // of its calls
};

/// Calls both sides in the order of time, each at the end of its blocks by its own clock.
class Simulation {
 public:
  using Call = std::function<void(std::int64_t nowNs)>;

  Simulation(const Side& pushes, const Side& pulls) : sides_{pushes, pulls} {}

  void run(double durationNs, const Call& push, const Call& pull) {
    endNs_ += durationNs;
    const Call* calls[] = {&push, &pull};
    for (;;) {
      const int side = callNs_[0] <= callNs_[1] ? 0 : 1;
      if (callNs_[side] > endNs_)
        return;
      (*calls[side])(static_cast<std::int64_t>(callNs_[side]));
      const Side& s = sides_[side];
      ++blocks_[side];
      const double perSample = kSecond / (kSampleRate * (1 + s.ppm * 1e-6));
      const double due = static_cast<double>(blocks_[side]) * s.block * perSample;
      // Calls do not overtake each other.
      callNs_[side] = std::max(callNs_[side], due + s.jitterNs * jitter_(random_));
    }
  }

 private:
  Side sides_[2];
  std::int64_t blocks_[2] = {0, 0};
  double callNs_[2] = {0, 0};
  double endNs_ = 0;
  std::mt19937 random_{1};
  std::uniform_real_distribution<> jitter_{0, 1};
};

}  // namespace

class tst_drift_corrector : public QObject {
  Q_OBJECT

 private slots:
  void keepsTheDelayForAnHour_data();
  void keepsTheDelayForAnHour();
  void changesAToneByNothingButItsPitch_data();
  void changesAToneByNothingButItsPitch();
  void beginsWhenTheDelayIsFilled();
  void fadesAtAnUnderrunAndBeginsAgain();
  void fadesAfterNobodyHasPulled();
  void setsALongDelayRightAtOnce();
  void takesPiecesOfAPullAsOne();
};

void tst_drift_corrector::keepsTheDelayForAnHour_data() {
  QTest::addColumn<double>("pushPpm");
  QTest::addColumn<double>("pullPpm");
  QTest::addColumn<int>("pushBlock");
  QTest::addColumn<int>("pullBlock");
  QTest::addColumn<double>("jitterMs");
  QTest::newRow("source 200 ppm fast") << 200.0 << 0.0 << 1024 << 1920 << 0.0;
  QTest::newRow("source 200 ppm slow") << -200.0 << 0.0 << 1024 << 1920 << 0.0;
  QTest::newRow("source with jitter") << 200.0 << 0.0 << 1024 << 1920 << 20.0;
  QTest::newRow("equal blocks") << 200.0 << 0.0 << 1920 << 1920 << 1.0;
  QTest::newRow("small blocks") << -30.0 << 0.0 << 96 << 1920 << 1.0;
  QTest::newRow("device 100 ppm fast") << 0.0 << 100.0 << 1920 << 256 << 3.0;
  QTest::newRow("device 100 ppm slow") << 0.0 << -100.0 << 1920 << 512 << 3.0;
}

void tst_drift_corrector::keepsTheDelayForAnHour() {
  QFETCH(double, pushPpm);
  QFETCH(double, pullPpm);
  QFETCH(int, pushBlock);
  QFETCH(int, pullBlock);
  QFETCH(double, jitterMs);
  Simulation simulation({pushBlock, pushPpm, jitterMs * kMs}, {pullBlock, pullPpm, jitterMs * kMs});
  DriftLoop loop(kTarget);
  std::int64_t written = 0;
  double position = -1;
  double speed = 1;
  double mostSpeedStep = 0;
  double mostError = 0;
  double mostErrorLater = 0;
  double trueDelay = 0;
  const auto push = [&](std::int64_t nowNs) {
    written += pushBlock;
    loop.push(written, nowNs);
  };
  const auto pull = [&](std::int64_t nowNs) {
    if (!loop.hasPushes())
      return;
    if (position < 0)
      position = loop.placeAt(nowNs);
    if (position < 0)
      return;
    const double before = speed;
    speed = loop.pull(pullBlock, position, nowNs);
    mostSpeedStep = std::max(mostSpeedStep, std::abs(speed - before));
    position += pullBlock * speed;
    const double seconds = static_cast<double>(nowNs) * 1e-9;
    // Undelayed, as in the simulation, and not as the loop has measured it.
    trueDelay = seconds * kSampleRate * (1 + pushPpm * 1e-6) + pushBlock - position;
    const double error = std::abs(loop.errorSamples());
    mostError = std::max(mostError, error);
    if (seconds > 120)
      mostErrorLater = std::max(mostErrorLater, error);
  };
  double leastDelay = 1e9;
  double mostDelay = 0;
  for (int minute = 0; minute < 60; ++minute) {
    simulation.run(60 * kSecond, push, pull);
    if (minute < 2)
      continue;
    leastDelay = std::min(leastDelay, trueDelay);
    mostDelay = std::max(mostDelay, trueDelay);
  }
  QVERIFY2(mostError < 1920, QByteArray::number(mostError));
  QVERIFY2(mostErrorLater < 48, QByteArray::number(mostErrorLater));
  // The delay of a moment moves by what the jitter of the pull moves it.
  QVERIFY2(mostDelay - leastDelay < 96 + jitterMs * 48 * 1.01, QByteArray::number(mostDelay - leastDelay));
  QVERIFY2(std::abs(loop.ppm() - (pushPpm - pullPpm)) < 3, QByteArray::number(loop.ppm()));
  QVERIFY2(mostSpeedStep < 1e-3, QByteArray::number(mostSpeedStep * 1e6));
}

void tst_drift_corrector::changesAToneByNothingButItsPitch_data() {
  QTest::addColumn<double>("ppm");
  QTest::newRow("200 ppm fast") << 200.0;
  QTest::newRow("200 ppm slow") << -200.0;
}

// A tone that is recorded by a fast clock comes out a little higher, by exactly the drift. Over a minute its
// phase goes on evenly and no sample stands out.
void tst_drift_corrector::changesAToneByNothingButItsPitch() {
  QFETCH(double, ppm);
  constexpr double kHz = 997;
  Simulation simulation({1024, ppm, 5 * kMs}, {1920, 0, 0});
  DriftCorrector corrector(kTarget);
  Sound sound;
  std::vector<float> packet(2 * 1024);
  std::int64_t made = 0;
  simulation.run(
      60 * kSecond,
      [&](std::int64_t nowNs) {
        for (std::size_t i = 0; i < 1024; ++i, ++made) {
          packet[2 * i] = korvia::test::tone(kHz, static_cast<double>(made));
          packet[2 * i + 1] = -packet[2 * i];
        }
        corrector.push(packet.data(), 1024, nowNs);
      },
      [&](std::int64_t nowNs) {
        if (!corrector.pull(sound.append(1920), nowNs))
          sound.left.resize(0), sound.right.resize(0);
      });
  QCOMPARE(corrector.figures().underruns, std::int64_t(0));
  QCOMPARE(corrector.figures().overruns, std::int64_t(0));
  QVERIFY(sound.samples() > 59 * kSampleRate);
  // Behind the fade at the beginning.
  sound.left.erase(sound.left.begin(), sound.left.begin() + 480);
  sound.right.erase(sound.right.begin(), sound.right.begin() + 480);
  const double rough = korvia::test::roughness(sound.left, kHz);
  QVERIFY2(rough < 1e-3, QByteArray::number(rough));
  for (std::size_t i = 0; i < sound.left.size(); i += 97)
    QCOMPARE(sound.right[i], -sound.left[i]);

  constexpr int kStep = kSampleRate / 10;
  double phase = 0;
  double lastStep = 0;
  for (int first = 0; first + kStep <= sound.samples(); first += kStep) {
    const std::complex<double> found = korvia::test::toneIn(sound.left, kHz, first, kStep);
    QVERIFY2(std::abs(std::abs(found) - 1) < 5e-3, QByteArray::number(std::abs(found)));
    const double step = std::remainder(std::arg(found) - phase, 2 * std::numbers::pi);
    phase = std::arg(found);
    // 0.1 rad in a tenth of a second are 0.16 Hz, a hundredth of a quarter tone.
    if (first > kStep)
      QVERIFY2(std::abs(step - lastStep) < 0.1, QByteArray::number(step - lastStep));
    lastStep = step;
  }
  const double pitchPpm = lastStep / (2 * std::numbers::pi * kHz * 0.1) * 1e6;
  QVERIFY2(std::abs(pitchPpm - ppm) < 30, QByteArray::number(pitchPpm));
  QVERIFY2(std::abs(corrector.ppm() - ppm) < 5, QByteArray::number(corrector.ppm()));
}

namespace {

/// Pushes a tone of 1 kHz in packets of 10 ms and pulls blocks of 10 ms, without drift.
class Line {
 public:
  static constexpr int kBlock = 480;

  void push(int packets = 1) {
    for (int p = 0; p < packets; ++p) {
      std::vector<float> packet;
      for (int i = 0; i < kBlock; ++i, ++made_)
        packet.insert(packet.end(), 2, korvia::test::tone(1000, made_));
      corrector.push(packet.data(), kBlock, nowNs());
    }
  }
  /// False for silence, which is appended too.
  bool pull() { return corrector.pull(sound.append(kBlock), nowNs()); }
  void pass(int blocks = 1) { blocks_ += blocks; }
  /// Pushes and pulls for so many blocks.
  void flow(int blocks) {
    for (int i = 0; i < blocks; ++i) {
      pass();
      push();
      pull();
    }
  }

  DriftCorrector corrector{2400};
  Sound sound;

 private:
  std::int64_t nowNs() const { return blocks_ * 10'000'000; }

  int made_ = 0;
  std::int64_t blocks_ = 0;
};

/// Between two neighbouring samples of the tone of 1 kHz are 0.13 at most, and a fade adds little.
bool isWithoutClick(const Sound& sound) {
  for (std::size_t i = 1; i < sound.left.size(); ++i) {
    if (std::abs(sound.left[i] - sound.left[i - 1]) > 0.14F)
      return false;
  }
  return true;
}

float loudest(const Sound& sound, int first, int count) {
  float most = 0;
  for (int i = first; i < first + count; ++i)
    most = std::max(most, std::abs(sound.left[static_cast<std::size_t>(i)]));
  return most;
}

}  // namespace

void tst_drift_corrector::beginsWhenTheDelayIsFilled() {
  Line line;
  QVERIFY(!line.pull());
  line.flow(4);
  // The samples that were pushed last at 50 ms leave 50 ms later.
  QCOMPARE(loudest(line.sound, 0, 5 * Line::kBlock), 0.0F);
  line.flow(20);
  QVERIFY(isWithoutClick(line.sound));
  QVERIFY(loudest(line.sound, 6 * Line::kBlock, Line::kBlock) > 0.99F);
  QVERIFY2(std::abs(line.corrector.figures().errorSamples) < 1,
           QByteArray::number(line.corrector.figures().errorSamples));
}

void tst_drift_corrector::fadesAtAnUnderrunAndBeginsAgain() {
  Line line;
  line.flow(20);
  for (int i = 0; i < 10; ++i) {
    line.pass();
    line.pull();
  }
  QVERIFY(!line.pull());
  QCOMPARE(line.corrector.figures().underruns, std::int64_t(1));
  const int resumed = line.sound.samples();
  line.flow(20);
  QVERIFY(isWithoutClick(line.sound));
  QCOMPARE(loudest(line.sound, resumed, 4 * Line::kBlock), 0.0F);
  QVERIFY(loudest(line.sound, resumed + 10 * Line::kBlock, Line::kBlock) > 0.99F);
  QCOMPARE(line.corrector.figures().underruns, std::int64_t(1));
  QVERIFY(std::abs(line.corrector.figures().errorSamples) < 1);
}

void tst_drift_corrector::fadesAfterNobodyHasPulled() {
  Line line;
  line.flow(20);
  for (int i = 0; i < 300; ++i) {
    line.pass();
    line.push();
  }
  QCOMPARE(line.corrector.figures().overruns, std::int64_t(1));
  line.flow(20);
  QVERIFY(isWithoutClick(line.sound));
  QVERIFY(loudest(line.sound, line.sound.samples() - Line::kBlock, Line::kBlock) > 0.99F);
  QCOMPARE(line.corrector.figures().overruns, std::int64_t(1));
  QCOMPARE(line.corrector.figures().underruns, std::int64_t(0));
  QVERIFY(std::abs(line.corrector.figures().errorSamples) < 1);
}

// The pulling side stands still for half a second, less than the buffer holds, and does not catch up.
void tst_drift_corrector::setsALongDelayRightAtOnce() {
  Line line;
  line.flow(2000);
  for (int i = 0; i < 50; ++i) {
    line.pass();
    line.push();
  }
  line.flow(2000);
  QVERIFY(isWithoutClick(line.sound));
  QVERIFY2(std::abs(line.corrector.figures().errorSamples) < 48,
           QByteArray::number(line.corrector.figures().errorSamples));
  QCOMPARE(line.corrector.figures().overruns, std::int64_t(0));
  QCOMPARE(line.corrector.figures().underruns, std::int64_t(0));
}

void tst_drift_corrector::takesPiecesOfAPullAsOne() {
  DriftCorrector whole(kTarget);
  DriftCorrector pieces(kTarget);
  Sound ofWhole;
  Sound ofPieces;
  std::vector<float> packet(2 * 1920);
  for (int tick = 0; tick < 200; ++tick) {
    for (std::size_t i = 0; i < 1920; ++i)
      packet[2 * i] = packet[2 * i + 1] = korvia::test::tone(440, tick * 1920 + static_cast<int>(i));
    const std::int64_t nowNs = tick * INT64_C(40'000'000);
    whole.push(packet.data(), 1920, nowNs);
    pieces.push(packet.data(), 1920, nowNs);
    whole.pull(ofWhole.append(1920), nowNs);
    const korvia::StereoSpan tickOfPieces = ofPieces.append(1920);
    pieces.pull(tickOfPieces.part(0, 500), nowNs);
    pieces.pull(tickOfPieces.part(500, 1420), nowNs);
  }
  QVERIFY(loudest(ofWhole, 150 * 1920, 1920) > 0.99F);
  QVERIFY(std::abs(whole.figures().errorSamples - pieces.figures().errorSamples) < 0.01);
  for (std::size_t i = 0; i < ofWhole.left.size(); ++i)
    QVERIFY(std::abs(ofWhole.left[i] - ofPieces.left[i]) < 1e-3F);
}

QTEST_GUILESS_MAIN(tst_drift_corrector)
#include "tst_drift_corrector.moc"
