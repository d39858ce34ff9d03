#include "StreamTimeline.h"

#include <algorithm>

namespace korvia {

namespace {

constexpr std::int64_t kSecondNs = 1'000'000'000;
// A gap up to kLongestGapNs is kept, and the last picture is held over it. A longer gap and a step back of
// more than kFarthestBackNs are jumps of the time stamps.
constexpr std::int64_t kLongestGapNs = 120 * kSecondNs;
constexpr std::int64_t kFarthestBackNs = 10 * kSecondNs;
// A picture whose stamp lies before the last one is put directly behind it. After this many in a row the
// stamps are of no use, and pictures are counted.
constexpr int kMostOutOfOrder = 2;
constexpr std::int64_t kSmallestStepNs = 1000;

}  // namespace

void StreamTimeline::beginSegment(Join join) {
  join_ = join;
  pictures_ = 0;
  standstill_ = 0;
  shiftNs_ = 0;
}

void StreamTimeline::beginSegmentAt(std::int64_t timeNs) {
  beginSegment(Join::Seamless);
  nextNs_ = timeNs;
}

std::int64_t StreamTimeline::placeOf(std::optional<std::int64_t> ptsNs, std::int64_t frameDurationNs) {
  if (pictures_ == 0)
    return ptsNs.value_or(0);
  const std::int64_t counted = lastMediaNs_ + frameDurationNs;
  if (!ptsNs)
    return counted;
  const std::int64_t place = *ptsNs + shiftNs_;
  const std::int64_t gap = place - lastMediaNs_;
  // A stamp that repeats still belongs to another picture; files that only know the decoding order repeat
  // stamps.
  if (gap == 0 || gap > std::max(lastDurationNs_ + kSecondNs, kLongestGapNs) || gap < -kFarthestBackNs) {
    shiftNs_ = counted - *ptsNs;
    standstill_ = 0;
    return counted;
  }
  if (gap > 0) {
    standstill_ = 0;
    return place;
  }
  return ++standstill_ > kMostOutOfOrder ? counted : lastMediaNs_ + kSmallestStepNs;
}

StreamTimeline::Stamp StreamTimeline::stamp(std::optional<std::int64_t> ptsNs,
                                            std::optional<std::int64_t> durationNs,
                                            std::int64_t frameDurationNs) {
  const std::int64_t media = placeOf(ptsNs, frameDurationNs);
  if (pictures_ == 0)
    offsetNs_ = join_ == Join::Seamless ? nextNs_ - media : 0;
  const std::int64_t lasts = durationNs && *durationNs > 0 ? *durationNs : frameDurationNs;
  ++pictures_;
  lastMediaNs_ = media;
  lastDurationNs_ = lasts;
  nextNs_ = media + offsetNs_ + lasts;
  return {media + offsetNs_, media};
}

}  // namespace korvia
