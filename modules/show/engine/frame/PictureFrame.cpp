#include "PictureFrame.h"

#include <libyuv/planar_functions.h>

#include <algorithm>

namespace korvia {

namespace {

// Luma weights of BT.709, as 16-bit fractions of the limited range.
constexpr double kRed = 0.2126;
constexpr double kGreen = 0.7152;
constexpr double kBlue = 0.0722;

constexpr int fraction(double value) {
  return static_cast<int>(value * 65536 + (value < 0 ? -0.5 : 0.5));
}

struct Row {
  int r, g, b;
};

constexpr double kLumaSpan = 219.0 / 255.0;
constexpr double kChromaSpan = 224.0 / 255.0;
constexpr Row kLuma{fraction(kRed * kLumaSpan), fraction(kGreen* kLumaSpan), fraction(kBlue* kLumaSpan)};
constexpr double kCbScale = kChromaSpan / (2 * (1 - kBlue));
constexpr double kCrScale = kChromaSpan / (2 * (1 - kRed));
// The largest coefficient is minus the sum of the others, so that grey gives exactly 128.
constexpr Row kCb{fraction(-kRed * kCbScale), fraction(-kGreen* kCbScale),
                  -fraction(-kRed* kCbScale) - fraction(-kGreen* kCbScale)};
constexpr Row kCr{-fraction(-kGreen * kCrScale) - fraction(-kBlue * kCrScale), fraction(-kGreen* kCrScale),
                  fraction(-kBlue* kCrScale)};

constexpr int kLumaBias = (16 << 16) + 32768;

std::uint8_t luma(QRgb c) {
  return static_cast<std::uint8_t>(
      (kLuma.r * qRed(c) + kLuma.g * qGreen(c) + kLuma.b * qBlue(c) + kLumaBias) >> 16);
}

// `r`, `g`, `b` are sums over `1 << shift` pixels.
std::uint8_t chroma(const Row& row, int r, int g, int b, int shift) {
  const std::int64_t sum = static_cast<std::int64_t>(row.r) * r + static_cast<std::int64_t>(row.g) * g +
                           static_cast<std::int64_t>(row.b) * b;
  const std::int64_t bias = (std::int64_t{128} << (16 + shift)) + (std::int64_t{1} << (15 + shift));
  return static_cast<std::uint8_t>(std::clamp<std::int64_t>((sum + bias) >> (16 + shift), 0, 255));
}

void copyAlpha(const QImage& image, Frame& frame) {
  // The alpha bits of a format without an alpha channel are undefined.
  const bool opaque = !image.hasAlphaChannel();
  for (int y = 0; y < frame.height(); ++y) {
    const auto* pixels = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    std::uint8_t* row =
        frame.writablePlane(Frame::A) + static_cast<std::ptrdiff_t>(y) * frame.stride(Frame::A);
    std::transform(pixels, pixels + frame.width(), row,
                   [opaque](QRgb pixel) { return static_cast<std::uint8_t>(opaque ? 255 : qAlpha(pixel)); });
  }
}

}  // namespace

std::array<std::uint8_t, 3> codeValues(QRgb color) {
  const QRgb shown = qPremultiply(color);
  const int r = qRed(shown);
  const int g = qGreen(shown);
  const int b = qBlue(shown);
  return {luma(shown), chroma(kCb, r, g, b, 0), chroma(kCr, r, g, b, 0)};
}

FrameRef frameFromImage(const QImage& source, FrameAlpha alpha) {
  if (source.isNull())
    return {};
  // Premultiplied colours are the picture on black.
  const QImage image = source.hasAlphaChannel() ? source.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                                                : source.convertToFormat(QImage::Format_RGB32);
  if (image.isNull())
    return {};
  const int width = image.width();
  const int height = image.height();
  MutableFrame frame(new Frame({width, height}, alpha));
  for (int y = 0; y < height; y += 2) {
    const auto* upper = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    const auto* lower = reinterpret_cast<const QRgb*>(image.constScanLine(std::min(y + 1, height - 1)));
    std::uint8_t* upperY =
        frame->writablePlane(Frame::Y) + static_cast<std::ptrdiff_t>(y) * frame->stride(Frame::Y);
    std::uint8_t* lowerY = y + 1 < height ? upperY + frame->stride(Frame::Y) : nullptr;
    std::uint8_t* u =
        frame->writablePlane(Frame::U) + static_cast<std::ptrdiff_t>(y / 2) * frame->stride(Frame::U);
    std::uint8_t* v =
        frame->writablePlane(Frame::V) + static_cast<std::ptrdiff_t>(y / 2) * frame->stride(Frame::V);
    for (int x = 0; x < width; ++x) {
      upperY[x] = luma(upper[x]);
      if (lowerY)
        lowerY[x] = luma(lower[x]);
    }
    for (int x = 0; x < width; x += 2) {
      const int next = std::min(x + 1, width - 1);
      const QRgb block[4] = {upper[x], upper[next], lower[x], lower[next]};
      int r = 0, g = 0, b = 0;
      for (QRgb pixel : block) {
        r += qRed(pixel);
        g += qGreen(pixel);
        b += qBlue(pixel);
      }
      u[x / 2] = chroma(kCb, r, g, b, 2);
      v[x / 2] = chroma(kCr, r, g, b, 2);
    }
  }
  if (alpha == FrameAlpha::Plane)
    copyAlpha(image, *frame);
  return std::move(frame).publish();
}

void fillColumns(Frame& frame, int left, int right, const std::array<std::uint8_t, 3>& values) {
  for (int plane = Frame::Y; plane <= Frame::V; ++plane) {
    const int shift = plane == Frame::Y ? 0 : 1;
    const int from = left >> shift;
    const int to = (right + shift) >> shift;
    libyuv::SetPlane(frame.writablePlane(plane) + from, frame.stride(plane), to - from,
                     frame.planeHeight(plane), values[static_cast<std::size_t>(plane)]);
  }
}

}  // namespace korvia
