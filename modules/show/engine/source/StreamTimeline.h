// Gives every picture of a film its place in time, also when the film's own time stamps are missing, jump or
// stand still: then pictures are counted. Seamless segments go on where the one before ended, which is how a
// loop has no seam. One thread at a time; the owner locks.
#pragma once
#include <cstdint>
#include <optional>

namespace korvia {

class StreamTimeline {
 public:
  struct Stamp {
    std::int64_t timeNs = 0;   ///< rises from picture to picture, through loops
    std::int64_t mediaNs = 0;  ///< place in the film
  };

  enum class Join { Jump, Seamless };

  /// The next picture begins a segment.
  void beginSegment(Join join);
  /// The next picture begins a segment that stands at `timeNs`: the end of another film.
  void beginSegmentAt(std::int64_t timeNs);
  /// `ptsNs` and `durationNs` as the film has them, empty when it has none. `frameDurationNs` > 0 is what a
  /// picture lasts by the film's frame rate.
  Stamp stamp(std::optional<std::int64_t> ptsNs, std::optional<std::int64_t> durationNs,
              std::int64_t frameDurationNs);
  /// Where the last picture ends.
  std::int64_t endNs() const { return nextNs_; }
  std::int64_t mediaEndNs() const { return nextNs_ - offsetNs_; }
  /// Of this segment.
  int pictures() const { return pictures_; }

 private:
  std::int64_t placeOf(std::optional<std::int64_t> ptsNs, std::int64_t frameDurationNs);

  Join join_ = Join::Jump;
  int pictures_ = 0;
  int standstill_ = 0;
  std::int64_t shiftNs_ = 0;   // repairs jumps of the film's time stamps
  std::int64_t offsetNs_ = 0;  // from place in the film to time
  std::int64_t lastMediaNs_ = 0;
  std::int64_t lastDurationNs_ = 0;
  std::int64_t nextNs_ = 0;
};

}  // namespace korvia
