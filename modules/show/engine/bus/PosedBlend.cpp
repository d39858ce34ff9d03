#include "PosedBlend.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <optional>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/RowKernels.h"
#include "engine/kernels/SampleKernels.h"

namespace korvia {

namespace {

// A layer that is scaled below this is not seen.
constexpr double kLeastScale = 1e-3;
constexpr double kMostMove = 1e5;

/// p = linear * q + offset for points of two pictures, in pixels.
struct Affine {
  double xx = 1, xy = 0, yx = 0, yy = 1;
  double offsetX = 0, offsetY = 0;
};

bool isUsable(const LayerPose& pose) {
  const auto within = [](double value, double most) { return std::abs(value) < most; };
  return within(pose.moveX, kMostMove) && within(pose.moveY, kMostMove) && within(pose.anchorX, kMostMove) &&
         within(pose.anchorY, kMostMove) && within(pose.rotationDegrees, 1e6) && within(pose.scaleX, 1e3) &&
         within(pose.scaleY, 1e3) && std::abs(pose.scaleX) > kLeastScale &&
         std::abs(pose.scaleY) > kLeastScale && pose.opacity > 0;
}

/// From a point of the layer to the point of the bus's picture where it is shown.
Affine shownAt(const LayerPose& pose) {
  const double angle = pose.rotationDegrees * std::numbers::pi / 180;
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);
  Affine map;
  map.xx = cosine * pose.scaleX;
  map.xy = -sine * pose.scaleY;
  map.yx = sine * pose.scaleX;
  map.yy = cosine * pose.scaleY;
  map.offsetX = pose.anchorX + pose.moveX - map.xx * pose.anchorX - map.xy * pose.anchorY;
  map.offsetY = pose.anchorY + pose.moveY - map.yx * pose.anchorX - map.yy * pose.anchorY;
  return map;
}

Affine inverse(const Affine& map) {
  const double determinant = map.xx * map.yy - map.xy * map.yx;
  Affine back;
  back.xx = map.yy / determinant;
  back.xy = -map.xy / determinant;
  back.yx = -map.yx / determinant;
  back.yy = map.xx / determinant;
  back.offsetX = -back.xx * map.offsetX - back.xy * map.offsetY;
  back.offsetY = -back.yx * map.offsetX - back.yy * map.offsetY;
  return back;
}

/// The part of the bus's picture that the layer can touch, with even edges or those of the picture.
FrameRect touched(const FrameRect& rect, const Affine& map, FrameSize bus) {
  double left = bus.width, right = 0, top = bus.height, bottom = 0;
  for (const double x : {rect.x, rect.x + rect.width}) {
    for (const double y : {rect.y, rect.y + rect.height}) {
      const double shownX = map.xx * x + map.xy * y + map.offsetX;
      const double shownY = map.yx * x + map.yy * y + map.offsetY;
      left = std::min(left, shownX);
      right = std::max(right, shownX);
      top = std::min(top, shownY);
      bottom = std::max(bottom, shownY);
    }
  }
  // A sample reaches into its neighbours.
  const auto begin = [](double edge) { return static_cast<int>(std::max(0.0, std::floor(edge) - 2)) & ~1; };
  const auto end = [](double edge, int most) {
    return std::clamp((static_cast<int>(std::min<double>(most, std::ceil(edge) + 2)) + 1) & ~1, 0, most);
  };
  const int x = begin(left);
  const int y = begin(top);
  return {x, y, std::max(0, end(right, bus.width) - x), std::max(0, end(bottom, bus.height) - y)};
}

/// A coordinate in the samples of a plane along a row: its value at the first sample, and from one to the
/// next.
struct Ramp {
  double first = 0;
  double step = 0;
};

struct Run {
  int begin = 0;
  int end = 0;
};

/// The part of a row in which the coordinate lies between -1 and `size`: outside the layer is transparent.
Run insideOf(const Ramp& ramp, int size, Run run) {
  if (std::abs(ramp.step) < 1e-9) {
    const bool isInside = ramp.first > -1 && ramp.first < size;
    return isInside ? run : Run{};
  }
  double from = (-1 - ramp.first) / ramp.step;
  double to = (size - ramp.first) / ramp.step;
  if (from > to)
    std::swap(from, to);
  const double least = run.begin;
  const double most = run.end;
  return {static_cast<int>(std::ceil(std::clamp(from, least, most))),
          static_cast<int>(std::ceil(std::clamp(to, least, most)))};
}

void fill(const Ramp& ramp, Run run, std::vector<std::int32_t>& out) {
  // 16 fraction bits more than a sample has keep a row of any length exact.
  constexpr std::int64_t kMost = (std::int64_t{1} << 30) - 1;
  const auto limited = [](double value) {
    return static_cast<std::int64_t>(std::clamp(value, -4e9, 4e9) * 65536.0);
  };
  std::int64_t value = limited((ramp.first + ramp.step * run.begin) * kSampleOne);
  const std::int64_t step = limited(ramp.step * kSampleOne);
  for (int i = run.begin; i < run.end; ++i, value += step)
    out[static_cast<std::size_t>(i - run.begin)] =
        static_cast<std::int32_t>(std::clamp((value + 32768) >> 16, -kMost, kMost));
}

PlaneView alphaOf(const Layer& layer, int plane) {
  if (plane == Frame::Y)
    return planeOf(*layer.picture, Frame::A);
  const FrameSize size = layer.picture->size();
  return {layer.chromaAlpha.data(), size.chromaWidth(), size.chromaWidth(), size.chromaHeight()};
}

void fade(std::vector<std::uint8_t>& samples, int count, int black, int weight) {
  for (int i = 0; i < count; ++i) {
    const int value = (samples[static_cast<std::size_t>(i)] - black) * weight;
    samples[static_cast<std::size_t>(i)] =
        static_cast<std::uint8_t>(black + (value + (value < 0 ? -128 : 128)) / 256);
  }
}

}  // namespace

