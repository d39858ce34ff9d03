// The muxer stamps its tracks with the time of day, which would make every build's film another file.
//
// Plain function for any thread.
#pragma once

#include <QByteArray>

namespace korvia {

// Sets the creation and modification times in the headers of an MP4 to 0. Bytes that are no MP4, or a
// broken one, are left alone from where they stop making sense.
void clearMp4Times(QByteArray& file);

}  // namespace korvia
