#include "RgbRow.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/frame/RgbRow.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace {

// In 1/65536. The conversions of libyuv have too few bits for the blue coefficient and lose a twentieth of a
// saturated blue.
constexpr int kOne = 1 << 16;
constexpr int kY = 76309;
constexpr int kRedV = 117489;
constexpr int kGreenU = -13975;
constexpr int kGreenV = -34925;
constexpr int kBlueU = 138438;

inline int toByte(int value) {
  return std::clamp((value + kOne / 2) >> 16, 0, 255);
}

}  // namespace

// The compiler vectorises this loop well; compiling it for each instruction set gives it the wider
// registers.
void rowToRgb(const std::uint8_t* y, const std::uint8_t* u, const std::uint8_t* v, std::uint32_t* pixels,
              int width) {
  for (int x = 0; x < width; ++x) {
    const int luma = kY * (y[x] - 16);
    const int blueness = u[x] - 128;
    const int redness = v[x] - 128;
    const int red = toByte(luma + kRedV * redness);
    const int green = toByte(luma + kGreenU * blueness + kGreenV * redness);
    const int blue = toByte(luma + kBlueU * blueness);
    pixels[x] = 0xFF000000U | static_cast<std::uint32_t>(red << 16 | green << 8 | blue);
  }
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(rowToRgb);

void rowToRgb(const std::uint8_t* y, const std::uint8_t* u, const std::uint8_t* v, std::uint32_t* pixels,
              int width) {
  HWY_DYNAMIC_DISPATCH(rowToRgb)(y, u, v, pixels, width);
}

}  // namespace korvia
#endif
