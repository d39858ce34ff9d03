// How the transit time of a live source's data changes: transit is arrival time minus time stamp. Its lower
// envelope is what undelayed data take, and the slope of the envelope is the drift between the source's clock
// and ours. Least transits of short windows are fitted by a line (least squares); after a jump of the stamps
// or a new route the line gets another level and keeps its slope. One thread at a time; the owner locks.
#pragma once
#include <array>
#include <cstdint>
#include <optional>

namespace korvia {

class DriftEstimator {
 public:
  /// Transits are small numbers: the owner takes off the difference between the two clocks.
  void add(std::int64_t transitNs, std::int64_t arrivalNs);
  /// The transit changes to another level for good. The line keeps its old level until the first window of
  /// the new one is complete.
  void beginSegment();
  /// The transit of undelayed data that arrive at this time; 0 before the first add.
  std::int64_t transitAt(std::int64_t timeNs) const;
  /// Parts in 10^6 by which the source's clock is faster than ours, from -1000 to 1000; 0 until half a minute
  /// of data is there.
  double driftPpm() const;
  /// A first window has been measured.
  bool isSettled() const { return count_ > 0; }

 private:
  struct Point {
    std::int64_t timeNs = 0;
    std::int64_t transitNs = 0;
    int segment = 0;
  };
  static constexpr int kWindows = 64;

  void addWindow(Point least);
  void append(Point point);
  void fit();

  std::array<Point, kWindows> points_;  // a ring
  int count_ = 0;
  int next_ = 0;
  int segment_ = 0;
  std::int64_t windowStartNs_ = 0;
  std::optional<Point> least_;     // of the window that is being measured
  std::optional<Point> deviator_;  // the window before, when it lay off the line
  double slope_ = 0;               // of the transit over time
  std::int64_t levelNs_ = 0;       // transit at levelTimeNs_
  std::int64_t levelTimeNs_ = 0;
};

}  // namespace korvia
