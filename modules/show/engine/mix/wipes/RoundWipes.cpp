#include "RoundWipes.h"

#include <array>
#include <cstring>
#include <numbers>

#include "engine/kernels/MaskKernels.h"

namespace korvia {

namespace {

using std::numbers::pi;

/// Fills the samples from `begin` up to, not including, `end`.
void fill(std::uint8_t* mask, int begin, int end, int value) {
  if (begin < end)
    std::memset(mask + begin, value, static_cast<std::size_t>(end - begin));
}

class CircleMask {
 public:
  CircleMask(const PlaneGrid& grid, double position, TransitionScratch& scratch)
      : grid_(grid),
        mask_(scratch.buffer<std::uint8_t>(0, static_cast<std::size_t>(grid.width))),
        feather_(featherOf(grid.size)),
        outside_(position * (std::hypot(grid.size.width, grid.size.height) / 2 + feather_)) {}

  const std::uint8_t* row(int y) {
    const double dy = grid_.y(y) - grid_.size.height / 2.0;
    const Chord outside = chord(outside_, dy);
    const Chord inside = chord(outside_ - feather_, dy);
    fill(mask_, 0, outside.begin, 0);
    soften(outside.begin, inside.begin, dy);
    fill(mask_, inside.begin, inside.end, 255);
    soften(inside.end, outside.end, dy);
    fill(mask_, outside.end, grid_.width, 0);
    return mask_;
  }

 private:
  struct Chord {
    int begin = 0;
    int end = 0;
  };

  /// The samples of a row within a radius; an empty range in the middle where there are none.
  Chord chord(double radius, double dy) const {
    const double square = radius * radius - dy * dy;
    const double half = radius > 0 && square > 0 ? std::sqrt(square) : 0;
    const double middle = grid_.size.width / 2.0;
    return {columnFrom(middle - half), columnFrom(middle + half)};
  }

  /// The first sample whose centre is at x or to the right of it.
  int columnFrom(double x) const {
    return std::clamp(static_cast<int>(std::ceil(x / grid_.step - 0.5)), 0, grid_.width);
  }

  void soften(int begin, int end, double dy) {
    DiscRow disc;
    disc.first = static_cast<float>(grid_.x(begin) - grid_.size.width / 2.0);
    disc.step = static_cast<float>(grid_.step);
    disc.ySquare = static_cast<float>(dy * dy);
    disc.level = static_cast<float>(outside_ / feather_ * 255);
    disc.slope = static_cast<float>(255 / feather_);
    discMaskRow(disc, mask_ + begin, end - begin);
  }

  PlaneGrid grid_;
  std::uint8_t* mask_;
  double feather_;
  double outside_;
};

constexpr int kSpokes = 4;
// The two halves of the wheel are equal when each holds whole sectors.
static_assert(kSpokes % 4 == 0);
/// The soft edge as a part of a sector: 1 % of the width half-way to the side of the picture.
constexpr double kSpokeFeather = 0.01 * 4 * kSpokes / (2 * pi);

/// Coverage within a sector at `along`, from 0 at the start of its spoke to 1. The soft edge of a spoke
/// begins in the sector before it, which the next spoke covers at the end.
double wheelCoverage(double position, double along) {
  const double begun = swept(position, 0, 1, kSpokeFeather);
  const double before = std::max(0.0, (along - (1 - kSpokeFeather)) / kSpokeFeather);
  return std::max(swept(position, along, 1, kSpokeFeather), begun * before);
}

/// Along a row the tangent of the angle, measured from 12 o'clock above the centre and from 6 o'clock below
/// it, is linear. So each part of a sector, old, soft or new, is one run of samples.
class WheelMask {
 public:
  WheelMask(const PlaneGrid& grid, double position, TransitionScratch& scratch)
      : grid_(grid),
        position_(position),
        mask_(scratch.buffer<std::uint8_t>(0, static_cast<std::size_t>(grid.width) + kSpare)) {
    // The places at which the slope of the coverage changes.
    const double edge = position * (1 + kSpokeFeather);
    const double begun = swept(position, 0, 1, kSpokeFeather);
    const double meeting = (edge + begun * (1 - kSpokeFeather)) / (1 + begun);
    std::array<double, kParts + 1> bends{0, edge - kSpokeFeather, edge, meeting, 1 - kSpokeFeather, 1};
    for (double& bend : bends)
      bend = std::clamp(bend, 0.0, 1.0);
    std::sort(bends.begin(), bends.end());
    for (int sector = 0; sector < kSpokes / 2; ++sector)
      for (std::size_t i = 0; i < kParts; ++i)
        parts_[static_cast<std::size_t>(sector) * kParts + i] = part(sector, bends[i], bends[i + 1]);
  }

