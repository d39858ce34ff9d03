// Exists while the application object connects to the display. When that fails, it replaces Qt's fatal
// message by one sentence and exit code 1. Console thread, one at a time.
#pragma once
#include <QtGlobal>

namespace korvia {

class DisplayGuard {
 public:
  DisplayGuard();
  DisplayGuard(const DisplayGuard&) = delete;
  DisplayGuard& operator=(const DisplayGuard&) = delete;
  /// Logs the messages that were kept meanwhile.
  ~DisplayGuard();

 private:
  QtMessageHandler before_;
};

}  // namespace korvia
