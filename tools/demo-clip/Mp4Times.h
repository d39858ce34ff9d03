// Removes the time of day that the muxer writes into its tracks, so that every build makes the same file.
// Plain function for any thread.
#pragma once

#include <QByteArray>

namespace korvia {

// Sets the creation and modification times in the headers of an MP4 to 0. Stops at the first bytes that are
// no valid MP4 and leaves the rest as it is.
void clearMp4Times(QByteArray& file);

}  // namespace korvia