  const std::uint8_t* row(int y) {
    const double dy = grid_.y(y) - grid_.size.height / 2.0;
    if (dy == 0) {
      for (int x = 0; x < grid_.width; ++x)
        mask_[x] = maskOf(WheelWipe().coverage(grid_.size, {position_, 0}, grid_.x(x), grid_.y(y)));
      return mask_;
    }
    const double step = -grid_.step / dy;
    const double first = -(grid_.x(0) - grid_.size.width / 2.0) / dy;
    int begin = 0;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      const Part& part = step > 0 ? parts_[i] : parts_[parts_.size() - 1 - i];
      const double border = std::ceil(((step > 0 ? part.end : part.begin) - first) / step);
      const int end = i + 1 == parts_.size()
                          ? grid_.width
                          : static_cast<int>(std::clamp<double>(border, begin, grid_.width));
      if (begin < end)
        draw(part, first, step, begin, end);
      begin = end;
    }
    return mask_;
  }

 private:
  static constexpr std::size_t kParts = 5;
  // The kernel writes up to a register past the end of a part.
  static constexpr std::size_t kSpare = 64;

  /// A part between two such places. The coverage is linear there, through `level` at the angle whose
  /// tangent is `middle`.
  struct Part {
    /// Tangents of the angles at its ends.
    double begin = 0;
    double end = 0;
    /// Tangent of the angle at which the coverage is `level`.
    double middle = 0;
    double level = 0;
    /// Change of the coverage for each radian; 0 for a part of one value.
    double slope = 0;
  };

  static double angleOf(int sector, double along) { return ((sector + along) * 4 / kSpokes - 1) * pi / 2; }

  Part part(int sector, double begin, double end) const {
    const double along = (begin + end) / 2;
    const double moving = swept(position_, along, 1, kSpokeFeather);
    const double full = 255 / (kSpokeFeather * (angleOf(0, 1) - angleOf(0, 0)));
    Part part{std::tan(angleOf(sector, begin)), std::tan(angleOf(sector, end)), 0, 0, 0};
    if (wheelCoverage(position_, along) > moving) {
      const double begun = swept(position_, 0, 1, kSpokeFeather);
      part.middle = std::tan(angleOf(sector, 1 - kSpokeFeather / 2));
      part.level = begun * 127.5;
      part.slope = begun * full;
    } else if (moving > 0 && moving < 1) {
      part.middle = std::tan(angleOf(sector, position_ * (1 + kSpokeFeather) - kSpokeFeather / 2));
      part.level = 127.5;
      part.slope = -full;
    } else {
      part.level = moving * 255;
    }
    return part;
  }

  void draw(const Part& part, double first, double step, int begin, int end) {
    if (part.slope == 0) {
      fill(mask_, begin, end, static_cast<int>(part.level));
      return;
    }
    // A soft edge is so narrow that the tangent of an angle in it equals the angle.
    SpokeRow spoke;
    spoke.first = static_cast<float>(first);
    spoke.step = static_cast<float>(step);
    spoke.spoke = static_cast<float>(part.middle);
    spoke.level = static_cast<float>(part.level);
    spoke.slope = static_cast<float>(part.slope);
    spokeMaskRow(spoke, mask_, begin, end);
  }

  PlaneGrid grid_;
  double position_;
  std::uint8_t* mask_;
  std::array<Part, kParts * kSpokes / 2> parts_;
};

}  // namespace

double CircleWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const double radius = std::hypot(x - size.width / 2.0, y - size.height / 2.0);
  return swept(point.position, radius, std::hypot(size.width, size.height) / 2, featherOf(size));
}

void CircleWipe::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                     Frame& out) const {
  mixByMask(from, to, scratch, out,
            [&](const PlaneGrid& grid) { return CircleMask(grid, point.position, scratch); });
}

double WheelWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const double turn = std::atan2(x - size.width / 2.0, size.height / 2.0 - y) / (2 * pi);
  const double sector = turn * kSpokes;
  return wheelCoverage(point.position, sector - std::floor(sector));
}

void WheelWipe::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                    Frame& out) const {
  mixByMask(from, to, scratch, out,
            [&](const PlaneGrid& grid) { return WheelMask(grid, point.position, scratch); });
}

}  // namespace korvia
