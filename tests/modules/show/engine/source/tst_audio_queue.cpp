// The queue of sound on a clock that the test advances. The sound is mostly a constant level, so that each
// sample tells what was done to it.
#include "engine/source/AudioQueue.h"

#include <QtTest>
#include <future>

#include "../audio/ToneCheck.h"
#include "engine/audio/SampleTime.h"
#include "support/AllocationCounter.h"

using namespace korvia;
using namespace korvia::test;

namespace {

constexpr int kTick = kSampleRate / 25;
constexpr int kFade = GainRamp::kSamples;
constexpr std::int64_t kSecond = 1'000'000'000;

/// The queue beside one for pictures, which has begun, and what was pulled from it.
class Line {
 public:
  Line() { clock.setPlaying(true); }

  /// False when the queue refused it.
  bool push(std::int64_t index, int samples, float level = 0.5F) {
    std::vector<float> values(static_cast<std::size_t>(samples), level);
    return queue.push(queue.part(), {values.data(), values.data(), samples}, nsOfSamples(index));
  }
  std::future<bool> pushAside(std::int64_t index, int samples, float level = 0.5F) {
    return std::async(std::launch::async, [=, this, part = queue.part()] {
      std::vector<float> values(static_cast<std::size_t>(samples), level);
      return queue.push(part, {values.data(), values.data(), samples}, nsOfSamples(index));
    });
  }
  void beginPictures(std::int64_t timeNs = 0) { clock.begin(pictures, epoch, timeNs); }
  void flush() {
    epoch = clock.flush();
    queue.beginFlush(epoch);
  }
  AudioQueue::Tick advance(int frames = 1) { return last = queue.advance(clock.advance(frames)); }
  /// Appends the sound of the tick, or silence.
  bool pull(int samples = kTick) { return queue.pull(sound.append(samples)); }
  bool tick(int frames = 1) {
    advance(frames);
    return pull(frames * kTick);
  }
  void ticks(int count) {
    for (int i = 0; i < count; ++i)
      tick();
  }
  float at(int index) const { return sound.left[static_cast<std::size_t>(index)]; }

  MediaClock clock{FrameRate{25, 1}};
  const int pictures = clock.addQueue();
  AudioQueue queue{clock};
  std::uint64_t epoch = 0;
  AudioQueue::Tick last;
  Sound sound;
};

/// The largest step from one sample to the next.
float largestStep(const Sound& sound) {
  float most = 0;
  for (std::size_t i = 1; i < sound.left.size(); ++i)
    most = std::max(most, std::abs(sound.left[i] - sound.left[i - 1]));
  return most;
}

// Fades of a level of 0.5 over 5 ms make steps of this size at most, two at once too.
constexpr float kFadeStep = 0.5F * 2.1F / kFade;

}  // namespace

class tst_audio_queue : public QObject {
  Q_OBJECT

 private slots:
  void sampleLeavesInTheTickOfItsTime() {
    Line line;
    line.push(0, 3 * kTick, 0);
    line.push(3 * kTick, 12000);
    line.beginPictures();
    line.ticks(5);
    QVERIFY(line.at(3 * kTick - 1) == 0);
    QCOMPARE(line.at(3 * kTick), 0.5F);
  }

  void clockWaitsForSoundAndSoundForTheClock() {
    Line line;
    line.beginPictures();
    QVERIFY(!line.tick());
    line.push(0, 1000);
    QVERIFY(!line.tick());
    line.push(1000, 12000);
    line.sound = {};
    QVERIFY(line.tick());
    QCOMPARE(line.last.timeNs.value_or(-1), std::int64_t(0));
    QCOMPARE(line.at(kFade), 0.5F);
  }

  void missedTicksAreMadeUpFor() {
    Line line;
    line.push(0, 48000);
    line.beginPictures();
    line.ticks(2);
    QVERIFY(line.tick(3));
    QCOMPARE(line.last.timeNs.value_or(-1), 4 * kSecond / 25);
    QCOMPARE(line.last.taken, kTick);
    line.tick();
    QCOMPARE(line.last.taken, 3 * kTick);
    QVERIFY(largestStep(line.sound) < kFadeStep);
  }

