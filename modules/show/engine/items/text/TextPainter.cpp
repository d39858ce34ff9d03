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
/// Of a text that is drawn in parts, in pixels of 1080 lines.
constexpr double kMostPartedWidth = 2e6;
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

QRect limitedHeight(FrameSize size, const QRect& wanted) {
  const int height = std::min(2 * size.height, kMostSide);
  return wanted.height() > height ? wanted & QRect(wanted.left(), -height / 2, wanted.width(), height)
                                  : wanted;
}

int mostWidth(FrameSize size, int height) {
  const qint64 area = 2LL * size.width * size.height;
  return static_cast<int>(std::clamp<qint64>(area / std::max(1, height), 1, kMostSide));
}

/// The part of the rectangle that may be drawn: all of it, or what lies around the centre of the item.
QRect mostDrawn(FrameSize size, const QRect& wanted) {
  const QRect most = limitedHeight(size, wanted);
  const int width = mostWidth(size, most.height());
  return most.width() > width ? most & QRect(-width / 2, most.top(), width, most.height()) : most;
}

/// The rectangle of a part of the text, which is limited to what may be drawn. What overhangs at the ends of
/// the text is included.
QRect drawnPart(FrameSize size, const QRect& wanted, const QRectF& box, TextPart& part) {
  QRect most = limitedHeight(size, wanted);
  // A text that fills the picture is drawn twice as wide as the picture at least, so that the part lasts.
  const int width =
      std::min({part.width, std::max(mostWidth(size, most.height()), 2 * size.width), kMostSide});
  if (part.kept == TextPart::Kept::Right)
    part.begin += part.width - width;
  part.width = width;
  const int left = static_cast<int>(std::floor(box.left())) + part.begin;
  if (part.begin > 0)
    most.setLeft(left);
  if (part.begin + part.width < std::ceil(box.width()))
    most.setRight(left + part.width - 1);
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

const TextShape& TextPainter::shapeOf(const ShapeKey& key) {
  if (!shape_ || key != shapeKey_) {
    shape_ =
        std::make_unique<TextShape>(key.text, chooseFont(key.fontName, key.fontSize), key.box, key.limits);
    shapeKey_ = key;
  }
  return *shape_;
}

TextPicture TextPainter::paint(const tagKorviaShowTextInfo& info, FrameSize renderSize, const QDateTime& now,
                               const TextPart& part) {
  TextPicture result;
  const tagKorviaShowTextStyle& style = info.style;
  const QString text = expandText(info.text, info.timeFormat, now);
  if (renderSize.isEmpty() || style.fontSize < 1 || text.trimmed().isEmpty())
    return result;
  const double scale = renderSize.height / kNominalLines;
  const int fontSize = std::min(style.fontSize, kMostFontSize);
  const bool isWhole = part.width <= 0;
  const TextLimits limits =
      isWhole ? TextLimits{kMostSide / scale} : TextLimits{kMostPartedWidth, kMostTextCharacters};
  const TextShape& shape =
      shapeOf({text, style.fontName, fontSize, boxOf(info, renderSize.width / scale), limits});
  result.box = QRectF(shape.box().topLeft() * scale, shape.box().size() * scale);

  const Effects effects(style, scale);
  const int overhang = static_cast<int>(std::ceil(fontSize * kOverhang * scale));
  const QRect lines = QRectF(shape.lines().topLeft() * scale, shape.lines().size() * scale)
                          .toAlignedRect()
                          .adjusted(-overhang, -overhang, overhang, overhang);
  const int reach = effects.reach();
  const QRect wanted = lines.adjusted(-reach, -reach, reach, reach);
  result.part = part;
  const QRect most =
      isWhole ? mostDrawn(renderSize, wanted) : drawnPart(renderSize, wanted, result.box, result.part);
  const QRect clip = clipOf(shape, scale, most, effects.outlineReach());
  // The glyphs beside a part throw their outline and shadow into it.
  const QRect glyphClip = isWhole ? clip : clip.adjusted(-reach, 0, reach, 0);
  const GlyphPicture glyphs = GlyphPicture::draw(shape, scale, lines & glyphClip);
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
