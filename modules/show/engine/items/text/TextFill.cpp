#include "TextFill.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

namespace korvia {

namespace {

QRgb mixOf(QRgb begin, QRgb end, double position) {
  const auto mix = [position](int from, int to) {
    return static_cast<int>(std::lround(from + (to - from) * position));
  };
  return qRgba(mix(qRed(begin), qRed(end)), mix(qGreen(begin), qGreen(end)), mix(qBlue(begin), qBlue(end)),
               mix(qAlpha(begin), qAlpha(end)));
}

}  // namespace

TextFill::TextFill(const tagKorviaShowTextStyle& style, const TextShape& shape, double scale,
                   const QRect& rect, TexturePicture& texture)
    : isGradient_(style.colorMode == TextColorGradient),
      begin_(style.gradientBeginColor),
      end_(style.gradientEndColor),
      top_(shape.capTop() * scale),
      bottom_(shape.lastBaseline() * scale),
      rect_(rect),
      row_(static_cast<std::size_t>(rect.width()), qPremultiply(style.solidColor)) {
  if (style.colorMode != TextColorTexture)
    return;
  const QImage& tile = texture.picture(style.texturePath);
  if (!tile.isNull())
    drawTexture(tile, shape.lines().topLeft() * scale, scale);
}

void TextFill::drawTexture(const QImage& tile, QPointF origin, double scale) {
  textured_ = QImage(rect_.size(), QImage::Format_ARGB32_Premultiplied);
  if (textured_.isNull())
    return;
  textured_.fill(Qt::transparent);
  QPainter painter(&textured_);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  // Fixed to the lines, so that a texture stays where it is when outline and shadow change.
  const QPointF place = origin - QPointF(rect_.topLeft());
  painter.translate(place);
  painter.scale(scale, scale);
  const QRectF filled(-place / scale, QSizeF(rect_.size()) / scale);
  painter.fillRect(filled.adjusted(-1, -1, 1, 1), QBrush(tile));
}

const QRgb* TextFill::row(int y) {
  if (!textured_.isNull())
    return reinterpret_cast<const QRgb*>(textured_.constScanLine(y));
  if (isGradient_) {
    const double length = std::max(bottom_ - top_, 1.0);
    const double position = std::clamp((rect_.top() + y + 0.5 - top_) / length, 0.0, 1.0);
    std::fill(row_.begin(), row_.end(), qPremultiply(mixOf(begin_, end_, position)));
  }
  return row_.data();
}

}  // namespace korvia
