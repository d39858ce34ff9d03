// Estimates the drift between the clock of a live source and ours from the transit times of its data; transit
// is arrival time minus time stamp. The least transits belong to data that were not delayed, and their change
// over time is the drift. The least transits of short windows are fitted by a line (least squares). After a
// jump of the stamps or on a new route the line gets another level and keeps its slope. One thread at a time;
// the owner locks.
#pragma once
#include <array>
#include <cstdint>
#include <optional>

namespace korvia {

class DriftEstimator {
 public:
  /// Transits must be small numbers, so the owner subtracts the offset between the two clocks before.
  void add(std::int64_t transitNs, std::int64_t arrivalNs);
  /// The transit changes to another level for good. The line keeps its old level until the first window of
  /// the new one is complete.
  void beginSegment();
  /// The transit of undelayed data that arrive at this time; 0 before the first add.
  std::int64_t transitAt(std::int64_t timeNs) const;
  /// By how many parts in 10^6 the source's clock is faster than ours, from -1000 to 1000; 0 until half a
  /// minute of data has come.
  double driftPpm() const;
  /// True when the first window is complete.
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

  std::array<Point, kWindows> points_;  // a ring buffer
  int count_ = 0;
  int next_ = 0;
  int segment_ = 0;
  std::int64_t windowStartNs_ = 0;
  std::optional<Point> least_;  // least transit of the window that is being measured
  // The last window, when it was off the line and waits for the next one to confirm it.
  std::optional<Point> deviator_;
  double slope_ = 0;          // of the transit over time
  std::int64_t levelNs_ = 0;  // transit at levelTimeNs_
  std::int64_t levelTimeNs_ = 0;
};

}  // namespace korvia
