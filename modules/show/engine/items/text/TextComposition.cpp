#include "TextComposition.h"

#include <algorithm>

namespace korvia {

namespace {

std::uint32_t scaled(std::uint32_t value, std::uint32_t by) {
  const std::uint32_t product = value * by + 128;
  return (product + (product >> 8)) >> 8;
}

QRgb scaledPixel(QRgb pixel, std::uint32_t by) {
  return scaled(pixel >> 24, by) << 24 | scaled(pixel >> 16 & 255, by) << 16 |
         scaled(pixel >> 8 & 255, by) << 8 | scaled(pixel & 255, by);
}

std::uint32_t limitedSum(std::uint32_t a, std::uint32_t b) {
  return std::min(a + b, 255U);
}

/// Rounding may carry a sum of premultiplied parts beyond 255.
QRgb sumOf(QRgb a, QRgb b) {
  return limitedSum(a >> 24, b >> 24) << 24 | limitedSum(a >> 16 & 255, b >> 16 & 255) << 16 |
         limitedSum(a >> 8 & 255, b >> 8 & 255) << 8 | limitedSum(a & 255, b & 255);
}

}  // namespace

TextComposition::TextComposition(const tagKorviaShowTextStyle& style, const GlyphPicture& glyphs,
                                 TextFill& fill, const QRect& rect)
    : glyphs_(glyphs),
      fill_(fill),
      rect_(rect),
      outlineColor_(qPremultiply(style.outlineColor)),
      shadowColor_(qPremultiply(style.shadowColor)),
      covered_(static_cast<std::size_t>(rect.width())) {}

template <typename Visit>
void TextComposition::forSpan(const PlacedCoverage& shape, int y, Visit visit) const {
  const int shapeY = rect_.top() + y - shape.rect.top();
  if (shapeY < 0 || shapeY >= shape.coverage.height)
    return;
  const std::uint8_t* samples = shape.coverage.row(shapeY);
  const QRect span = shape.rect & rect_;
  for (int x = span.left(); x <= span.right(); ++x)
    if (const std::uint8_t sample = samples[x - shape.rect.left()]; sample != 0)
      visit(x - rect_.left(), sample);
}

void TextComposition::composeRow(int y, const PlacedCoverage& outline, const PlacedCoverage& shadow,
                                 QRgb* out) {
  std::fill(covered_.begin(), covered_.end(), std::uint8_t{0});
  addGlyphs(y, out);
  forSpan(outline, y, [&](int x, std::uint8_t sample) {
    const auto at = static_cast<std::size_t>(x);
    out[x] = sumOf(out[x], scaledPixel(outlineColor_, scaled(sample, 255U - covered_[at])));
  });
  forSpan(shadow, y, [&](int x, std::uint8_t sample) {
    out[x] = sumOf(out[x], scaledPixel(scaledPixel(shadowColor_, sample), 255U - (out[x] >> 24)));
  });
}

void TextComposition::addGlyphs(int y, QRgb* out) {
  const int glyphY = rect_.top() + y - glyphs_.rect.top();
  if (glyphY < 0 || glyphY >= glyphs_.rect.height())
    return;
  const QRgb* colors = fill_.row(glyphY);
  const bool hasColors = !glyphs_.colored.isNull();
  const std::uint8_t* all = glyphs_.glyphs.row(glyphY);
  const std::uint8_t* ink = hasColors ? glyphs_.inked.row(glyphY) : all;
  const auto* own =
      hasColors ? reinterpret_cast<const QRgb*>(glyphs_.colored.constScanLine(glyphY)) : nullptr;
  const QRect span = glyphs_.rect & rect_;
  for (int at = span.left(); at <= span.right(); ++at) {
    const int x = at - glyphs_.rect.left();
    if (all[x] == 0)
      continue;
    const QRgb filled = scaledPixel(colors[x], ink[x]);
    const int to = at - rect_.left();
    out[to] = own ? sumOf(filled, own[x]) : filled;
    covered_[static_cast<std::size_t>(to)] = all[x];
  }
}

}  // namespace korvia
