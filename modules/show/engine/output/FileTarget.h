// A recording: writes packets into files of one of the containers, one after the other. Made on any thread;
// its own thread does the rest.
#pragma once
#include <chrono>
#include <functional>
#include <memory>

#include "OutputRequest.h"
#include "RecordContainer.h"
#include "Target.h"

namespace korvia {

struct FileSettings {
  QString folder;  ///< drive path or path of this machine
  QString name;    ///< file name without suffix, cleaned
  /// Makes the names of the files after the first one; empty for the same name. On the target's own thread.
  std::function<QString()> nextName;
  /// Length of a file, which ends at the next key frame; 0 for one file without end.
  qint64 cutNs = 0;
  RecordContainer container = RecordContainer::of(EncapsulationMp4);
  /// The file is closed while at least this much space is left on its disk, or a tenth of a small disk. The
  /// recording goes on in a new file when there is twice as much.
  qint64 minimumFreeBytes = 64LL * 1024 * 1024;
  /// The time between two checks in which the file is read back.
  std::chrono::milliseconds guardInterval{10'000};
  /// Bytes free at a folder, negative when unknown. Called about once a second on the target's own thread.
  std::function<qint64(const QString& folder)> freeBytes;
  TargetSettings target{QStringLiteral("a recording"), "kv-record"};
};

class FileTarget : public Target {
 public:
  /// Starts at once. The thread of the target makes the file and logs a failure.
  explicit FileTarget(const FileSettings& settings);

  /// The recording that the request asks for; null when it asks for none.
  static std::unique_ptr<Target> create(const OutputRequest& request);

  /// Path of the file on this machine; empty while there is none.
  QString fileName() const { return figures().location; }
};

}  // namespace korvia
