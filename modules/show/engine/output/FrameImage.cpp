#include "FrameImage.h"

#include <libyuv.h>

#include <vector>

#include "engine/frame/RgbRow.h"

namespace korvia {

namespace {

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
    const std::size_t chroma = static_cast<std::size_t>(row) * frame.width();
    rowToRgb(y, us.data() + chroma, vs.data() + chroma, reinterpret_cast<std::uint32_t*>(image.scanLine(row)),
             frame.width());
  }
  return image;
}

}  // namespace korvia
