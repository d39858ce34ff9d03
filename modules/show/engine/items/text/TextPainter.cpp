#include "TextPainter.h"

#include <algorithm>
#include <cmath>

#include "engine/items/text/FontChoice.h"
#include "engine/items/text/GlyphPicture.h"
#include "engine/items/text/TextComposition.h"
#include "engine/items/text/TextExpansion.h"
#include "engine/items/text/TextFill.h"

namespace korvia {

namespace {

constexpr int kMostFontSize = 2048;
constexpr int kMostSide = 16384;
/// Limits of lengths in pixels of 1080 lines.
constexpr double kMostEffect = 128;
constexpr double kMostBoxShare = 8;
/// Glyphs may reach this part of the font size beyond their line.
constexpr double kOverhang = 0.5;

double finiteWithin(double value, double low, double high) {
  return std::isfinite(value) ? std::clamp(value, low, high) : 0;
}

PlacedCoverage dilatedBy(const Coverage& from, const QRect& rect, double radius) {
  const int margin = dilationMargin(radius);
  return {dilated(from, radius), rect.adjusted(-margin, -margin, margin, margin)};
}

void blur(PlacedCoverage& shape, double radius) {
  const int margin = blurMargin(radius);
  if (margin == 0)
    return;
  shape.coverage = blurred(shape.coverage, radius);
  shape.rect.adjust(-margin, -margin, margin, margin);
}

/// Outline and shadow in pixels of the render picture.
struct Effects {
  double outlineSize = 0;
  double outlineBlur = 0;
  double shadowBlur = 0;
  QPoint shadowOffset;
  bool hasOutline = false;
  bool hasShadow = false;

