// Turns frames into RGB pictures, exactly rather than quickly: for snapshots. Pure function, any thread.
#pragma once
#include <QImage>

#include "engine/frame/Frame.h"

namespace korvia {

/// The frame without its alpha as Format_RGB32 of the same size, within one code value of BT.709; a null
/// image when there is no memory for it.
QImage toImage(const Frame& frame);

}  // namespace korvia
