#include "Layer.h"

#include <QRect>
#include <algorithm>
#include <atomic>
#include <cstring>

#include "engine/frame/PictureFrame.h"
#include "engine/frame/PlaneView.h"

namespace korvia {

namespace {

// Transparent pixels around a layer that may be moved: a chroma sample and its neighbour.
constexpr int kBorder = 4;

/// The smallest rectangle around all pixels within `part` that are not transparent.
QRect coveredPart(const QImage& image, const QRect& part) {
  const auto covers = [](QRgb pixel) { return qAlpha(pixel) != 0; };
  int left = part.right() + 1;
  int right = part.left();
  int top = part.bottom() + 1;
  int bottom = part.top();
  for (int y = part.top(); y <= part.bottom(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    const QRgb* begin = row + part.left();
    const QRgb* end = row + part.right() + 1;
    const QRgb* first = std::find_if(begin, end, covers);
    if (first == end)
      continue;
    const QRgb* last = end;
    while (!covers(last[-1]))
      --last;
    left = std::min(left, static_cast<int>(first - row));
    right = std::max(right, static_cast<int>(last - row));
    top = std::min(top, y);
    bottom = y + 1;
  }
  return {left, top, std::max(0, right - left), std::max(0, bottom - top)};
}

/// The rectangle with its edges moved outwards to even numbers, limited to the bus's picture.
FrameRect onChromaGrid(const QRect& rect, FrameSize bus) {
  const int left = rect.left() & ~1;
  const int top = rect.top() & ~1;
  const int right = std::min((rect.right() + 2) & ~1, bus.width);
  const int bottom = std::min((rect.bottom() + 2) & ~1, bus.height);
  return {left, top, right - left, bottom - top};
}

std::vector<std::uint8_t> meansOfAlpha(const Frame& picture) {
  const PlaneView alpha = planeOf(picture, Frame::A);
  const int width = picture.size().chromaWidth();
  const int height = picture.size().chromaHeight();
  std::vector<std::uint8_t> means(static_cast<std::size_t>(width) * height);
  for (int y = 0; y < height; ++y) {
    const std::uint8_t* upper = alpha.row(2 * y);
    const std::uint8_t* lower = alpha.row(std::min(2 * y + 1, alpha.height - 1));
    std::uint8_t* out = means.data() + static_cast<std::ptrdiff_t>(y) * width;
    for (int x = 0; x < width; ++x) {
      const int next = std::min(2 * x + 1, alpha.width - 1);
      const int sum = upper[2 * x] + upper[next] + lower[2 * x] + lower[next];
      out[x] = static_cast<std::uint8_t>((sum + 2) / 4);
    }
  }
  return means;
}

std::vector<std::uint8_t> lumaPixelsOf(const Frame& picture) {
  const PlaneView luma = planeOf(picture, Frame::Y);
  const PlaneView alpha = planeOf(picture, Frame::A);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(luma.width) * luma.height * 2);
  std::uint8_t* out = pixels.data();
  for (int y = 0; y < luma.height; ++y) {
    for (int x = 0; x < luma.width; ++x) {
      *out++ = luma.row(y)[x];
      *out++ = alpha.row(y)[x];
    }
  }
  return pixels;
}

std::vector<std::uint8_t> chromaPixelsOf(const Layer& layer) {
  const PlaneView u = planeOf(*layer.picture, Frame::U);
  const PlaneView v = planeOf(*layer.picture, Frame::V);
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(u.width) * u.height * 4);
  std::uint8_t* out = pixels.data();
  for (int y = 0; y < u.height; ++y) {
    for (int x = 0; x < u.width; ++x, out += 4) {
      out[0] = u.row(y)[x];
      out[1] = v.row(y)[x];
      out[2] = layer.alphaRow(Frame::U, y)[x];
    }
  }
  return pixels;
}

QImage premultiplied(const QImage& image) {
  return image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

int evenBelow(int edge) {
  return edge & ~1;
}

/// The covered part of the image, which lies at `at`, on a transparent picture with this rectangle.
std::shared_ptr<Layer> layerOf(const QImage& source, const QRect& covered, QPoint at, const FrameRect& rect,
                               FrameSize busSize) {
  auto layer = std::make_shared<Layer>();
  layer->rect = rect;
  QImage canvas(rect.width, rect.height, QImage::Format_ARGB32_Premultiplied);
  if (canvas.isNull())
    return {};
  canvas.fill(Qt::transparent);
  const QPoint place = covered.topLeft() + at - QPoint(rect.x, rect.y);
  for (int y = 0; y < covered.height(); ++y)
    std::memcpy(
        canvas.scanLine(place.y() + y) + static_cast<std::ptrdiff_t>(place.x()) * sizeof(QRgb),
        source.constScanLine(covered.y() + y) + static_cast<std::ptrdiff_t>(covered.x()) * sizeof(QRgb),
        static_cast<std::size_t>(covered.width()) * sizeof(QRgb));
  layer->picture = frameFromImage(canvas, FrameAlpha::Plane);
  layer->chromaAlpha = meansOfAlpha(*layer->picture);
  layer->busSize = busSize;
  static std::atomic<std::uint64_t> lastVersion{0};
  layer->version = ++lastVersion;
  return layer;
}

}  // namespace

LayerRef Layer::make(const QImage& image, QPoint at, FrameSize busSize) {
  const QRect bus(0, 0, busSize.width, busSize.height);
  const QImage source = premultiplied(image);
  const QRect covered = coveredPart(source, (QRect(at, image.size()) & bus).translated(-at));
  return covered.isEmpty()
             ? LayerRef()
             : layerOf(source, covered, at, onChromaGrid(covered.translated(at), busSize), busSize);
}

LayerRef Layer::makeMovable(const QImage& image, QPoint at, FrameSize busSize, const QRectF& content,
                            const CrawlPart& part) {
  const QImage source = premultiplied(image);
  const QRect covered = coveredPart(source, source.rect());
  if (covered.isEmpty())
    return {};
  const QRect rect = covered.translated(at);
  const int left = evenBelow(rect.left() - kBorder);
  const int top = evenBelow(rect.top() - kBorder);
  const FrameRect bordered{left, top, evenBelow(rect.right() + 2 + kBorder) - left,
                           evenBelow(rect.bottom() + 2 + kBorder) - top};
  std::shared_ptr<Layer> layer = layerOf(source, covered, at, bordered, busSize);
  if (!layer)
    return {};
  layer->content = content;
  layer->part = part;
  layer->lumaPixels = lumaPixelsOf(*layer->picture);
  layer->chromaPixels = chromaPixelsOf(*layer);
  return layer;
}

LayerRef Layer::makeBlank(FrameSize busSize, const QRectF& content, const CrawlPart& part) {
  auto layer = std::make_shared<Layer>();
  layer->content = content;
  layer->part = part;
  layer->busSize = busSize;
  return layer;
}

const std::uint8_t* Layer::alphaRow(int plane, int y) const {
  if (plane == Frame::Y)
    return planeOf(*picture, Frame::A).row(y);
  return chromaAlpha.data() + static_cast<std::ptrdiff_t>(y) * picture->size().chromaWidth();
}

}  // namespace korvia