  void piecesAreOneTick() {
    Line line;
    for (int i = 0; i < 48000; i += 480) {
      std::vector<float> values;
      for (int k = i; k < i + 480; ++k)
        values.push_back(static_cast<float>(k));
      line.queue.push(line.queue.part(), {values.data(), values.data(), 480}, nsOfSamples(i));
    }
    line.beginPictures();
    line.tick();
    for (int i = 1; i < 10; ++i) {
      line.advance();
      line.pull(1);
      line.pull(919);
      line.pull(1000);
    }
    for (int i = kFade; i < 10 * kTick; ++i)
      QCOMPARE(line.at(i), static_cast<float>(i));
  }

  void pauseAndHoldFadeAndKeepThePlace_data() {
    QTest::addColumn<bool>("hold");
    QTest::newRow("pause") << false;
    QTest::newRow("hold") << true;
  }
  void pauseAndHoldFadeAndKeepThePlace() {
    QFETCH(bool, hold);
    const auto stand = [hold](Line& line, bool stands) {
      hold ? line.clock.setHold(stands) : line.clock.setPlaying(!stands);
    };
    Line line;
    line.push(0, 48000);
    line.beginPictures();
    line.ticks(3);
    stand(line, true);
    QVERIFY(line.tick());
    QVERIFY(!line.tick());
    stand(line, false);
    QVERIFY(line.tick());
    QCOMPARE(line.last.timeNs.value_or(-1), 3 * kSecond / 25);
    QVERIFY(largestStep(line.sound) < kFadeStep);
    QCOMPARE(line.at(3 * kTick + kFade), 0.0F);
  }

