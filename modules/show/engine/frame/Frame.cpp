#include "Frame.h"

#include <hwy/cache_control.h>

#include <cstdlib>
#include <cstring>

#include "FramePool.h"
#include "PlaneView.h"

namespace korvia {

namespace {

// The widest vector register of the kernels, and a cache line.
constexpr int kAlignment = 64;

int alignedStride(int width) {
  return (width + kAlignment - 1) / kAlignment * kAlignment;
}

void fillPlane(Frame& frame, int plane, int value) {
  std::memset(frame.writablePlane(plane), value,
              static_cast<std::size_t>(frame.stride(plane)) * frame.planeHeight(plane));
}

}  // namespace

Frame::Frame(FrameSize size, FrameAlpha alpha) : size_(size), memory_(nullptr, std::free) {
  const int planes = alpha == FrameAlpha::Plane ? 4 : 3;
  std::size_t offset[4] = {};
  std::size_t total = 0;
  for (int i = 0; i < planes; ++i) {
    stride_[i] = alignedStride(planeWidth(i));
    offset[i] = total;
    total += static_cast<std::size_t>(stride_[i]) * planeHeight(i);
  }
  memory_.reset(static_cast<std::uint8_t*>(std::aligned_alloc(kAlignment, total + kAlignment)));
  for (int i = 0; i < planes; ++i)
    data_[i] = memory_.get() + offset[i];
}

Frame::Frame(FrameSize size, const External& external)
    : size_(size), memory_(nullptr, std::free), external_(external) {
  for (int i = 0; i < 4; ++i) {
    // writablePlane() is only called for frames that are being made, never for external memory.
    data_[i] = const_cast<std::uint8_t*>(external.data[i]);
    stride_[i] = external.stride[i];
  }
}

Frame::~Frame() {
  if (external_.release)
    external_.release(external_.opaque);
}

void Frame::fillBlack() {
  for (const int plane : kOpaquePlanes)
    fillPlane(*this, plane, blackOf(plane));
  if (hasAlpha())
    fillPlane(*this, A, 255);
}

void Frame::drop() {
  if (std::shared_ptr<FramePoolState> home = std::move(home_))
    home->giveBack(this);
  else
    delete this;
}

void FrameRef::reset() {
  Frame* frame = std::exchange(frame_, nullptr);
  if (frame && frame->references_.fetch_sub(1, std::memory_order_acq_rel) == 1)
    frame->drop();
}

FrameRef MutableFrame::publish() && {
  // Kernels use non-temporal stores. The atomic that publishes the frame does not order them, so they need a
  // fence.
  hwy::FlushStream();
  return FrameRef::adopt(std::exchange(frame_, nullptr));
}

}  // namespace korvia
