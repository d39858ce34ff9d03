#include "ColorSource.h"

#include <libyuv/planar_functions.h>

#include <QColor>
#include <array>
#include <cmath>
#include <numbers>

#include "engine/frame/PictureFrame.h"

namespace korvia {

namespace {

// EBU bars 100/0/75/0: white at 100 %, yellow, cyan, green, magenta, red and blue at 75 %, and black. Y, U
// and V of BT.709 in 8 bits: Y' = 16 + 219 E'Y, U = 128 + 224 (E'B - E'Y) / 1.8556, V = 128 + 224 (E'R - E'Y)
// / 1.5748 (ITU-R BT.709-6, items 3.2 to 3.5).
constexpr std::array<std::array<std::uint8_t, 3>, 8> kBars{{{235, 128, 128},
                                                            {168, 44, 136},
                                                            {145, 147, 44},
                                                            {133, 63, 52},
                                                            {63, 193, 204},
                                                            {51, 109, 212},
                                                            {28, 212, 120},
                                                            {16, 128, 128}}};

// A sine whose peak is at -18 dBFS. 1 kHz has whole periods in samples.
constexpr int kTonePeriod = kSampleRate / 1000;
constexpr double kToneAmplitude = 0.12589254;

std::array<float, kTonePeriod> makeTone() {
  std::array<float, kTonePeriod> tone;
  for (std::size_t i = 0; i < tone.size(); ++i)
    tone[i] = static_cast<float>(kToneAmplitude *
                                 std::sin(2 * std::numbers::pi * static_cast<double>(i) / kTonePeriod));
  return tone;
}

FrameRef renderBars(FrameSize size) {
  MutableFrame frame(new Frame(size));
  const int count = static_cast<int>(kBars.size());
  int left = 0;
  for (int i = 0; i < count; ++i) {
    // Edges are even, so that luma and chroma change at the same place.
    const int right = i + 1 < count ? size.width * (i + 1) / count / 2 * 2 : size.width;
    if (right > left)
      fillColumns(*frame, left, right, kBars[static_cast<std::size_t>(i)]);
    left = right;
  }
  return std::move(frame).publish();
}

FrameRef renderColor(FrameSize size, QRgb color) {
  MutableFrame frame(new Frame(size, qAlpha(color) == 255 ? FrameAlpha::None : FrameAlpha::Plane));
  fillColumns(*frame, 0, size.width, codeValues(color));
  if (frame->hasAlpha())
    libyuv::SetPlane(frame->writablePlane(Frame::A), frame->stride(Frame::A), size.width, size.height,
                     static_cast<std::uint32_t>(qAlpha(color)));
  return std::move(frame).publish();
}

}  // namespace

ColorSource::ColorSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                         const tagKorviaFormatInfo& format)
    : PictureSource(context, info, format, Playing) {
  if (context.renderSize.isEmpty())
    return;
  showPicture(info.colorBar ? renderBars(context.renderSize) : renderColor(context.renderSize, info.color));
}

bool ColorSource::pullSound(StereoSpan out) {
  static const std::array<float, kTonePeriod> kTone = makeTone();
  if (!info().colorBar)
    return false;
  for (int i = 0; i < out.samples; ++i) {
    out.left[i] = out.right[i] = kTone[static_cast<std::size_t>(toneSample_)];
    toneSample_ = (toneSample_ + 1) % kTonePeriod;
  }
  return true;
}

QString ColorSource::description() const {
  return info().colorBar ? QStringLiteral("colour bars")
                         : QColor::fromRgba(info().color).name(QColor::HexArgb);
}

}  // namespace korvia
