// Repairs the end of an mp4 or mov file after a write error. Any thread.
#pragma once
#include <QString>

namespace korvia {

/// Removes an incomplete top-level box from the end of the file: players skip media data without an index,
/// but an incomplete index makes them refuse the whole file. A box whose size says "to the end of the file"
/// stays. A complete file, and a file that is no mp4 or mov, is not changed. Returns the bytes removed.
qint64 dropPartialBox(const QString& fileName);

}  // namespace korvia
