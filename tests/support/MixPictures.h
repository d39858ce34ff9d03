// Pictures to mix: noise, and two that look like pictures, in frames with or without a single sample to
// spare.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "engine/frame/FramePool.h"
#include "engine/frame/PlaneView.h"

namespace korvia::test {

/// `sample(plane, x, y)` for every sample of a new frame.
template <typename Sample>
FrameRef frameOf(FrameSize size, Sample sample) {
  FramePool pool(size);
  MutableFrame frame = pool.acquire();
  for (const int plane : kOpaquePlanes) {
    const WritablePlane view = writablePlaneOf(*frame, plane);
    for (int y = 0; y < view.height; ++y)
      for (int x = 0; x < view.width; ++x)
        view.row(y)[x] = static_cast<std::uint8_t>(sample(plane, x, y));
  }
  return std::move(frame).publish();
}

inline FrameRef noise(FrameSize size, std::uint32_t seed) {
  return frameOf(size, [&](int, int, int) {
    seed = seed * 1664525 + 1013904223;
    return seed >> 24;
  });
}

/// Y, U and V are 0 in the one and 255 in the other, so that a mix shows its weights.
inline FrameRef flat(FrameSize size, int value) {
  return frameOf(size, [&](int, int, int) { return value; });
}

/// Soft rings in warm colours, `variant` 0, or soft stripes in cold ones, 1.
inline FrameRef scenery(FrameSize size, int variant) {
  return frameOf(size, [&](int plane, int x, int y) {
    const bool chroma = plane == 1 || plane == 2;
    const double u = (chroma ? 2 * x : x) / static_cast<double>(size.width);
    const double v = (chroma ? 2 * y : y) / static_cast<double>(size.height);
    const double wave = variant == 0 ? std::cos(12 * std::hypot(u - 0.4, v - 0.6)) : std::sin(9 * u + 5 * v);
    if (plane == 0)
      return static_cast<int>((variant == 0 ? 80 : 150) + 50 * wave);
    return static_cast<int>(128 + ((plane == 1) == (variant == 0) ? -40 : 50) + 20 * wave);
  });
}

/// The same picture in a plane each of heap memory that ends with its last sample, so that a read past it is
/// found.
inline FrameRef withoutSpare(const Frame& picture) {
  Frame::External external;
  struct Planes {
    std::uint8_t* data[3] = {};
  };
  auto* planes = new Planes;
  for (const int plane : kOpaquePlanes) {
    const PlaneView view = planeOf(picture, plane);
    planes->data[plane] = static_cast<std::uint8_t*>(
        std::malloc(static_cast<std::size_t>(view.width) * static_cast<std::size_t>(view.height)));
    for (int y = 0; y < view.height; ++y)
      std::copy_n(view.row(y), view.width, planes->data[plane] + static_cast<std::ptrdiff_t>(y) * view.width);
    external.data[plane] = planes->data[plane];
    external.stride[plane] = view.width;
  }
  external.opaque = planes;
  external.release = [](void* opaque) {
    const auto* held = static_cast<Planes*>(opaque);
    for (std::uint8_t* data : held->data)
      std::free(data);
    delete held;
  };
  return FrameRef::adopt(new Frame(picture.size(), external));
}

/// Largest and mean difference of all samples.
struct Difference {
  int largest = 0;
  double mean = 0;
};

inline Difference difference(const Frame& a, const Frame& b) {
  Difference result;
  double sum = 0;
  double count = 0;
  for (const int plane : kOpaquePlanes) {
    const PlaneView va = planeOf(a, plane);
    const PlaneView vb = planeOf(b, plane);
    for (int y = 0; y < va.height; ++y)
      for (int x = 0; x < va.width; ++x) {
        const int d = std::abs(va.row(y)[x] - vb.row(y)[x]);
        result.largest = std::max(result.largest, d);
        sum += d;
        count += 1;
      }
  }
  result.mean = sum / count;
  return result;
}

}  // namespace korvia::test
