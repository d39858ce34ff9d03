// Monotonic millisecond clock for the waits of the console. It wraps at 32 bits, so only differences have a
// meaning. Console thread.
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
