// The reading of a source's clock at one tick. The engine thread takes one reading a tick and passes it to
// all queues of the source, so that pictures and sound with the same time stamp leave in the same tick. A
// plain value.
#pragma once
#include <cstdint>

namespace korvia {

struct ClockReading {
  std::int64_t timeNs = 0;     ///< data with this time stamp or an earlier one are due now
  std::int64_t frameNs = 0;    ///< duration of one tick
  std::int64_t latencyNs = 0;  ///< from the arrival of undelayed data until they are due; 0 for files
  /// Number of flushes so far. A queue that was flushed after this reading releases no new picture.
  std::uint64_t epoch = 0;
  int ticks = 1;         ///< render frames since the last reading
  bool started = false;  ///< false after a flush until the first data have set the time
  bool running = false;  ///< playing and not on hold
};

}  // namespace korvia