void PosedBlend::blend(const Layer& layer, const LayerPose& pose, Frame& onto) {
  if (!isUsable(pose))
    return;
  const Affine map = shownAt(pose);
  const FrameRect part = touched(layer.rect, map, onto.size());
  if (part.width <= 0 || part.height <= 0)
    return;
  const Affine back = inverse(map);
  const int weight = static_cast<int>(std::lround(std::min(pose.opacity, 1.0) * 256));
  for (std::vector<std::int32_t>* row : {&x_, &y_})
    row->resize(static_cast<std::size_t>(onto.size().width));
  for (std::vector<std::uint8_t>* row : {&samples_, &alpha_})
    row->resize(static_cast<std::size_t>(onto.size().width));

  for (const int plane : kOpaquePlanes) {
    const int step = stepOf(plane);
    const PlaneView top = planeOf(*layer.picture, plane);
    const PlaneView alpha = alphaOf(layer, plane);
    const WritablePlane under = writablePlaneOf(onto, plane);
    const Run columns{part.x / step, std::min(under.width, (part.x + part.width + step - 1) / step)};
    const int lastRow = std::min(under.height, (part.y + part.height + step - 1) / step);
    for (int y = part.y / step; y < lastRow; ++y) {
      // Samples lie in the middle of their pixels.
      const double busX = 0.5 * step;
      const double busY = (y + 0.5) * step;
      const Ramp x{(back.xx * busX + back.xy * busY + back.offsetX - layer.rect.x) / step - 0.5, back.xx};
      const Ramp line{(back.yx * busX + back.yy * busY + back.offsetY - layer.rect.y) / step - 0.5, back.yx};
      const Run run = insideOf(line, top.height, insideOf(x, top.width, columns));
      const int count = run.end - run.begin;
      if (count <= 0)
        continue;
      fill(x, run, x_);
      fill(line, run, y_);
      sampleRow(top, x_.data(), y_.data(), samples_.data(), count);
      sampleRow(alpha, x_.data(), y_.data(), alpha_.data(), count);
      if (weight < 256) {
        fade(samples_, count, blackOf(plane), weight);
        fade(alpha_, count, 0, weight);
      }
      blendPremultipliedRow(samples_.data(), alpha_.data(), blackOf(plane), under.row(y) + run.begin, count);
    }
  }
}

}  // namespace korvia
