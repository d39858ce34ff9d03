// Feeds a recording as quickly as it takes frames.
#pragma once
#include <QDeadlineTimer>
#include <QThread>

#include "engine/output/ProgramOutput.h"
#include "support/TestPattern.h"

namespace korvia::test {

/// Waits until fewer than `limit` of the `pushed` frames are still on their way; false when the output has
/// ended and after ten seconds.
inline bool waitForRoom(ProgramOutput& output, qint64 pushed, int limit) {
  const QDeadlineTimer deadline(10000);
  while (pushed - output.figures().framesEncoded >= limit) {
    if (deadline.hasExpired() || output.waitFinished(0))
      return false;
    QThread::usleep(500);
  }
  return true;
}

inline bool feedFrames(ProgramOutput& output, FramePool& pool, int first, int count) {
  for (int i = 0; i < count; ++i) {
    output.pushFrame(patternFrame(pool, first + i), first + i);
    if (!waitForRoom(output, first + i + 1, 9))
      return false;
  }
  return true;
}

}  // namespace korvia::test
