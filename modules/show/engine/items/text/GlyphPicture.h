// The glyphs of a text before they are filled. A plain value, any thread.
#pragma once
#include <QImage>
#include <QPoint>
#include <QRect>

#include "engine/items/text/GlyphEffects.h"
#include "engine/items/text/TextShape.h"

namespace korvia {

struct GlyphPicture {
  /// Where the pictures lie, in pixels of the render picture from the centre of the item; empty when there is
  /// nothing to be seen.
  QRect rect;
  /// All glyphs.
  Coverage glyphs;
  /// The glyphs that take a colour. Empty when these are all of them.
  Coverage inked;
  /// The glyphs with colours of their own, premultiplied. Null when there are none.
  QImage colored;

  /// Draws the text `scale` times its nominal size, clipped to `clip`, which is in pixels of the render
  /// picture, and cropped to what is covered.
  static GlyphPicture draw(const TextShape& shape, double scale, const QRect& clip);
};

}  // namespace korvia
