#include "PresetPictures.h"

#include <QLinearGradient>
#include <QPainter>
#include <cmath>

#include "KorviaShowUtil.h"
#include "TextTextures.h"

namespace korvia {

namespace {

// A text of the default size has letters of its font size in a render picture of this size.
constexpr FrameSize kFullHd{1920, 1080};

// Half bright, so that white, black and hollow letters all stand out.
constexpr QRgb kBackgroundTop = 0xff8d97a5;
constexpr QRgb kBackgroundBottom = 0xff5c6672;
// Height of the letters' font as a part of the tile.
constexpr double kFontShare = 0.62;
/// Without descenders, letters lie in the lower part of their line. This part of the font's height raises
/// them into the middle.
constexpr double kRaise = 0.1;

QImage background(QSize size) {
  QImage image(size, QImage::Format_RGB32);
  QLinearGradient gradient(0, 0, 0, size.height());
  gradient.setColorAt(0, QColor(kBackgroundTop));
  gradient.setColorAt(1, QColor(kBackgroundBottom));
  QPainter(&image).fillRect(image.rect(), gradient);
  return image;
}

}  // namespace

PresetPictures::PresetPictures() : hasTextures_(textures_.isValid() && writeTextTextures(textures_.path())) {}

TextPicture PresetPictures::text(int preset, const QString& letters, double scale) {
  tagKorviaShowTextInfo info;
  info.text = letters;
  KorviaShowUtil::loadTextStylePreset(static_cast<KorviaShowTextStylePreset>(preset), info.style);
  info.style.texturePath = textures_.filePath(info.style.texturePath);
  const FrameSize size{static_cast<int>(std::lround(kFullHd.width * scale)),
                       static_cast<int>(std::lround(kFullHd.height * scale))};
  return painter_.paint(info, size, {});
}

QImage PresetPictures::tile(int preset, QSize size) {
  const double fontHeight = kFontShare * size.height();
  const double scale = fontHeight / tagKorviaShowTextStyle().fontSize;
  const TextPicture letters = text(preset, QStringLiteral("Aa"), scale);
  QImage tile = background(size);
  const QPoint middle(size.width() / 2,
                      static_cast<int>(std::lround(size.height() / 2.0 - kRaise * fontHeight)));
  QPainter(&tile).drawImage(middle + letters.corner, letters.image);
  return tile;
}

}  // namespace korvia
