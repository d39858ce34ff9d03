#include "PaintLayer.h"

#include <libyuv/planar_functions.h>
#include <libyuv/scale.h>

#include <algorithm>
#include <vector>

#include "engine/frame/PictureFrame.h"
#include "engine/kernels/RowKernels.h"

namespace korvia {

namespace {

constexpr int kBlack[3] = {16, 128, 128};

/// The smallest rectangle with even edges around all that is not transparent; empty when nothing is.
FrameRect coveredRect(const Frame& frame) {
  int left = frame.width();
  int right = 0;
  int top = frame.height();
  int bottom = 0;
  for (int y = 0; y < frame.height(); ++y) {
    const std::uint8_t* row = frame.plane(Frame::A) + static_cast<std::ptrdiff_t>(y) * frame.stride(Frame::A);
    const std::uint8_t* end = row + frame.width();
    const auto covers = [](std::uint8_t alpha) { return alpha != 0; };
    const std::uint8_t* first = std::find_if(row, end, covers);
    if (first == end)
      continue;
    const std::uint8_t* last = end;
    while (!covers(last[-1]))
      --last;
    left = std::min(left, static_cast<int>(first - row));
    right = std::max(right, static_cast<int>(last - row));
    top = std::min(top, y);
    bottom = y + 1;
  }
  if (right == 0)
    return {};
  left &= ~1;
  top &= ~1;
  return {left, top, right - left, bottom - top};
}

}  // namespace

struct PaintLayer::Drawing {
  FrameRef frame;  // premultiplied, of the render size
  FrameRect covered;
  std::vector<std::uint8_t> chromaAlpha;  // the frame's alpha at the size of its chroma

  const std::uint8_t* alphaRow(int plane, int y) const {
    return plane == Frame::Y
               ? frame->plane(Frame::A) + static_cast<std::ptrdiff_t>(y) * frame->stride(Frame::A)
               : chromaAlpha.data() + static_cast<std::ptrdiff_t>(y) * frame->size().chromaWidth();
  }
};

void PaintLayer::commit(const QImage& image, FrameSize size) {
  std::shared_ptr<Drawing> drawing;
  if (const FrameRef picture = frameFromImage(image, ImageAlpha::Keep); picture && !size.isEmpty()) {
    MutableFrame fitted(new Frame(size, true));
    fitFrame(*picture, fitRect(picture->size(), 1, 1, size), *fitted);
    drawing = std::make_shared<Drawing>();
    drawing->frame = std::move(fitted).publish();
    drawing->covered = coveredRect(*drawing->frame);
    drawing->chromaAlpha.resize(static_cast<std::size_t>(size.chromaWidth()) * size.chromaHeight());
    libyuv::ScalePlane(drawing->frame->plane(Frame::A), drawing->frame->stride(Frame::A), size.width,
                       size.height, drawing->chromaAlpha.data(), size.chromaWidth(), size.chromaWidth(),
                       size.chromaHeight(), libyuv::kFilterBox);
  }
  std::shared_ptr<const Drawing> next = std::move(drawing);
  std::lock_guard lock(mutex_);
  drawing_.swap(next);
}

void PaintLayer::setValid(bool valid) {
  std::shared_ptr<const Drawing> old;
  std::lock_guard lock(mutex_);
  valid_ = valid;
  if (!valid)
    old.swap(drawing_);
}

FrameRef PaintLayer::over(const FrameRef& picture, FramePool& pool) {
  std::shared_ptr<const Drawing> drawing;
  {
    std::lock_guard lock(mutex_);
    if (valid_)
      drawing = drawing_;
  }
  const bool draws = drawing && drawing->covered.width > 0 && drawing->frame->size() == picture->size();
  if (!draws)
    drawing.reset();
  if (drawing && drawing == lastDrawing_ && picture == lastPicture_)
    return lastResult_;
  lastDrawing_ = drawing;
  lastPicture_ = drawing ? picture : FrameRef();
  lastResult_.reset();
  if (!drawing)
    return picture;

  MutableFrame drawn = pool.acquire();
  const Frame& top = *drawing->frame;
  for (int plane = Frame::Y; plane <= Frame::V; ++plane) {
    libyuv::CopyPlane(picture->plane(plane), picture->stride(plane), drawn->writablePlane(plane),
                      drawn->stride(plane), picture->planeWidth(plane), picture->planeHeight(plane));
    const int shift = plane == Frame::Y ? 0 : 1;
    const FrameRect& covered = drawing->covered;
    const int left = covered.x >> shift;
    const int count = (covered.width + shift) >> shift;
    const int bottom = (covered.y + covered.height + shift) >> shift;
    for (int y = covered.y >> shift; y < bottom; ++y) {
      const auto at = [&](const Frame& frame) {
        return static_cast<std::ptrdiff_t>(y) * frame.stride(plane) + left;
      };
      layRow(top.plane(plane) + at(top), drawing->alphaRow(plane, y) + left,
             picture->plane(plane) + at(*picture), kBlack[plane], drawn->writablePlane(plane) + at(*drawn),
             count);
    }
  }
  lastResult_ = std::move(drawn).publish();
  return lastResult_;
}

}  // namespace korvia
