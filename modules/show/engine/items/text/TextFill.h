// The colours that the glyphs of a text are filled with, row by row. One thread.
#pragma once
#include <QImage>
#include <QRect>
#include <vector>

#include "engine/items/text/TextShape.h"
#include "engine/items/text/TexturePicture.h"
#include "tagKorviaShowTextStyle.h"

namespace korvia {

class TextFill {
 public:
  /// For the rectangle of the glyphs, in pixels of the render picture from the centre of the item. A gradient
  /// runs from the top of the capitals of the first line to the last baseline. A texture is scaled with the
  /// text; one that cannot be read is replaced by the solid colour.
  TextFill(const tagKorviaShowTextStyle& style, const TextShape& shape, double scale, const QRect& rect,
           TexturePicture& texture);

  /// Premultiplied colours of a row of the rectangle, counted from its top; valid until the next call.
  const QRgb* row(int y);

 private:
  void drawTexture(const QImage& tile, QPointF origin, double scale);

  bool isGradient_;
  QRgb begin_;
  QRgb end_;
  double top_;
  double bottom_;
  QRect rect_;
  std::vector<QRgb> row_;
  QImage textured_;
};

}  // namespace korvia