  Effects(const tagKorviaShowTextStyle& style, double scale) {
    const auto pixels = [scale](double length) { return finiteWithin(length, 0, kMostEffect) * scale; };
    const auto offset = [scale](double length) {
      return static_cast<int>(std::lround(finiteWithin(length, -kMostEffect, kMostEffect) * scale));
    };
    outlineSize = pixels(style.outlineSize);
    outlineBlur = pixels(static_cast<double>(style.outlineBlur));
    shadowBlur = pixels(static_cast<double>(style.shadowBlur));
    shadowOffset = {offset(style.shadowDistanceX), -offset(style.shadowDistanceY)};
    hasOutline = outlineSize > 0 && qAlpha(style.outlineColor) != 0;
    hasShadow = qAlpha(style.shadowColor) != 0;
  }
  int outlineReach() const { return hasOutline ? dilationMargin(outlineSize) + blurMargin(outlineBlur) : 0; }
  /// How far the picture may reach beyond the glyphs.
  int reach() const {
    const int shadowReach = hasShadow ? blurMargin(shadowBlur) + shadowOffset.manhattanLength() : 0;
    return outlineReach() + shadowReach;
  }
};

TextSide sideOf(qint32 alignment, qint32 begin, qint32 end) {
  if ((alignment & begin) != 0)
    return TextSide::Begin;
  return (alignment & end) != 0 ? TextSide::End : TextSide::Middle;
}

TextBox boxOf(const tagKorviaShowTextInfo& info, double pictureWidth) {
  constexpr qint32 kLeft = 1;
  constexpr qint32 kRight = 2;
  constexpr qint32 kTop = 0x20;
  constexpr qint32 kBottom = 0x40;
  TextBox box;
  box.width = finiteWithin(info.width, 0, kMostBoxShare) * pictureWidth;
  box.height = finiteWithin(info.height, 0, kMostBoxShare) * kNominalLines;
  box.horizontal = sideOf(info.hAlign, kLeft, kRight);
  // The editor writes the vertical choice into hAlign.
  const qint32 vertical = (info.hAlign & (kTop | kBottom)) != 0 ? info.hAlign : info.vAlign;
  box.vertical = sideOf(vertical, kTop, kBottom);
  return box;
}

/// The part of the rectangle that may be drawn: all of it, or what lies around the centre of the item.
QRect mostDrawn(FrameSize size, const QRect& wanted) {
  QRect most = wanted;
  const int height = std::min(2 * size.height, kMostSide);
  if (most.height() > height)
    most &= QRect(most.left(), -height / 2, most.width(), height);
  const qint64 area = 2LL * size.width * size.height;
  const int width = static_cast<int>(std::clamp<qint64>(area / std::max(1, most.height()), 1, kMostSide));
  if (most.width() > width)
    most &= QRect(-width / 2, most.top(), width, most.height());
  return most;
}

/// The rectangle that the picture may fill: on sides on which lines do not fit into the box, the box and its
/// outline.
QRect clipOf(const TextShape& shape, double scale, const QRect& most, int outlineReach) {
  const QRectF box(shape.box().topLeft() * scale, shape.box().size() * scale);
  const QRectF lines(shape.lines().topLeft() * scale, shape.lines().size() * scale);
  const QRect limit = box.toAlignedRect().adjusted(-outlineReach, -outlineReach, outlineReach, outlineReach);
  constexpr double kTolerance = 0.5;
  QRect clip = most;
  if (lines.left() < box.left() - kTolerance)
    clip.setLeft(std::max(clip.left(), limit.left()));
  if (lines.right() > box.right() + kTolerance)
    clip.setRight(std::min(clip.right(), limit.right()));
  if (lines.top() < box.top() - kTolerance)
    clip.setTop(std::max(clip.top(), limit.top()));
  if (lines.bottom() > box.bottom() + kTolerance)
    clip.setBottom(std::min(clip.bottom(), limit.bottom()));
  return clip;
}

void addEffects(const Effects& effects, const GlyphPicture& glyphs, PlacedCoverage& outline,
                PlacedCoverage& shadow) {
  if (effects.hasOutline)
    outline = dilatedBy(glyphs.glyphs, glyphs.rect, effects.outlineSize);
  if (effects.hasShadow) {
    // Glyphs and outline together throw it; glyphs alone would hide theirs behind the outline.
    shadow = effects.hasOutline ? outline : PlacedCoverage{glyphs.glyphs, glyphs.rect};
    blur(shadow, effects.shadowBlur);
    shadow.rect.translate(effects.shadowOffset);
  }
  if (effects.hasOutline)
    blur(outline, effects.outlineBlur);
}

}  // namespace

TextPicture TextPainter::paint(const tagKorviaShowTextInfo& info, FrameSize renderSize,
                               const QDateTime& now) {
  TextPicture result;
  const tagKorviaShowTextStyle& style = info.style;
  const QString text = expandText(info.text, info.timeFormat, now);
  if (renderSize.isEmpty() || style.fontSize < 1 || text.trimmed().isEmpty())
    return result;
  const double scale = renderSize.height / kNominalLines;
  const int fontSize = std::min(style.fontSize, kMostFontSize);
  const TextShape shape(text, chooseFont(style.fontName, fontSize), boxOf(info, renderSize.width / scale),
                        kMostSide / scale);
  result.box = QRectF(shape.box().topLeft() * scale, shape.box().size() * scale);

  const Effects effects(style, scale);
  const int overhang = static_cast<int>(std::ceil(fontSize * kOverhang * scale));
  const QRect lines = QRectF(shape.lines().topLeft() * scale, shape.lines().size() * scale)
                          .toAlignedRect()
                          .adjusted(-overhang, -overhang, overhang, overhang);
  const int reach = effects.reach();
  const QRect most = mostDrawn(renderSize, lines.adjusted(-reach, -reach, reach, reach));
  const QRect clip = clipOf(shape, scale, most, effects.outlineReach());
  const GlyphPicture glyphs = GlyphPicture::draw(shape, scale, lines & clip);
  if (glyphs.rect.isEmpty())
    return result;

  PlacedCoverage outline;
  PlacedCoverage shadow;
  addEffects(effects, glyphs, outline, shadow);
  const QRect rect = (glyphs.rect | outline.rect | shadow.rect) & clip;
  result.image = QImage(rect.size(), QImage::Format_ARGB32_Premultiplied);
  if (result.image.isNull())
    return result;
  result.image.fill(Qt::transparent);
  result.corner = rect.topLeft();
  TextFill fill(style, shape, scale, glyphs.rect, texture_);
  TextComposition composition(style, glyphs, fill, rect);
  for (int y = 0; y < rect.height(); ++y)
    composition.composeRow(y, outline, shadow, reinterpret_cast<QRgb*>(result.image.scanLine(y)));
  return result;
}

}  // namespace korvia
