#include "FrameImage.h"

#include <libyuv.h>

#include <algorithm>
#include <vector>

namespace korvia {

namespace {

// BT.709, limited range to full range, in 1/65536. The conversions of libyuv hold the blue coefficient in too
// few bits and lose a twentieth of a saturated blue.
constexpr int kOne = 1 << 16;
constexpr int kY = 76309;
constexpr int kRedV = 117489;
constexpr int kGreenU = -13975;
constexpr int kGreenV = -34925;
constexpr int kBlueU = 138438;

int toByte(int value) {
  return std::clamp((value + kOne / 2) >> 16, 0, 255);
}

std::vector<std::uint8_t> fullSize(const Frame& frame, int plane) {
  std::vector<std::uint8_t> pixels(static_cast<std::size_t>(frame.width()) * frame.height());
  libyuv::ScalePlane(frame.plane(plane), frame.stride(plane), frame.planeWidth(plane),
                     frame.planeHeight(plane), pixels.data(), frame.width(), frame.width(), frame.height(),
                     libyuv::kFilterBilinear);
  return pixels;
}

}  // namespace

QImage toImage(const Frame& frame) {
  QImage image(frame.width(), frame.height(), QImage::Format_RGB32);
  if (image.isNull())
    return image;
  const std::vector<std::uint8_t> us = fullSize(frame, Frame::U);
  const std::vector<std::uint8_t> vs = fullSize(frame, Frame::V);
  for (int row = 0; row < frame.height(); ++row) {
    const std::uint8_t* y = frame.plane(Frame::Y) + static_cast<std::ptrdiff_t>(row) * frame.stride(Frame::Y);
    const std::uint8_t* u = us.data() + static_cast<std::size_t>(row) * frame.width();
    const std::uint8_t* v = vs.data() + static_cast<std::size_t>(row) * frame.width();
    auto* out = reinterpret_cast<QRgb*>(image.scanLine(row));
    for (int x = 0; x < frame.width(); ++x) {
      const int luma = kY * (y[x] - 16);
      const int blue = u[x] - 128;
      const int red = v[x] - 128;
      out[x] = qRgb(toByte(luma + kRedV * red), toByte(luma + kGreenU * blue + kGreenV * red),
                    toByte(luma + kBlueU * blue));
    }
  }
  return image;
}

}  // namespace korvia
