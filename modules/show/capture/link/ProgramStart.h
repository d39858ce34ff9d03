// Starts the capture program with a clean environment, in an empty folder, in a session of its own, and with
// no other descriptors than those that it needs. Any thread.
#pragma once
#include <QString>
#include <optional>

#include "CaptureRequest.h"

namespace korvia {

/// The descriptor that is the program's end of the channel.
inline constexpr int kCaptureChannelDescriptor = 3;

/// The names of environment variables that a run of the program gets besides those that it needs itself.
inline constexpr const char* kCaptureRegistryVariable = "GST_REGISTRY";

struct ProgramStart {
  QString folder;    ///< becomes HOME and the current folder
  int channel = -1;  ///< the program's end
  int errors = -1;   ///< becomes standard error

  /// The process id; nothing with a reason when the program cannot be started.
  std::optional<qint64> run(CaptureKind kind, QString& reason) const;
};

}  // namespace korvia
