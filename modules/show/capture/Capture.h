// What the program captures: a page, a window or a screen.
#pragma once
#include <QString>

#include "link/CaptureChannel.h"

namespace korvia {

class Capture {
 public:
  virtual ~Capture() = default;
  /// Captures until it is impossible; returns the reason then. Capture thread.
  virtual QString run() = 0;
  /// What the operator does on the picture. Main thread, while run() runs.
  virtual void onInput(const CapturePacket&) {}
};

}  // namespace korvia
