// Which effect number a take sends. Console thread.
#pragma once
#include <QtGlobal>

struct tagKorviaTakeButton;

class TakeRules {
 public:
  /// The slot's own number; for a random slot a fresh draw from 0 to 79, which may be a number that the
  /// catalogue leaves out. The draw is seeded with the time, so it stays the same within one second.
  static qint32 effectToSend(const tagKorviaTakeButton& slot, qint64 secondsSinceEpoch);
};
