#include "GlyphPicture.h"

#include <QFont>
#include <QPainter>
#include <algorithm>
#include <cstring>

namespace korvia {

namespace {

QImage drawnWith(const TextShape& shape, double scale, const QRect& rect, const QColor& color) {
  QImage image(rect.size(), QImage::Format_ARGB32_Premultiplied);
  if (image.isNull())
    return image;
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing |
                         QPainter::SmoothPixmapTransform);
  painter.translate(-rect.topLeft());
  painter.scale(scale, scale);
  painter.setPen(color);
  shape.draw(painter, QRectF(QPointF(rect.topLeft()) / scale, QSizeF(rect.size()) / scale));
  return image;
}

const QRgb* rowOf(const QImage& image, int y) {
  return reinterpret_cast<const QRgb*>(image.constScanLine(y));
}

/// The part of the image that is not transparent.
QRect coveredPart(const QImage& image) {
  QRect covered;
  for (int y = 0; y < image.height(); ++y) {
    const QRgb* row = rowOf(image, y);
    const QRgb* end = row + image.width();
    const auto isSeen = [](QRgb pixel) { return pixel != 0; };
    const QRgb* first = std::find_if(row, end, isSeen);
    if (first == end)
      continue;
    const QRgb* last = end;
    while (!isSeen(last[-1]))
      --last;
    covered |= QRect(static_cast<int>(first - row), y, static_cast<int>(last - first), 1);
  }
  return covered;
}

template <typename Value>
Coverage coverageOf(const QImage& image, const QRect& part, Value value) {
  Coverage coverage(part.width(), part.height());
  for (int y = 0; y < part.height(); ++y) {
    const QRgb* row = rowOf(image, part.top() + y) + part.left();
    std::transform(row, row + part.width(), coverage.row(y), value);
  }
  return coverage;
}

bool hasColors(const QImage& drawnInBlack, const QRect& part) {
  for (int y = part.top(); y <= part.bottom(); ++y) {
    const QRgb* row = rowOf(drawnInBlack, y) + part.left();
    if (std::any_of(row, row + part.width(), [](QRgb pixel) { return (pixel & RGB_MASK) != 0; }))
      return true;
  }
  return false;
}

}  // namespace

GlyphPicture GlyphPicture::draw(const TextShape& shape, double scale, const QRect& clip) {
  const QRect drawn = clip;
  GlyphPicture result;
  if (drawn.isEmpty())
    return result;
  const QImage black = drawnWith(shape, scale, drawn, Qt::black);
  const QRect part = coveredPart(black);
  if (part.isEmpty())
    return result;
  result.rect = part.translated(drawn.topLeft());
  result.glyphs =
      coverageOf(black, part, [](QRgb pixel) { return static_cast<std::uint8_t>(qAlpha(pixel)); });
  if (!hasColors(black, part))
    return result;
  // Where the colour of the pen makes a difference there is ink: what black and white drawings have in common
  // are the glyphs with colours of their own.
  const QImage white = drawnWith(shape, scale, drawn, Qt::white);
  if (white.isNull())
    return result;
  result.colored = black.copy(part);
  result.inked = Coverage(part.width(), part.height());
  for (int y = 0; y < part.height(); ++y) {
    auto* dark = reinterpret_cast<QRgb*>(result.colored.scanLine(y));
    const QRgb* light = rowOf(white, part.top() + y) + part.left();
    for (int x = 0; x < part.width(); ++x) {
      const int ink = std::clamp(qGreen(light[x]) - qGreen(dark[x]), 0, qAlpha(dark[x]));
      result.inked.row(y)[x] = static_cast<std::uint8_t>(ink);
      dark[x] = (dark[x] & RGB_MASK) | static_cast<QRgb>(qAlpha(dark[x]) - ink) << 24;
    }
  }
  return result;
}

}  // namespace korvia
