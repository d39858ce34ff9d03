// A live source in simulated time: its sound comes in packets with jitter by a clock that drifts, and is
// pulled tick by tick beside the readings of its LiveClock.
#include "engine/source/LiveAudioQueue.h"

#include <QtTest>
#include <random>

#include "../audio/ToneCheck.h"
#include "engine/audio/SampleTime.h"
#include "engine/source/LiveClock.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr std::int64_t kMs = 1'000'000;
constexpr std::int64_t kTransit = 50 * kMs;
constexpr std::int64_t kTarget = 150 * kMs;
constexpr std::int64_t kTickNs = 40 * kMs;
constexpr int kTick = kSampleRate / 25;
constexpr int kPacket = 1024;
constexpr double kHz = 997;

/// Between two samples of the tone are 0.131 at most, and a fade adds little.
constexpr float kStep = 0.14F;

class Simulation {
 public:
  explicit Simulation(double ppm) : perSampleNs_(1e9 / (kSampleRate * (1 + ppm * 1e-6))) {}

  /// Packets come and ticks pass for so long.
  void run(std::int64_t durationNs) {
    for (const std::int64_t endNs = nowNs_ + durationNs; nowNs_ < endNs; nowNs_ += kTickNs) {
      while (nextArrivalNs_ <= nowNs_)
        arrive();
      tick();
    }
  }
  void tick() {
    queue.advance(clock.advance(1, nowNs_));
    sounds = queue.pull(sound.append(kTick));
  }
  /// The source loses what it makes for so long, and its stamps go on.
  void lose(std::int64_t durationNs) {
    const auto samples = static_cast<std::int64_t>(static_cast<double>(durationNs) / perSampleNs_);
    made_ += samples;
    plan();
  }
  void jumpStamps(std::int64_t byNs) { stampShiftNs_ += byNs; }

  LiveClock clock{FrameRate{25, 1}, kTarget};
  LiveAudioQueue queue{"camera"};
  Sound sound;
  bool sounds = false;

 private:
  void arrive() {
    std::vector<float> packet;
    for (int i = 0; i < kPacket; ++i)
      packet.insert(packet.end(), 2, tone(kHz, static_cast<double>(made_ + i)));
    const std::int64_t stampNs = nsOfSamples(made_) + stampShiftNs_;
    queue.push(packet.data(), kPacket, clock.arrive(stampNs, nextArrivalNs_));
    made_ += kPacket;
    plan();
  }
  /// A packet is sent when its last sample is made.
  void plan() {
    const double undelayed = static_cast<double>(made_ + kPacket) * perSampleNs_ + kTransit;
    nextArrivalNs_ = std::max(nextArrivalNs_, static_cast<std::int64_t>(undelayed + jitter_(random_)));
  }

  const double perSampleNs_;
  std::int64_t made_ = 0;
  std::int64_t stampShiftNs_ = 0;
  std::int64_t nowNs_ = 0;
  std::int64_t nextArrivalNs_ = kTransit;
  std::mt19937 random_{1};
  std::uniform_real_distribution<> jitter_{0, 10 * kMs};
};

float largestStep(const Sound& sound) {
  float most = 0;
  for (std::size_t i = 1; i < sound.left.size(); ++i)
    most = std::max(most, std::abs(sound.left[i] - sound.left[i - 1]));
  return most;
}

/// The largest value of the last two ticks.
float peakAtEnd(const Sound& sound) {
  return *std::max_element(sound.left.end() - 2 * kTick, sound.left.end());
}

}  // namespace

class tst_live_audio_queue : public QObject {
  Q_OBJECT

 private slots:
  void followsTheClockSmoothly_data() {
    QTest::addColumn<double>("ppm");
    QTest::newRow("no drift") << 0.0;
    QTest::newRow("200 ppm fast") << 200.0;
    QTest::newRow("200 ppm slow") << -200.0;
  }
  void followsTheClockSmoothly() {
    QFETCH(double, ppm);
    Simulation simulation(ppm);
    simulation.run(60'000 * kMs);
    const LiveAudioQueue::Figures figures = simulation.queue.figures();
    QCOMPARE(figures.underruns, std::int64_t(0));
    QCOMPARE(figures.jumps, std::int64_t(0));
    QVERIFY2(std::abs(figures.errorSamples) < 48, QByteArray::number(figures.errorSamples));
    Sound& sound = simulation.sound;
    QVERIFY(largestStep(sound) < kStep);
    // From the second second on no sample stands out, and the pitch is even.
    sound.left.erase(sound.left.begin(), sound.left.begin() + kSampleRate);
    QVERIFY2(roughness(sound.left, kHz) < 2e-3, QByteArray::number(roughness(sound.left, kHz)));
    QVERIFY(std::abs(peakAtEnd(sound) - 1) < 0.01F);
  }

  void missingPacketsAreSilenceWithFades() {
    Simulation simulation(50);
    simulation.run(2'000 * kMs);
    QVERIFY(simulation.sounds);
    simulation.lose(1'000 * kMs);
    simulation.run(600 * kMs);
    QVERIFY(!simulation.sounds);
    simulation.run(2'000 * kMs);
    QVERIFY(simulation.sounds);
    QVERIFY(peakAtEnd(simulation.sound) > 0.98F);
    QVERIFY2(largestStep(simulation.sound) < kStep,
             QByteArray::number(double(largestStep(simulation.sound))));
    QCOMPARE(simulation.queue.figures().underruns, std::int64_t(1));
    QCOMPARE(simulation.queue.figures().jumps, std::int64_t(1));
  }

  void jumpOfTheStampsIsHeardAsAFade_data() {
    QTest::addColumn<qint64>("byMs");
    QTest::newRow("back to zero") << qint64(-2'000);
    QTest::newRow("an hour ahead") << qint64(3'600'000);
    QTest::newRow("a little ahead") << qint64(60);
  }
  void jumpOfTheStampsIsHeardAsAFade() {
    QFETCH(qint64, byMs);
    Simulation simulation(50);
    simulation.run(8'000 * kMs);
    simulation.jumpStamps(byMs * kMs);
    simulation.run(8'000 * kMs);
    QVERIFY(simulation.sounds);
    QVERIFY(peakAtEnd(simulation.sound) > 0.98F);
    QVERIFY2(largestStep(simulation.sound) < kStep,
             QByteArray::number(double(largestStep(simulation.sound))));
  }

  void holdFades() {
    Simulation simulation(0);
    simulation.run(2'000 * kMs);
    simulation.clock.setHold(true);
    simulation.run(1'000 * kMs);
    QVERIFY(!simulation.sounds);
    simulation.clock.setHold(false);
    simulation.run(1'000 * kMs);
    QVERIFY(peakAtEnd(simulation.sound) > 0.98F);
    QVERIFY(largestStep(simulation.sound) < kStep);
    QCOMPARE(simulation.queue.figures().underruns, std::int64_t(0));
  }
};

QTEST_GUILESS_MAIN(tst_live_audio_queue)
#include "tst_live_audio_queue.moc"
