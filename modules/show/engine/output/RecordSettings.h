// What one recording needs to know, fixed from its start to its end. Plain values.
#pragma once
#include <QString>
#include <functional>

#include "FrameRate.h"
#include "RecordContainer.h"
#include "engine/frame/Frame.h"

namespace korvia {

struct RecordSettings {
  QString folder;  ///< drive path or path of this machine
  QString name;    ///< file name without suffix, cleaned
  RecordContainer container = RecordContainer::of(2);
  FrameSize size;  ///< of the recorded picture; both sides even
  FrameRate rate;  ///< of the engine and of the file
  int videoKbps = 4096;

  /// Frames that may wait for the encoder: a second of the show, 75 MB of 1920x1080 at worst.
  int queueCapacity = 25;
  /// How long what was pushed may take to be written after the end.
  int finishTimeoutMs = 10000;
  /// The file is closed in time when less than this is left on its disk.
  qint64 minimumFreeBytes = 64LL * 1024 * 1024;
  /// Bytes free at a folder, negative when unknown. Called about once a second on the output's own thread.
  std::function<qint64(const QString& folder)> freeBytes;
};

}  // namespace korvia
