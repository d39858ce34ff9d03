#include "PictureScaler.h"

#include <libyuv.h>

#include <algorithm>

#include "engine/frame/RgbRow.h"

namespace korvia {

Frame& PictureScaler::scratch(std::unique_ptr<Frame>& frame, FrameSize size) {
  if (!frame || frame->size() != size)
    frame = std::make_unique<Frame>(size, false);
  return *frame;
}

// Halving by averaging is several times quicker than an area filter and leaves less than a factor of two for
// the bilinear step, which then has nothing to alias.
const Frame& PictureScaler::halved(const Frame& picture, FrameSize size) {
  const Frame* source = &picture;
  for (std::unique_ptr<Frame>& half : halves_) {
    const FrameSize next{source->width() / 2, source->height() / 2};
    if (next.width < size.width || next.height < size.height || source->width() % 4 || source->height() % 4)
      break;
    Frame& out = scratch(half, next);
    for (int plane = 0; plane < 3; ++plane)
      libyuv::ScalePlane(source->plane(plane), source->stride(plane), source->planeWidth(plane),
                         source->planeHeight(plane), out.writablePlane(plane), out.stride(plane),
                         out.planeWidth(plane), out.planeHeight(plane), libyuv::kFilterBox);
    source = &out;
  }
  return *source;
}

void PictureScaler::toRgb(const Frame& picture, FrameSize size, std::uint8_t* pixels, int stride) {
  if (size.isEmpty())
    return;
  const Frame& source = halved(picture, size);
  const auto filter = source.width() > 2 * size.width || source.height() > 2 * size.height
                          ? libyuv::kFilterBox
                          : libyuv::kFilterBilinear;
  const std::size_t planeSize = static_cast<std::size_t>(size.width) * size.height;
  if (planes_.size() != 3 * planeSize)
    planes_.resize(3 * planeSize);
  // Chroma goes straight to the size of luma: smaller than the picture as a rule, it loses nothing on the
  // way.
  for (int plane = 0; plane < 3; ++plane)
    libyuv::ScalePlane(source.plane(plane), source.stride(plane), source.planeWidth(plane),
                       source.planeHeight(plane), planes_.data() + plane * planeSize, size.width, size.width,
                       size.height, filter);
  for (int row = 0; row < size.height; ++row) {
    const std::uint8_t* y = planes_.data() + static_cast<std::size_t>(row) * size.width;
    rowToRgb(y, y + planeSize, y + 2 * planeSize,
             reinterpret_cast<std::uint32_t*>(pixels + static_cast<std::ptrdiff_t>(row) * stride),
             size.width);
  }
}

MonitorRect monitorRect(FrameSize picture, FrameSize window) {
  MonitorRect rect;
  if (picture.isEmpty() || window.isEmpty())
    return rect;
  const std::int64_t byWidth = static_cast<std::int64_t>(window.width) * picture.height;
  const std::int64_t byHeight = static_cast<std::int64_t>(window.height) * picture.width;
  if (byWidth <= byHeight)
    rect.size = {window.width, static_cast<int>(std::max<std::int64_t>(1, byWidth / picture.width))};
  else
    rect.size = {static_cast<int>(std::max<std::int64_t>(1, byHeight / picture.height)), window.height};
  rect.x = (window.width - rect.size.width) / 2;
  rect.y = (window.height - rect.size.height) / 2;
  return rect;
}

}  // namespace korvia
