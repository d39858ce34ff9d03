// The end of an mp4 or mov that was cut off by a write error. Any thread.
#pragma once
#include <QString>

namespace korvia {

/// Removes a box at the top level that is not all there from the end of the file: players skip media data
/// without an index, but half an index makes them refuse the whole file. A box that reaches to the end of the
/// file by its own word stays. Nothing happens to a file that is whole or is no such file; returns the bytes
/// removed.
qint64 dropPartialBox(const QString& fileName);

}  // namespace korvia
