#include "ColorSource.h"

#include <QColor>

#include "engine/frame/PictureFrame.h"

namespace korvia {

namespace {

// White, yellow, cyan, green, magenta, red, blue at 75 %: Y, U and V of BT.709 in 8 bits.
constexpr std::array<std::array<std::uint8_t, 3>, 7> kBars{{{180, 128, 128},
                                                            {168, 44, 136},
                                                            {145, 147, 44},
                                                            {133, 63, 52},
                                                            {63, 193, 204},
                                                            {51, 109, 212},
                                                            {28, 212, 120}}};

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
  MutableFrame frame(new Frame(size));
  fillColumns(*frame, 0, size.width, codeValues(color));
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

QString ColorSource::description() const {
  return info().colorBar ? QStringLiteral("colour bars")
                         : QColor::fromRgba(info().color).name(QColor::HexArgb);
}

}  // namespace korvia
