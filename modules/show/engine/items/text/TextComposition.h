// Puts the parts of a text over each other, row by row: the shadow below the outline, the outline around the
// glyphs. The outline is left out behind the glyphs, so that a text without fill is hollow. One thread.
#pragma once
#include <QRect>
#include <vector>

#include "engine/items/text/GlyphPicture.h"
#include "engine/items/text/PlacedCoverage.h"
#include "engine/items/text/TextFill.h"

namespace korvia {

class TextComposition {
 public:
  /// `rect` is that of the picture, in pixels of the render picture from the centre of the item. Glyphs and
  /// fill must outlive the composition.
  TextComposition(const tagKorviaShowTextStyle& style, const GlyphPicture& glyphs, TextFill& fill,
                  const QRect& rect);

  /// Writes the row `y` of the picture, which must be transparent.
  void composeRow(int y, const PlacedCoverage& outline, const PlacedCoverage& shadow, QRgb* out);

 private:
  template <typename Visit>
  void forSpan(const PlacedCoverage& shape, int y, Visit visit) const;
  void addGlyphs(int y, QRgb* out);

  const GlyphPicture& glyphs_;
  TextFill& fill_;
  QRect rect_;
  QRgb outlineColor_;
  QRgb shadowColor_;
  std::vector<std::uint8_t> covered_;  // by the glyphs of the row
};

}  // namespace korvia
