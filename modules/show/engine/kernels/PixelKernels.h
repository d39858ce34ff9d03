// Samples pictures that are stored pixel by pixel, with the alpha beside the colours, at the points of a
// straight line: for layers that are moved, scaled and rotated. Pure functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Rows of pixels without gaps, at least 2 x 2.
struct PixelPlane {
  const std::uint8_t* data = nullptr;
  int width = 0;
  int height = 0;
};

/// The first point and the way from each point to the next, in 1/65536 pixel; points outside of the plane
/// take the nearest edge.
struct PixelRamp {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t stepX = 0;
  std::int32_t stepY = 0;
};

/// Points of one call.
inline constexpr int kPixelsMost = 256;

/// Pixels of 2 bytes: luma and alpha. Bilinear with weights of 1/256, rounded.
void sampleLumaPixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* luma, std::uint8_t* alpha,
                      int count);

/// Pixels of 4 bytes: U, V, alpha, and one that is not used.
void sampleChromaPixels(const PixelPlane& plane, const PixelRamp& ramp, std::uint8_t* u, std::uint8_t* v,
                        std::uint8_t* alpha, int count);

/// out[i] is bilinear between upper[i], upper[i + 1], lower[i] and lower[i + 1]: for a layer that is moved
/// only. Weights of the right and of the lower samples are 0 to 255 of 256; rounded.
void sampleShiftedRow(const std::uint8_t* upper, const std::uint8_t* lower, int weightX, int weightY,
                      std::uint8_t* out, int count);

}  // namespace korvia
