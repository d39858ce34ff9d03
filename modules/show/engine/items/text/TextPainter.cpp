#include "TextPainter.h"

#include <QLoggingCategory>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "engine/items/text/FontChoice.h"
#include "engine/items/text/GlyphPicture.h"
#include "engine/items/text/TextExpansion.h"

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

/// A coverage and where it lies, in pixels from the centre of the item.
struct Placed {
  Coverage coverage;
  QRect rect;
};

Placed dilatedBy(const Coverage& from, const QRect& rect, double radius) {
  const int margin = dilationMargin(radius);
  return {dilated(from, radius), rect.adjusted(-margin, -margin, margin, margin)};
}

void blur(Placed& shape, double radius) {
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

QRgb mixOf(QRgb begin, QRgb end, double position) {
  const auto mix = [position](int from, int to) {
    return static_cast<int>(std::lround(from + (to - from) * position));
  };
  return qRgba(mix(qRed(begin), qRed(end)), mix(qGreen(begin), qGreen(end)), mix(qBlue(begin), qBlue(end)),
               mix(qAlpha(begin), qAlpha(end)));
}

/// The colours of the fill, row by row.
class Fill {
 public:
  Fill(const tagKorviaShowTextStyle& style, const TextShape& shape, double scale, const QRect& rect,
       TexturePicture& texture)
      : style_(style), top_(shape.capTop() * scale), bottom_(shape.lastBaseline() * scale), rect_(rect) {
    row_.resize(static_cast<std::size_t>(rect.width()), qPremultiply(style.solidColor));
    if (style.colorMode != TextColorTexture)
      return;
    const QImage& tile = texture.picture(style.texturePath);
    if (tile.isNull())
      return;
    textured_ = QImage(rect.size(), QImage::Format_ARGB32_Premultiplied);
    if (textured_.isNull())
      return;
    textured_.fill(Qt::transparent);
    QPainter painter(&textured_);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    // Fixed to the lines, so that a texture stays where it is when outline and shadow change.
    painter.translate(shape.lines().topLeft() * scale - QPointF(rect.topLeft()));
    painter.scale(scale, scale);
    const QRectF filled(QPointF(rect.topLeft()) / scale - shape.lines().topLeft(),
                        QSizeF(rect.size()) / scale);
    painter.fillRect(filled.adjusted(-1, -1, 1, 1), QBrush(tile));
  }

  /// Premultiplied colours of a row of the rectangle, counted from its top.
  const QRgb* row(int y) {
    if (!textured_.isNull())
      return reinterpret_cast<const QRgb*>(textured_.constScanLine(y));
    if (style_.colorMode == TextColorGradient) {
      const double length = std::max(bottom_ - top_, 1.0);
      const double position = std::clamp((rect_.top() + y + 0.5 - top_) / length, 0.0, 1.0);
      const QRgb color = qPremultiply(mixOf(style_.gradientBeginColor, style_.gradientEndColor, position));
      std::fill(row_.begin(), row_.end(), color);
    }
    return row_.data();
  }

 private:
  const tagKorviaShowTextStyle& style_;
  double top_;
  double bottom_;
  QRect rect_;
  std::vector<QRgb> row_;
  QImage textured_;
};

/// Puts the parts of a text over each other, row by row: the shadow below the outline, the outline around the
/// glyphs. The outline is left out behind the glyphs, so that a text without fill is hollow.
class Composition {
 public:
  Composition(const tagKorviaShowTextStyle& style, const GlyphPicture& glyphs, Fill& fill, const QRect& rect)
      : glyphs_(glyphs),
        fill_(fill),
        rect_(rect),
        outlineColor_(qPremultiply(style.outlineColor)),
        shadowColor_(qPremultiply(style.shadowColor)),
        covered_(static_cast<std::size_t>(rect.width())) {}

  void composeRow(int y, const Placed& outline, const Placed& shadow, QRgb* out) {
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

 private:
  template <typename Visit>
  void forSpan(const Placed& shape, int y, Visit visit) const {
    const int shapeY = rect_.top() + y - shape.rect.top();
    if (shapeY < 0 || shapeY >= shape.coverage.height)
      return;
    const std::uint8_t* samples = shape.coverage.row(shapeY);
    const QRect span = shape.rect & rect_;
    for (int x = span.left(); x <= span.right(); ++x)
      if (const std::uint8_t sample = samples[x - shape.rect.left()]; sample != 0)
        visit(x - rect_.left(), sample);
  }

  void addGlyphs(int y, QRgb* out) {
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

  const GlyphPicture& glyphs_;
  Fill& fill_;
  QRect rect_;
  QRgb outlineColor_;
  QRgb shadowColor_;
  std::vector<std::uint8_t> covered_;
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

void addEffects(const tagKorviaShowTextStyle& style, const Effects& effects, const GlyphPicture& glyphs,
                Placed& outline, Placed& shadow) {
  if (effects.hasOutline)
    outline = dilatedBy(glyphs.glyphs, glyphs.rect, effects.outlineSize);
  if (effects.hasShadow) {
    // Glyphs and outline together throw it; glyphs alone would hide theirs behind the outline.
    if (effects.hasOutline)
      shadow = outline;
    else
      shadow = {glyphs.glyphs, glyphs.rect};
    const bool isHidden =
        effects.shadowOffset.isNull() && effects.shadowBlur == 0 && qAlpha(style.solidColor) == 255;
    if (isHidden && style.colorMode == TextColorSolid)
      shadow = {};
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

  Placed outline;
  Placed shadow;
  addEffects(style, effects, glyphs, outline, shadow);
  const QRect rect = (glyphs.rect | outline.rect | shadow.rect) & clip;
  result.image = QImage(rect.size(), QImage::Format_ARGB32_Premultiplied);
  if (result.image.isNull())
    return result;
  result.image.fill(Qt::transparent);
  result.corner = rect.topLeft();
  Fill fill(style, shape, scale, glyphs.rect, texture_);
  Composition composition(style, glyphs, fill, rect);
  for (int y = 0; y < rect.height(); ++y)
    composition.composeRow(y, outline, shadow, reinterpret_cast<QRgb*>(result.image.scanLine(y)));
  return result;
}

}  // namespace korvia
