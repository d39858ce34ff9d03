// Stands by while the application object connects to the display: the toolkit's fatal message about a missing
// one becomes one sentence and exit code 1. GUI thread, one at a time.
#pragma once
#include <QtGlobal>

namespace korvia {

class DisplayGuard {
 public:
  DisplayGuard();
  DisplayGuard(const DisplayGuard&) = delete;
  DisplayGuard& operator=(const DisplayGuard&) = delete;
  /// Logs what was held back meanwhile.
  ~DisplayGuard();

 private:
  QtMessageHandler before_;
};

}  // namespace korvia
