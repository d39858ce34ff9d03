// Checks a recording while it is being written: its thread reads back from the disk, every few seconds, what
// was appended. Made and asked on the thread of the target; a disk that hangs holds up the guard's thread
// alone, which is then left behind.
#pragma once
#include <QString>
#include <chrono>
#include <memory>
#include <thread>

#include "RecordContainer.h"

namespace korvia {

class RecordingGuard {
 public:
  struct Verdict {
    qint64 verifiedNs = -1;  ///< how far the file is whole; -1 before the first check
    QString trouble;         ///< why it cannot be read any further; empty when it can
  };

  RecordingGuard(const QString& fileName, const RecordContainer& container,
                 std::chrono::milliseconds interval);
  ~RecordingGuard();
  RecordingGuard(const RecordingGuard&) = delete;
  RecordingGuard& operator=(const RecordingGuard&) = delete;

  /// `writtenNs` is the length of what was handed to the muxer so far: it must be found in the file when the
  /// next check but one is made.
  Verdict ask(qint64 writtenNs);

 private:
  struct Share;
  static void run(const std::shared_ptr<Share>& share);

  const std::shared_ptr<Share> share_;
  std::thread thread_;
};

}  // namespace korvia
