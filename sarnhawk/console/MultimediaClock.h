// The millisecond clock of the console's waits. Monotonic; it wraps at 32 bits, so only differences count.
// Console thread.
#pragma once
#include <QtGlobal>
#include <functional>

class MultimediaClock {
 public:
  static quint32 now();
  /// Milliseconds from `start` to now, also across the wrap.
  static quint32 since(quint32 start) { return now() - start; }
  /// Replaces the clock, for tests; an empty function brings the real one back.
  static void setSource(std::function<quint32()> source);
};
