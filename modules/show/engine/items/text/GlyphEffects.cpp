#include "GlyphEffects.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace korvia {

namespace {

// Rounds values from 0 on when the fraction is cut off after it.
constexpr float kHalf = 0.5F;

double limited(double radius) {
  return radius > 0 ? std::min(radius, kMostEffectRadius) : 0;
}

/// The coverage with columns of nothing on both sides, twice the margin wide, so that a loop over the columns
/// of the result can read at every offset of the pen.
class PaddedRows {
 public:
  PaddedRows(const Coverage& from, int margin)
      : height_(from.height),
        stride_(static_cast<std::size_t>(from.width) + 4 * static_cast<std::size_t>(margin)),
        samples_(stride_ * static_cast<std::size_t>(from.height)),
        empty_(static_cast<std::size_t>(from.height)) {
    for (int y = 0; y < height_; ++y) {
      const std::uint8_t* row = from.row(y);
      empty_[static_cast<std::size_t>(y)] =
          std::all_of(row, row + from.width, [](std::uint8_t sample) { return sample == 0; });
      std::memcpy(samples_.data() + stride_ * static_cast<std::size_t>(y) + 2 * margin, row,
                  static_cast<std::size_t>(from.width));
    }
  }
  std::size_t stride() const { return stride_; }
  /// Null for a row without coverage, inside and outside of the rectangle.
  const std::uint8_t* row(int y) const {
    if (y < 0 || y >= height_ || empty_[static_cast<std::size_t>(y)])
      return nullptr;
    return samples_.data() + stride_ * static_cast<std::size_t>(y);
  }

 private:
  int height_;
  std::size_t stride_;
  std::vector<std::uint8_t> samples_;
  std::vector<bool> empty_;
};

/// A place of the pen at whose distance a pixel is covered in part; `gain` is radius - distance, 255 for 1.
struct RimPlace {
  int dx;
  int gain;
};

/// The pen, one entry for each of its rows from -margin to margin.
struct Pen {
  int margin = 0;
  std::vector<std::vector<RimPlace>> rim;
  /// For each column from 0 on: within how many rows a pixel is covered wholly. Empty for thin pens.
  std::vector<int> core;
};

Pen makePen(double radius) {
  Pen pen;
  pen.margin = dilationMargin(radius);
  for (int dy = -pen.margin; dy <= pen.margin; ++dy) {
    std::vector<RimPlace>& row = pen.rim.emplace_back();
    for (int dx = -pen.margin; dx <= pen.margin; ++dx) {
      const double gain = radius - std::hypot(dx, dy);
      if (gain > -1 && gain < 1)
        row.push_back({dx, static_cast<int>(std::lround(255 * gain))});
    }
  }
  const double reach = radius - 1;
  for (int dx = 0; dx <= reach; ++dx)
    pen.core.push_back(static_cast<int>(std::floor(std::sqrt(reach * reach - static_cast<double>(dx) * dx))));
  return pen;
}

/// All in single bytes, so that the compiler handles as many as fit into a register.
void raiseByRim(std::uint8_t* out, const std::uint8_t* in, int width, int gain) {
  if (gain < 0) {
    const auto loss = static_cast<std::uint8_t>(-gain);
    for (int x = 0; x < width; ++x)
      out[x] = std::max(out[x], static_cast<std::uint8_t>(std::max(in[x], loss) - loss));
  } else {
    const auto added = static_cast<std::uint8_t>(gain);
    const auto most = static_cast<std::uint8_t>(255 - gain);
    for (int x = 0; x < width; ++x) {
      const auto raised = static_cast<std::uint8_t>(std::min(in[x], most) + added);
      out[x] = std::max(out[x], in[x] == 0 ? std::uint8_t{0} : raised);
    }
  }
}

/// For each pixel the rows to the nearest covered one of its column, at most 255, for all rows of the result.
std::vector<std::uint8_t> rowsToCovered(const PaddedRows& in, int resultHeight, int margin) {
  const std::size_t stride = in.stride();
  std::vector<std::uint8_t> rows(stride * static_cast<std::size_t>(resultHeight), 255);
  const auto sweep = [&](int from, int to, int step) {
    const std::uint8_t* before = nullptr;
    for (int y = from; y != to; y += step) {
      std::uint8_t* row = rows.data() + stride * static_cast<std::size_t>(y);
      if (before)
        for (std::size_t x = 0; x < stride; ++x)
          row[x] = std::min(row[x], static_cast<std::uint8_t>(before[x] == 255 ? 255 : before[x] + 1));
      if (const std::uint8_t* covered = in.row(y - margin))
        for (std::size_t x = 0; x < stride; ++x)
          row[x] = covered[x] != 0 ? 0 : row[x];
      before = row;
    }
  };
  sweep(0, resultHeight, 1);
  sweep(resultHeight - 1, -1, -1);
  return rows;
}

/// Rows or columns that are blurred together, so that the compiler handles them in one register.
constexpr int kLanes = 16;
using Strip = std::vector<std::array<float, kLanes>>;

/// A window of 2 * half + 1 samples and a part of the two beside them.
struct Window {
  int half = 0;
  float part = 0;
};

Window windowOf(double radius) {
  const double deviation = limited(radius) / 2;
  const double variance = deviation * deviation / 3;
  Window window;
  while ((window.half + 1) * (window.half + 2) / 3.0 <= variance)
    ++window.half;
  const int half = window.half;
  // The variance of the weights, solved for those of the ends.
  window.part = static_cast<float>((2 * half + 1) * (variance - half * (half + 1) / 3.0) /
                                   (2 * ((half + 1.0) * (half + 1.0) - variance)));
  return window;
}

/// Samples beyond both ends count as 0.
void meanOverWindow(const Strip& in, Strip& out, const Window& window) {
  static constexpr std::array<float, kLanes> kNothing{};
  const int count = static_cast<int>(in.size());
  const float scale = 1 / (static_cast<float>(2 * window.half + 1) + 2 * window.part);
  const float endScale = window.part * scale;
  const auto at = [&](int i) -> const std::array<float, kLanes>& {
    return i < 0 || i >= count ? kNothing : in[static_cast<std::size_t>(i)];
  };
  std::array<float, kLanes> sum{};
  for (int i = 0; i < window.half; ++i)
    for (int lane = 0; lane < kLanes; ++lane)
      sum[lane] += at(i)[lane];
  for (int i = 0; i < count; ++i) {
    const auto& entering = at(i + window.half);
    const auto& before = at(i - window.half - 1);
    const auto& after = at(i + window.half + 1);
    auto& to = out[static_cast<std::size_t>(i)];
    for (int lane = 0; lane < kLanes; ++lane) {
      sum[lane] += entering[lane] - before[lane];
      to[lane] = sum[lane] * scale + (before[lane] + after[lane]) * endScale;
    }
  }
}

void blurStrip(Strip& strip, Strip& spare, const Window& window) {
  meanOverWindow(strip, spare, window);
  meanOverWindow(spare, strip, window);
  meanOverWindow(strip, spare, window);
  strip.swap(spare);
}

}  // namespace

