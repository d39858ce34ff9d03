// Gives each picture of a film its time. Where the time stamps of the film are missing, jump or repeat, the
// time is counted by the frame duration. A seamless segment continues where the one before ended, so that a
// loop has no seam. One thread at a time; the owner locks.
#pragma once
#include <cstdint>
#include <optional>

namespace korvia {

class StreamTimeline {
 public:
  struct Stamp {
    std::int64_t timeNs = 0;   ///< increases from picture to picture, also through loops
    std::int64_t mediaNs = 0;  ///< time in the film
  };

  enum class Join { Jump, Seamless };

  /// The next picture begins a segment.
  void beginSegment(Join join);
  /// The next picture begins a segment at `timeNs`, which is the end of another film.
  void beginSegmentAt(std::int64_t timeNs);
  /// `ptsNs` and `durationNs` are those of the film, empty when it has none. `frameDurationNs` > 0 is the
  /// duration of a picture by the film's frame rate.
  Stamp stamp(std::optional<std::int64_t> ptsNs, std::optional<std::int64_t> durationNs,
              std::int64_t frameDurationNs);
  /// The end of the last picture.
  std::int64_t endNs() const { return nextNs_; }
  std::int64_t mediaEndNs() const { return nextNs_ - offsetNs_; }
  /// Pictures in the current segment.
  int pictures() const { return pictures_; }

 private:
  std::int64_t placeOf(std::optional<std::int64_t> ptsNs, std::int64_t frameDurationNs);

  Join join_ = Join::Jump;
  int pictures_ = 0;
  int standstill_ = 0;
  std::int64_t shiftNs_ = 0;   // added to the film's time stamps to remove their jumps
  std::int64_t offsetNs_ = 0;  // from time in the film to the time line
  std::int64_t lastMediaNs_ = 0;
  std::int64_t lastDurationNs_ = 0;
  std::int64_t nextNs_ = 0;
};

}  // namespace korvia
