// What a source's clock says at one tick. The engine thread takes it once a tick and gives it to all queues
// of the source, so that pictures and sound with the same time stamp leave in the same tick. A plain value.
#pragma once
#include <cstdint>

namespace korvia {

struct ClockReading {
  std::int64_t timeNs = 0;     ///< what has this time stamp is due now
  std::int64_t frameNs = 0;    ///< what one tick lasts
  std::int64_t latencyNs = 0;  ///< from when something arrives undelayed to when it is due; 0 for files
  /// Flushes so far. A queue that was flushed after the reading was taken gives nothing new.
  std::uint64_t epoch = 0;
  int ticks = 1;         ///< render frames that have passed since the reading before
  bool started = false;  ///< false until the first data after a flush have set the time
  bool running = false;  ///< playing and not on hold
};

}  // namespace korvia