int dilationMargin(double radius) {
  return static_cast<int>(std::ceil(limited(radius)));
}

Coverage dilated(const Coverage& from, double radius) {
  const Pen pen = makePen(limited(radius));
  const int margin = pen.margin;
  Coverage out(from.width + 2 * margin, from.height + 2 * margin);
  const PaddedRows in(from, margin);
  std::vector<std::uint8_t> toCovered;
  if (!pen.core.empty())
    toCovered = rowsToCovered(in, out.height, margin);
  for (int y = 0; y < out.height; ++y) {
    std::uint8_t* row = out.row(y);
    for (int column = 0; column < static_cast<int>(pen.core.size()); ++column) {
      const auto reach = static_cast<std::uint8_t>(pen.core[static_cast<std::size_t>(column)]);
      const std::uint8_t* centre = toCovered.data() + in.stride() * static_cast<std::size_t>(y) + margin;
      const std::uint8_t* left = centre - column;
      const std::uint8_t* right = centre + column;
      for (int x = 0; x < out.width; ++x)
        row[x] = static_cast<std::uint8_t>(row[x] | (std::min(left[x], right[x]) <= reach ? 255 : 0));
    }
    for (int dy = -margin; dy <= margin; ++dy) {
      const std::uint8_t* source = in.row(y - margin + dy);
      if (!source)
        continue;
      for (const RimPlace& place : pen.rim[static_cast<std::size_t>(dy + margin)])
        raiseByRim(row, source + margin + place.dx, out.width, place.gain);
    }
  }
  return out;
}

int blurMargin(double radius) {
  return limited(radius) > 0 ? 3 * (windowOf(radius).half + 1) : 0;
}

Coverage blurred(const Coverage& from, double radius) {
  const int margin = blurMargin(radius);
  if (margin == 0)
    return from;
  const Window window = windowOf(radius);
  const int width = from.width + 2 * margin;
  const int height = from.height + 2 * margin;

  // Blurred along the rows, in 1/256 of a sample, so that rounding between the directions is not seen.
  std::vector<std::uint16_t> between(static_cast<std::size_t>(width) * static_cast<std::size_t>(from.height));
  Strip strip(static_cast<std::size_t>(width));
  Strip spare(strip.size());
  for (int top = 0; top < from.height; top += kLanes) {
    const int lanes = std::min(kLanes, from.height - top);
    strip.assign(strip.size(), {});
    for (int lane = 0; lane < lanes; ++lane)
      for (int x = 0; x < from.width; ++x)
        strip[static_cast<std::size_t>(x + margin)][lane] = from.row(top + lane)[x];
    blurStrip(strip, spare, window);
    for (int lane = 0; lane < lanes; ++lane) {
      std::uint16_t* row = between.data() + static_cast<std::ptrdiff_t>(top + lane) * width;
      for (int x = 0; x < width; ++x)
        row[x] = static_cast<std::uint16_t>(std::max(strip[static_cast<std::size_t>(x)][lane], 0.0F) * 256 +
                                            kHalf);
    }
  }

  Coverage out(width, height);
  strip.resize(static_cast<std::size_t>(height));
  spare.resize(strip.size());
  for (int left = 0; left < width; left += kLanes) {
    const int lanes = std::min(kLanes, width - left);
    strip.assign(strip.size(), {});
    for (int y = 0; y < from.height; ++y) {
      const std::uint16_t* row = between.data() + static_cast<std::ptrdiff_t>(y) * width + left;
      for (int lane = 0; lane < lanes; ++lane)
        strip[static_cast<std::size_t>(y + margin)][lane] = row[lane];
    }
    blurStrip(strip, spare, window);
    for (int y = 0; y < height; ++y) {
      std::uint8_t* row = out.row(y) + left;
      for (int lane = 0; lane < lanes; ++lane) {
        const int fine = static_cast<int>(strip[static_cast<std::size_t>(y)][lane]);
        row[lane] = static_cast<std::uint8_t>(std::clamp((fine + 128) / 256, 0, 255));
      }
    }
  }
  return out;
}

}  // namespace korvia
