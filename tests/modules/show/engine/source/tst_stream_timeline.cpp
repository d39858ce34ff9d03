// Places of pictures with good, missing and broken time stamps, and over the seam of a loop.
#include <QtTest>
#include <vector>

#include "engine/source/StreamTimeline.h"

using korvia::StreamTimeline;
using Join = StreamTimeline::Join;

namespace {

constexpr std::int64_t kMs = 1'000'000;
constexpr std::int64_t kFrame = 40 * kMs;

/// Times in ms of pictures with these stamps in ms; -1 is no stamp.
std::vector<int> places(StreamTimeline& timeline, const std::vector<int>& stampsMs, int durationMs = 40) {
  std::vector<int> result;
  for (int stamp : stampsMs) {
    const auto pts = stamp < 0 ? std::nullopt : std::optional<std::int64_t>(stamp * kMs);
    const auto duration = durationMs < 0 ? std::nullopt : std::optional<std::int64_t>(durationMs * kMs);
    result.push_back(static_cast<int>(timeline.stamp(pts, duration, kFrame).timeNs / kMs));
  }
  return result;
}

}  // namespace

class StreamTimelineTest : public QObject {
  Q_OBJECT

 private slots:
  void goodStampsStay() {
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {0, 40, 80, 120}), (std::vector<int>{0, 40, 80, 120}));
    QCOMPARE(timeline.endNs(), 160 * kMs);
    QCOMPARE(timeline.pictures(), 4);
  }

  void missingStampsAreCounted() {
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {-1, -1, -1}, -1), (std::vector<int>{0, 40, 80}));
    QCOMPARE(places(timeline, {120, -1, 200}, -1), (std::vector<int>{120, 160, 200}));
  }

  void standingStampsAreCounted() {
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {0, 0, 0, 0, 0, 0}), (std::vector<int>{0, 40, 80, 120, 160, 200}));
    StreamTimeline twice;
    QCOMPARE(places(twice, {0, 40, 40, 80, 120}), (std::vector<int>{0, 40, 80, 120, 160}));
  }

  void fallingStampsAreCounted() {
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {900, 800, 700, 600, 500}), (std::vector<int>{900, 900, 900, 940, 980}));
  }

  void onePictureInWrongOrderMovesNothingElse() {
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {0, 80, 40, 120, 160}), (std::vector<int>{0, 80, 80, 120, 160}));
  }

  void jumpsAreClosed() {
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {0, 40, 500'000, 500'040, 500'080}), (std::vector<int>{0, 40, 80, 120, 160}));
    QCOMPARE(places(timeline, {40, 80}), (std::vector<int>{200, 240}));
  }

  void gapsAreKept_data() {
    QTest::addColumn<int>("gapMs");
    QTest::newRow("10 s") << 10'000;
    QTest::newRow("100 s") << 100'000;
    QTest::newRow("the longest") << 120'000;
  }
  void gapsAreKept() {
    QFETCH(int, gapMs);
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {0, 40, 40 + gapMs, 80 + gapMs}),
             (std::vector<int>{0, 40, 40 + gapMs, 80 + gapMs}));
  }

  void aGapThatIsTooLongIsAJump() {
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {0, 40, 130'040, 130'080}), (std::vector<int>{0, 40, 80, 120}));
    // A gap after the jump is kept again.
    QCOMPARE(places(timeline, {140'080}), (std::vector<int>{10'120}));
  }

  void longPicturesAreNoJump() {
    StreamTimeline timeline;
    QCOMPARE(places(timeline, {0, 15'000}, 15'000), (std::vector<int>{0, 15'000}));
    QCOMPARE(places(timeline, {24'000}), (std::vector<int>{24'000}));
  }

  void seamlessSegmentGoesOnWhereTheLastEnded() {
    StreamTimeline timeline;
    places(timeline, {0, 40, 80});
    timeline.beginSegment(Join::Seamless);
    QCOMPARE(timeline.pictures(), 0);
    QCOMPARE(places(timeline, {0, 40, 80}), (std::vector<int>{120, 160, 200}));
    timeline.beginSegment(Join::Seamless);
    const StreamTimeline::Stamp stamp = timeline.stamp(std::int64_t{0}, kFrame, kFrame);
    QCOMPARE(stamp.timeNs, 240 * kMs);
    QCOMPARE(stamp.mediaNs, std::int64_t{0});
    QCOMPARE(timeline.mediaEndNs(), kFrame);
  }

  void anotherFilmGoesOnWhereTheFirstEnded() {
    StreamTimeline timeline;
    timeline.beginSegmentAt(7'000 * kMs);
    QCOMPARE(timeline.endNs(), 7'000 * kMs);
    QCOMPARE(places(timeline, {1'400, 1'440}), (std::vector<int>{7'000, 7'040}));
  }

  void jumpTakesTheFilmsOwnTime() {
    StreamTimeline timeline;
    places(timeline, {0, 40, 80});
    timeline.beginSegment(Join::Seamless);
    places(timeline, {0});
    timeline.beginSegment(Join::Jump);
    QCOMPARE(places(timeline, {5'000, 5'040}), (std::vector<int>{5'000, 5'040}));
  }
};

QTEST_GUILESS_MAIN(StreamTimelineTest)
#include "tst_stream_timeline.moc"
