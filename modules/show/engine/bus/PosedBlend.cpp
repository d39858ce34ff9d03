#include "PosedBlend.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/PixelKernels.h"
#include "engine/kernels/RowKernels.h"
#include "engine/kernels/SampleKernels.h"

namespace korvia {

namespace {

// A layer that is scaled below this is not seen.
constexpr double kLeastScale = 1e-3;
constexpr double kMostMove = 1e5;
constexpr int kOpaque = 256;

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

/// The points of a row from this one on.
PixelRamp pixelRamp(const Ramp& x, const Ramp& y, int first) {
  // A part of a row is short enough for 16 fraction bits, and beyond these the layer is not seen.
  const auto fixed = [](double value) {
    return static_cast<std::int32_t>(std::lround(std::clamp(value, -32767.0, 32767.0) * 65536));
  };
  return {fixed(x.first + x.step * first), fixed(y.first + y.step * first), fixed(x.step), fixed(y.step)};
}

void fade(std::uint8_t* samples, int count, int black, int weight) {
  if (weight == kOpaque)
    return;
  for (int i = 0; i < count; ++i) {
    const int value = (samples[i] - black) * weight;
    samples[i] = static_cast<std::uint8_t>(black + (value + (value < 0 ? -128 : 128)) / kOpaque);
  }
}

/// A coordinate of a layer that is only moved: the first sample that it touches, and how far beyond it is.
struct Shift {
  int sample = 0;
  int weight = 0;
};

Shift shiftOf(double move, int rectEdge, int step) {
  const auto place = static_cast<int>(std::lround(-(rectEdge + move) / step * kSampleOne));
  return {place >> kSampleFractionBits, place & (kSampleOne - 1)};
}

}  // namespace

void PosedBlend::blend(const Layer& layer, const LayerPose& pose, Frame& onto) {
  if (!isUsable(pose) || layer.lumaPixels.empty())
    return;
  const int weight = static_cast<int>(std::lround(std::min(pose.opacity, 1.0) * kOpaque));
  if (pose.scaleX == 1 && pose.scaleY == 1 && pose.rotationDegrees == 0)
    blendMoved(layer, pose, weight, onto);
  else
    blendTurned(layer, pose, weight, onto);
}

RowRange PosedBlend::rows(const Layer& layer, const LayerPose& pose, FrameSize bus) {
  if (!isUsable(pose))
    return {};
  const FrameRect part = touched(layer.rect, shownAt(pose), bus);
  return {part.y, part.y + part.height};
}

void PosedBlend::blendMoved(const Layer& layer, const LayerPose& pose, int weight, Frame& onto) {
  for (const int plane : kOpaquePlanes) {
    const int step = stepOf(plane);
    const PlaneView top = planeOf(*layer.picture, plane);
    const WritablePlane under = writablePlaneOf(onto, plane);
    const Shift x = shiftOf(pose.moveX, layer.rect.x, step);
    const Shift y = shiftOf(pose.moveY, layer.rect.y, step);
    // The samples at the edges are transparent, so that none beyond them is needed.
    const int firstColumn = std::max(0, -x.sample);
    const int endColumn = std::min(under.width, top.width - 1 - x.sample);
    const int endRow = std::min(under.height, top.height - 1 - y.sample);
    for (int row = std::max(0, -y.sample); row < endRow; ++row) {
      const int line = row + y.sample;
      for (int column = firstColumn; column < endColumn; column += kPixelsMost) {
        const int count = std::min(kPixelsMost, endColumn - column);
        const int from = column + x.sample;
        sampleShiftedRow(top.row(line) + from, top.row(line + 1) + from, x.weight, y.weight, first_.data(),
                         count);
        sampleShiftedRow(layer.alphaRow(plane, line) + from, layer.alphaRow(plane, line + 1) + from, x.weight,
                         y.weight, alpha_.data(), count);
        fade(first_.data(), count, blackOf(plane), weight);
        fade(alpha_.data(), count, 0, weight);
        blendPremultipliedRow(first_.data(), alpha_.data(), blackOf(plane), under.row(row) + column, count);
      }
    }
  }
}

void PosedBlend::blendTurned(const Layer& layer, const LayerPose& pose, int weight, Frame& onto) {
  const Affine map = shownAt(pose);
  const FrameRect part = touched(layer.rect, map, onto.size());
  if (part.width <= 0 || part.height <= 0)
    return;
  const Affine back = inverse(map);
  const auto eachPart = [&](int plane, const auto& blendPart) {
    const int step = stepOf(plane);
    const PlaneView top = planeOf(*layer.picture, plane);
    const int width = onto.planeWidth(plane);
    const Run columns{part.x / step, std::min(width, (part.x + part.width + step - 1) / step)};
    const int lastRow = std::min(onto.planeHeight(plane), (part.y + part.height + step - 1) / step);
    for (int row = part.y / step; row < lastRow; ++row) {
      // Samples lie in the middle of their pixels.
      const double busX = 0.5 * step;
      const double busY = (row + 0.5) * step;
      const Ramp x{(back.xx * busX + back.xy * busY + back.offsetX - layer.rect.x) / step - 0.5, back.xx};
      const Ramp y{(back.yx * busX + back.yy * busY + back.offsetY - layer.rect.y) / step - 0.5, back.yx};
      const Run run = insideOf(y, top.height, insideOf(x, top.width, columns));
      for (int column = run.begin; column < run.end; column += kPixelsMost)
        blendPart(row, column, pixelRamp(x, y, column), std::min(kPixelsMost, run.end - column));
    }
  };
  const FrameSize size = layer.picture->size();
  const PixelPlane luma{layer.lumaPixels.data(), size.width, size.height};
  const PixelPlane chroma{layer.chromaPixels.data(), size.chromaWidth(), size.chromaHeight()};
  eachPart(Frame::Y, [&](int row, int column, const PixelRamp& ramp, int count) {
    sampleLumaPixels(luma, ramp, first_.data(), alpha_.data(), count);
    fade(first_.data(), count, blackOf(Frame::Y), weight);
    fade(alpha_.data(), count, 0, weight);
    blendPremultipliedRow(first_.data(), alpha_.data(), blackOf(Frame::Y),
                          writablePlaneOf(onto, Frame::Y).row(row) + column, count);
  });
  eachPart(Frame::U, [&](int row, int column, const PixelRamp& ramp, int count) {
    sampleChromaPixels(chroma, ramp, first_.data(), second_.data(), alpha_.data(), count);
    fade(first_.data(), count, blackOf(Frame::U), weight);
    fade(second_.data(), count, blackOf(Frame::V), weight);
    fade(alpha_.data(), count, 0, weight);
    blendPremultipliedRow(first_.data(), alpha_.data(), blackOf(Frame::U),
                          writablePlaneOf(onto, Frame::U).row(row) + column, count);
    blendPremultipliedRow(second_.data(), alpha_.data(), blackOf(Frame::V),
                          writablePlaneOf(onto, Frame::V).row(row) + column, count);
  });
}

}  // namespace korvia
