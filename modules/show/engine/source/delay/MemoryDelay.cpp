#include "MemoryDelay.h"

#include <libyuv/planar_functions.h>

#include "engine/frame/FrameFit.h"
#include "engine/frame/PlaneView.h"

namespace korvia {

MemoryDelay::MemoryDelay(FrameSize size, int frames)
    : opaque_(size),
      transparent_(size, FrameAlpha::Plane),
      pictures_(static_cast<std::size_t>(frames) + 1),
      shown_(-frames) {}

FrameRef MemoryDelay::pull(int ticks) {
  shown_ += ticks;
  if (shown_ <= 0)
    return {};
  // After a stall longer than the delay the picture is one that was missed.
  return shown_ > number_ ? last_ : pictures_[static_cast<std::size_t>(shown_) % pictures_.size()];
}

void MemoryDelay::push(const FrameRef& picture, int ticks) {
  for (int missed = 1; missed < ticks; ++missed)
    pictures_[static_cast<std::size_t>(++number_) % pictures_.size()] = last_;
  if (picture != lastIn_) {
    last_ = picture ? copyOf(*picture) : FrameRef();
    lastIn_ = picture;
  }
  pictures_[static_cast<std::size_t>(++number_) % pictures_.size()] = last_;
}

FrameRef MemoryDelay::copyOf(const Frame& picture) {
  FramePool& pool = picture.hasAlpha() ? transparent_ : opaque_;
  MutableFrame copy = pool.acquire();
  if (picture.size() != pool.size()) {
    fitFrame(picture, fitRect(picture.size(), 1, 1, pool.size()), *copy);
  } else {
    for (int plane = Frame::Y; plane <= (picture.hasAlpha() ? Frame::A : Frame::V); ++plane) {
      const PlaneView from = planeOf(picture, plane);
      const WritablePlane to = writablePlaneOf(*copy, plane);
      libyuv::CopyPlane(from.data, from.stride, to.data, to.stride, to.width, to.height);
    }
  }
  return std::move(copy).publish();
}

}  // namespace korvia