  void flushFadesAndRefusesOldSound() {
    Line line;
    line.push(0, 48000);
    line.beginPictures();
    line.ticks(3);
    const AudioQueue::Part old = line.queue.part();
    line.flush();
    std::vector<float> values(480, 1.0F);
    QVERIFY(!line.queue.push(old, {values.data(), values.data(), 480}, 0));
    QVERIFY(line.tick());
    QVERIFY(!line.tick());
    line.push(480'000, 12000);
    line.beginPictures(10 * kSecond);
    QVERIFY(line.tick());
    QCOMPARE(line.last.timeNs.value_or(-1), 10 * kSecond);
    QVERIFY(largestStep(line.sound) < kFadeStep);
  }

  void flushInTheMiddleOfATickFades() {
    Line line;
    line.push(0, 48000);
    line.beginPictures();
    line.ticks(3);
    line.advance();
    line.pull(500);
    line.flush();
    line.pull(kTick - 500);
    QVERIFY(!line.tick());
    QVERIFY(largestStep(line.sound) < kFadeStep);
  }

  void gapIsSilentAndFaded() {
    Line line;
    line.push(0, 12000);
    line.push(16000, 12000);
    line.beginPictures();
    line.ticks(14);
    QCOMPARE(line.at(11000), 0.5F);
    QCOMPARE(line.at(12000), 0.0F);
    QCOMPARE(line.at(15999), 0.0F);
    QCOMPARE(line.at(16000 + kFade), 0.5F);
    QVERIFY(largestStep(line.sound) < kFadeStep);
  }

  // Matroska rounds to milliseconds, so stamps jitter, and only the count is even.
  void roundedStampsMakeNoGap() {
    Line line;
    int index = 0;
    for (int i = 0; i < 40; ++i, index += 1024)
      line.push(index / 48 * 48, 1024);
    line.beginPictures();
    line.ticks(20);
    QVERIFY(largestStep(line.sound) < kFadeStep);
    for (int i = kFade; i < 20 * kTick; ++i)
      QCOMPARE(line.at(i), 0.5F);
  }

  void lateSoundBeginsLate() {
    Line line;
    line.push(12000, 12000);
    line.beginPictures();
    line.ticks(8);
    QCOMPARE(line.at(11999), 0.0F);
    QCOMPARE(line.at(12000 + kFade), 0.5F);
    QVERIFY(largestStep(line.sound) < kFadeStep);
  }

  // The sound of a film that begins before its pictures is heard from its beginning, and the pictures keep
  // the ticks.
  void earlySoundMovesTheBeginning() {
    Line line;
    line.push(-1000, 24000);
    line.beginPictures();
    QVERIFY(line.tick());
    QCOMPARE(line.last.timeNs.value_or(0), -kSecond / 25);
    QCOMPARE(line.at(kTick - 1001), 0.0F);
    QCOMPARE(line.at(kTick - 1000 + kFade), 0.5F);
  }

  void endsWithAFadeWhenNothingFollows() {
    Line line;
    line.push(0, 12000);
    line.queue.markEnd(line.queue.part());
    line.beginPictures();
    line.ticks(8);
    QCOMPARE(line.at(11000), 0.5F);
    QVERIFY(largestStep(line.sound) < kFadeStep);
    QVERIFY(!line.tick());
    QVERIFY(!line.last.timeNs);
  }

  void exactSeamHasNoFade() {
    Line line;
    line.push(0, 24000);
    line.queue.joinAt(kSecond / 2);
    line.push(24000, 24000);
    line.beginPictures();
    line.ticks(20);
    for (int i = kFade; i < 20 * kTick; ++i)
      QCOMPARE(line.at(i), 0.5F);
  }

  // The sound of the first film is 20 ms longer than its pictures.
  void longerSoundCrossesOverAtTheSeam() {
    Line line;
    line.push(0, 24000 + 960, 0.5F);
    line.queue.joinAt(kSecond / 2);
    line.push(24000, 100, 0.25F);
    line.push(24100, 24000, 0.25F);
    line.beginPictures();
    line.ticks(20);
    QCOMPARE(line.at(23999), 0.5F);
    QCOMPARE(line.at(24000 + kFade), 0.25F);
    QVERIFY(largestStep(line.sound) < kFadeStep);
  }

  void soundBeforeTheSeamIsLeftOut() {
    Line line;
    line.push(0, 24000, 0.5F);
    line.queue.joinAt(kSecond / 2);
    line.push(23000, 1000, 1.0F);
    line.push(24000, 24000, 0.5F);
    line.beginPictures();
    line.ticks(20);
    QVERIFY(largestStep(line.sound) < kFadeStep);
    QCOMPARE(line.at(23500), 0.5F);
  }

  void fullQueueMakesPushWaitUntilHalfIsLeft() {
    Line line;
    std::future<bool> pushed = line.pushAside(0, 70'000);
    line.beginPictures();
    QTRY_COMPARE(line.queue.queuedSamples(), std::int64_t(65536));
    line.ticks(10);
    QCOMPARE(line.queue.queuedSamples(), std::int64_t(65536 - 9 * kTick));
    while (line.queue.queuedSamples() > 65536 / 2)
      line.tick();
    QCOMPARE(pushed.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    QVERIFY(pushed.get());
  }

  void waitingPushEnds_data() {
    QTest::addColumn<int>("way");
    QTest::newRow("flush") << 0;
    QTest::newRow("seam") << 1;
    QTest::newRow("interruption") << 2;
    QTest::newRow("close") << 3;
  }
  void waitingPushEnds() {
    QFETCH(int, way);
    Line line;
    std::future<bool> pushed = line.pushAside(0, 70'000);
    QTRY_COMPARE(line.queue.queuedSamples(), std::int64_t(65536));
    if (way == 0)
      line.flush();
    else if (way == 1)
      line.queue.joinAt(kSecond);
    else if (way == 2)
      line.queue.interrupt();
    else
      line.queue.close();
    QVERIFY(!pushed.get());
  }

  void clockGoesBackToSoundThatIsTooLate() {
    Line line;
    line.push(0, 12000);
    line.beginPictures();
    line.ticks(50);
    line.push(12000, 12000);
    line.tick();
    line.sound = {};
    QVERIFY(line.tick());
    QCOMPARE(line.last.timeNs.value_or(-1), kSecond / 4);
  }

  void nobodyPullsAndThenSomebodyDoes() {
    Line line;
    line.push(0, 60'000);
    line.beginPictures();
    line.ticks(3);
    for (int i = 0; i < 5; ++i)
      line.advance();
    line.flush();
    line.push(0, 60'000);
    line.beginPictures();
    line.advance();
    line.advance();
    line.sound = {};
    QVERIFY(line.tick());
    QCOMPARE(line.at(kFade), 0.5F);
    QVERIFY(line.at(0) < kFadeStep);
    QVERIFY(largestStep(line.sound) < kFadeStep);
  }

  void tickDoesNotAllocate() {
    Line line;
    line.push(0, 60'000);
    line.beginPictures();
    line.ticks(2);
    line.sound.left.reserve(40 * kTick);
    line.sound.right.reserve(40 * kTick);
    const qint64 before = allocationCalls();
    line.ticks(20);
    line.clock.setPlaying(false);
    line.ticks(2);
    QCOMPARE(allocationCalls() - before, qint64(0));
  }
};

QTEST_GUILESS_MAIN(tst_audio_queue)
#include "tst_audio_queue.moc"
