// A picture that lies over a bus's picture: a drawing, a title, a logo. Made on the raster worker, immutable
// after, shared between threads.
#pragma once
#include <QImage>
#include <QPoint>
#include <memory>
#include <vector>

#include "engine/frame/Frame.h"
#include "engine/frame/FrameFit.h"

namespace korvia {

struct Layer;
using LayerRef = std::shared_ptr<const Layer>;

struct Layer {
  /// Premultiplied, with alpha, of the rectangle's size.
  FrameRef picture;
  /// The alpha at the size of the picture's chroma planes, rows of chromaWidth(): means of 2 x 2 samples.
  std::vector<std::uint8_t> chromaAlpha;
  /// Where the picture lies in the bus's. Its edges are even, so that chroma samples of both pictures
  /// coincide, unless they are the bus's own.
  FrameRect rect;
  /// Size of the bus's picture that it was made for; it lies over no other.
  FrameSize busSize;
  /// No two layers of a process have the same, so it tells whether something changed.
  std::uint64_t version = 0;

  /// The image with its left upper corner at `at`, clipped at the borders of the bus's picture and cut to
  /// what is not transparent. Null when nothing of it would be seen. Converts the image: not for the engine
  /// or the console thread.
  static LayerRef make(const QImage& image, QPoint at, FrameSize busSize);

  /// Row `y` of what covers a plane, counted within the rectangle.
  const std::uint8_t* alphaRow(int plane, int y) const;
};

}  // namespace korvia
