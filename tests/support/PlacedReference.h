// What it means to place pictures, in double precision and without any speed, to compare the engine with.
#pragma once
#include <algorithm>
#include <cmath>
#include <vector>

#include "MixPictures.h"

namespace korvia::test {

/// A rectangle in luma samples.
struct LumaRect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;
};

/// The engine's finest step: 1/128 luma sample.
inline double inSteps(double lumaSamples) {
  return std::round(lumaSamples * 128) / 128;
}

inline LumaRect lumaRectOf(FrameSize size) {
  return {0, 0, 2.0 * size.chromaWidth(), 2.0 * size.chromaHeight()};
}

/// Mean of a row of values from `begin` to `end`, its last value going on for ever.
inline double meanOf(const std::vector<double>& row, double begin, double end) {
  const auto at = [&](double place) {
    return row[static_cast<std::size_t>(std::min(place, static_cast<double>(row.size()) - 1))];
  };
  if (end - begin < 1e-9)
    return at(begin);
  double sum = 0;
  for (double i = std::floor(begin); i < end; ++i)
    sum += at(i) * std::max(0.0, std::min(end, i + 1) - std::max(begin, i));
  return sum / (end - begin);
}

/// One plane of a picture in its rectangle.
class PlacedReference {
 public:
  PlacedReference(const Frame& frame, int plane, LumaRect rect) : view_(planeOf(frame, plane)) {
    const double scale = plane == Frame::U || plane == Frame::V ? 0.5 : 1;
    rect_ = {rect.x * scale, rect.y * scale, rect.width * scale, rect.height * scale};
    const LumaRect whole = lumaRectOf(frame.size());
    ownWidth_ = whole.width * scale;
    ownHeight_ = whole.height * scale;
  }

  double cover(int x, int y) const { return part(x, rect_.x, rect_.width) * part(y, rect_.y, rect_.height); }

  /// Mean of what shows at a sample that is covered. Quick when y changes seldom.
  double value(int x, int y) {
    if (y != rowY_)
      prepareRow(y);
    const double left = std::max(0.0, (x - rect_.x) * step_);
    const double right = (x + 1 - rect_.x) * step_;
    return meanOf(row_, std::min(left, length_), std::min(right, length_));
  }

 private:
  static double part(int sample, double begin, double length) {
    return std::max(0.0, std::min(sample + 1.0, begin + length) - std::max<double>(sample, begin));
  }

  void prepareRow(int y) {
    const double top = std::clamp((y - rect_.y) * ownHeight_ / rect_.height, 0.0, ownHeight_);
    const double bottom = std::clamp((y + 1 - rect_.y) * ownHeight_ / rect_.height, 0.0, ownHeight_);
    const int first = std::min(static_cast<int>(top), view_.height - 1);
    std::vector<double> column;
    row_.clear();
    for (int x = 0; x < view_.width; ++x) {
      column.clear();
      for (int i = first; i < view_.height && (i < bottom || i == first); ++i)
        column.push_back(view_.row(i)[x]);
      row_.push_back(meanOf(column, std::min(top - first, column.size() - 1.0), bottom - first));
    }
    // Pairs first, so that at most two of what is left fall on a sample.
    step_ = ownWidth_ / rect_.width;
    length_ = ownWidth_;
    for (; step_ >= 2 && row_.size() > 1; step_ /= 2, length_ /= 2) {
      const std::size_t pairs = (row_.size() + 1) / 2;
      for (std::size_t i = 0; i < pairs; ++i)
        row_[i] = (row_[2 * i] + row_[std::min(2 * i + 1, row_.size() - 1)]) / 2;
      row_.resize(pairs);
    }
    rowY_ = y;
  }

  PlaneView view_;
  LumaRect rect_;
  double ownWidth_ = 0;
  double ownHeight_ = 0;
  int rowY_ = -1;
  std::vector<double> row_;
  double step_ = 0;
  double length_ = 0;
};

/// Largest difference of `mixed` to `front` placed over `behind`.
inline double differenceToPlaced(const Frame& mixed, const Frame& front, LumaRect frontRect,
                                 const Frame& behind, LumaRect behindRect) {
  double largest = 0;
  for (const int plane : kOpaquePlanes) {
    PlacedReference over(front, plane, frontRect);
    PlacedReference under(behind, plane, behindRect);
    const PlaneView view = planeOf(mixed, plane);
    for (int y = 0; y < view.height; ++y)
      for (int x = 0; x < view.width; ++x) {
        const double cover = over.cover(x, y);
        double expected = 0;
        if (cover > 0)
          expected += cover * over.value(x, y);
        if (cover < 1)
          expected += (1 - cover) * under.value(x, y);
        largest = std::max(largest, std::abs(view.row(y)[x] - expected));
      }
  }
  return largest;
}

}  // namespace korvia::test
