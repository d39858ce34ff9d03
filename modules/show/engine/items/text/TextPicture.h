// A drawn text. A plain value, any thread.
#pragma once
#include <QImage>
#include <QPoint>
#include <QRectF>

namespace korvia {

/// A part of a text that is too wide for one picture, from top to bottom.
struct TextPart {
  enum class Kept { Left, Right };

  int begin = 0;
  /// 0 for the whole text.
  int width = 0;
  /// The side that is drawn of a part that is too large for a picture.
  Kept kept = Kept::Left;
};

struct TextPicture {
  /// Premultiplied ARGB; null when nothing is visible.
  QImage image;
  /// The upper left corner of the image, in pixels of the render picture from the centre of the item. Outline
  /// and shadow enlarge the image and leave the text in its place.
  QPoint corner;
  /// The box of the text, in pixels of the render picture from the centre of the item.
  QRectF box;
  /// The part that was drawn, in pixels from the left of the box.
  TextPart part;
};

}  // namespace korvia
