// One plane of a frame with its size, for loops over rows. Plain values, any thread.
#pragma once
#include <cstddef>
#include <cstdint>

#include "Frame.h"

namespace korvia {

struct PlaneView {
  const std::uint8_t* data = nullptr;
  int stride = 0;
  int width = 0;
  int height = 0;
  const std::uint8_t* row(int y) const { return data + static_cast<std::ptrdiff_t>(y) * stride; }
};

struct WritablePlane {
  std::uint8_t* data = nullptr;
  int stride = 0;
  int width = 0;
  int height = 0;
  std::uint8_t* row(int y) const { return data + static_cast<std::ptrdiff_t>(y) * stride; }
};

inline PlaneView planeOf(const Frame& frame, int plane) {
  return {frame.plane(plane), frame.stride(plane), frame.planeWidth(plane), frame.planeHeight(plane)};
}

/// Only before the frame is published.
inline WritablePlane writablePlaneOf(Frame& frame, int plane) {
  return {frame.writablePlane(plane), frame.stride(plane), frame.planeWidth(plane), frame.planeHeight(plane)};
}

/// The planes of a picture without alpha.
inline constexpr int kOpaquePlanes[] = {Frame::Y, Frame::U, Frame::V};

/// Luma samples from one sample of the plane to the next, across and down.
inline int stepOf(int plane) {
  return plane == Frame::U || plane == Frame::V ? 2 : 1;
}

/// The code value of black: luma 16, chroma 128, alpha transparent.
inline int blackOf(int plane) {
  constexpr int kBlack[] = {16, 128, 128, 0};
  return kBlack[plane];
}

}  // namespace korvia
