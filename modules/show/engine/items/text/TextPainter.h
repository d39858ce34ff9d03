// Draws the text of a record: fill, outline and shadow. One thread, usually that of the raster worker.
#pragma once
#include <QDateTime>

#include "engine/frame/Frame.h"
#include "engine/items/text/TextPicture.h"
#include "engine/items/text/TexturePicture.h"
#include "tagKorviaShowTextInfo.h"

namespace korvia {

class TextPainter {
 public:
  /// The text with `now` for its ${Time}, for a render picture of this size. Positions, scroll and animations
  /// of the record are the caller's. The image has at most twice the pixels of the render picture, and its
  /// sides are at most 16384; a text that is larger is cut around the centre of the item. Without memory
  /// nothing is drawn.
  TextPicture paint(const tagKorviaShowTextInfo& info, FrameSize renderSize, const QDateTime& now);

 private:
  TexturePicture texture_;
};

}  // namespace korvia
