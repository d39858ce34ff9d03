// Frames that tell their number: a moving gradient under a row of sixteen black and white blocks, the bits of
// the number with the lowest on the left.
#pragma once
#include <cstdint>
#include <vector>

#include "engine/frame/FramePool.h"

namespace korvia::test {

inline constexpr int kPatternBits = 16;

inline FrameRef patternFrame(FramePool& pool, int number) {
  MutableFrame frame = pool.acquire();
  const int block = frame->width() / kPatternBits;
  for (int y = 0; y < frame->height(); ++y) {
    std::uint8_t* row =
        frame->writablePlane(Frame::Y) + static_cast<std::ptrdiff_t>(y) * frame->stride(Frame::Y);
    for (int x = 0; x < frame->width(); ++x) {
      const int bit = std::min(x / block, kPatternBits - 1);
      if (y < block)
        row[x] = (number >> bit) & 1 ? 235 : 16;
      else
        row[x] = static_cast<std::uint8_t>(40 + (x + y + number * 4) % 160);
    }
  }
  for (const int plane : {Frame::U, Frame::V}) {
    for (int y = 0; y < frame->planeHeight(plane); ++y) {
      std::uint8_t* row = frame->writablePlane(plane) + static_cast<std::ptrdiff_t>(y) * frame->stride(plane);
      for (int x = 0; x < frame->planeWidth(plane); ++x)
        row[x] = static_cast<std::uint8_t>(plane == Frame::U ? 100 : 150);
    }
  }
  return std::move(frame).publish();
}

/// The number in a picture of 8-bit luma without gaps between its rows.
inline int patternNumber(const std::uint8_t* luma, int width) {
  const int block = width / kPatternBits;
  int number = 0;
  for (int bit = 0; bit < kPatternBits; ++bit)
    number |= luma[block / 2 * width + bit * block + block / 2] > 125 ? 1 << bit : 0;
  return number;
}

}  // namespace korvia::test
