// Makes outline and shadow of glyphs out of their coverage. Pure functions, any thread.
#pragma once
#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvia {

/// How much of each pixel of a rectangle is covered, 0 to 255, in rows without padding.
struct Coverage {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> samples;

  Coverage() = default;
  Coverage(int w, int h) : width(w), height(h), samples(static_cast<std::size_t>(w) * h) {}
  std::uint8_t* row(int y) { return samples.data() + static_cast<std::ptrdiff_t>(y) * width; }
  const std::uint8_t* row(int y) const { return samples.data() + static_cast<std::ptrdiff_t>(y) * width; }
};

/// Largest radius in pixels; larger ones are taken as this.
inline constexpr double kMostEffectRadius = 250;

/// What a round pen covers when its centre runs over all that is covered. A pixel at the distance d from one
/// with the coverage a gets a + radius - d of it, the greatest of all, so that edges stay smooth. The result
/// is larger by dilationMargin() on each side.
Coverage dilated(const Coverage& from, double radius);
/// Pixels; `radius` rounded up.
int dilationMargin(double radius);

/// Blurred by nearly a Gaussian with half the radius as its standard deviation: three means over windows
/// whose ends count in part, so that the blur grows steadily with the radius. The result is larger by
/// blurMargin() on each side.
Coverage blurred(const Coverage& from, double radius);
int blurMargin(double radius);

}  // namespace korvia
