// Draws the text of a record: fill, outline and shadow. One thread, usually that of the raster worker.
#pragma once
#include <QDateTime>
#include <memory>

#include "engine/frame/Frame.h"
#include "engine/items/text/TextPicture.h"
#include "engine/items/text/TextShape.h"
#include "engine/items/text/TexturePicture.h"
#include "tagKorviaShowTextInfo.h"

namespace korvia {

class TextPainter {
 public:
  /// The text with `now` for its ${Time}, for a render picture of this size. Positions, scroll and animations
  /// of the record are the caller's. The image has at most twice the pixels of the render picture, and its
  /// sides are at most 16384; a whole text that is larger is cut around the centre of the item. Without
  /// memory nothing is drawn.
  /// @param part what is drawn of the text, in pixels from the left of its box; less than that when the
  /// picture would be too large. A part that reaches an end of the text includes what overhangs there.
  TextPicture paint(const tagKorviaShowTextInfo& info, FrameSize renderSize, const QDateTime& now,
                    const TextPart& part = {});

 private:
  /// What the last shape was made of. The parts of a text have the same one.
  struct ShapeKey {
    QString text;
    QString fontName;
    int fontSize = 0;
    TextBox box;
    TextLimits limits;

    friend bool operator==(const ShapeKey&, const ShapeKey&) = default;
  };
  const TextShape& shapeOf(const ShapeKey& key);

  ShapeKey shapeKey_;
  std::unique_ptr<TextShape> shape_;
  TexturePicture texture_;
};

}  // namespace korvia
