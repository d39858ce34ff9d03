// A picture over the picture of a bus: a drawing, a title, a logo. Made on the raster worker, immutable
// after that, shared between threads.
#pragma once
#include <QImage>
#include <QPoint>
#include <QRectF>
#include <memory>
#include <vector>

#include "engine/frame/Frame.h"
#include "engine/frame/FrameFit.h"

namespace korvia {

/// Which part of a crawl a layer shows, in pixels from the left of its content. Only its owner uses it.
struct CrawlPart {
  int begin = 0;
  int end = 0;
  /// Of the text.
  int revision = 0;
};

struct Layer;
using LayerRef = std::shared_ptr<const Layer>;

struct Layer {
  /// Premultiplied, with alpha, of the rectangle's size; null for a blank part of a crawl.
  FrameRef picture;
  /// The alpha at the size of the chroma planes, in rows of chromaWidth(): means of 2 x 2 samples.
  std::vector<std::uint8_t> chromaAlpha;
  /// The same samples pixel by pixel, as the kernels of PixelKernels.h take them; empty for a layer that
  /// cannot be moved.
  std::vector<std::uint8_t> lumaPixels;
  std::vector<std::uint8_t> chromaPixels;
  /// The rectangle in the picture of the bus. Its edges are even, so that the chroma samples of both
  /// pictures coincide, or are the edges of the bus's picture. That of a layer that may be moved can lie
  /// outside of the bus's picture.
  FrameRect rect;
  /// What the operator places, without outline and shadow, in pixels of the bus's picture; empty for a layer
  /// that cannot be moved.
  QRectF content;
  CrawlPart part;
  /// Size of the bus's picture that it was made for. It is not shown over pictures of other sizes.
  FrameSize busSize;
  /// Unique in the process, so that it tells whether a layer changed.
  std::uint64_t version = 0;

  /// The image with its upper left corner at `at`, clipped at the borders of the bus's picture and cropped
  /// to what is not transparent. Null when nothing is visible. Converts the image, so do not call it on the
  /// engine or the console thread.
  static LayerRef make(const QImage& image, QPoint at, FrameSize busSize);
  /// The same for a layer that will be moved, scaled or rotated: not clipped, and with a transparent border,
  /// which makes its edges smooth. `content` as in the member.
  static LayerRef makeMovable(const QImage& image, QPoint at, FrameSize busSize, const QRectF& content,
                              const CrawlPart& part = {});

  /// A part of a crawl in which nothing is visible: content and part without a picture. It is for the owner
  /// of the crawl, and not for a stack.
  static LayerRef makeBlank(FrameSize busSize, const QRectF& content, const CrawlPart& part);

  /// Row `y` of the alpha for a plane, counted within the rectangle.
  const std::uint8_t* alphaRow(int plane, int y) const;
};

}  // namespace korvia
