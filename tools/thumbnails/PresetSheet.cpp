#include "PresetSheet.h"

#include <QDir>
#include <QPainter>

#include "KorviaShowUtil.h"
#include "SampleScene.h"
#include "engine/items/text/TextPainter.h"

namespace korvia {

namespace {

constexpr int kPresets = 31;
constexpr int kBackgrounds = 3;
constexpr QSize kCell{300, 72};
constexpr int kBlocks = 2;
constexpr int kRows = (kPresets + kBlocks - 1) / kBlocks;
constexpr FrameSize kRenderSize{1920, 1080};

QImage background(int kind) {
  if (kind == 2)
    return drawSceneA(QSize(kCell.width(), kCell.width() * 9 / 16)).copy(QRect({0, 40}, kCell));
  QImage image(kCell, QImage::Format_RGB32);
  image.fill(kind == 0 ? QColor(24, 26, 30) : QColor(236, 236, 232));
  return image;
}

}  // namespace

QImage drawPresetSheet(const QString& textureFolder) {
  QImage sheet(kCell.width() * kBackgrounds * kBlocks, kCell.height() * kRows, QImage::Format_RGB32);
  sheet.fill(Qt::black);
  QPainter painter(&sheet);
  TextPainter texts;
  for (int preset = 0; preset < kPresets; ++preset) {
    tagKorviaShowTextInfo info;
    info.text = QStringLiteral("%1 Ag 42 新闻").arg(preset);
    KorviaShowUtil::loadTextStylePreset(static_cast<KorviaShowTextStylePreset>(preset), info.style);
    info.style.texturePath = QDir(textureFolder).filePath(info.style.texturePath);
    const TextPicture text = texts.paint(info, kRenderSize, QDateTime());
    for (int kind = 0; kind < kBackgrounds; ++kind) {
      const QPoint cell((preset / kRows * kBackgrounds + kind) * kCell.width(),
                        preset % kRows * kCell.height());
      painter.drawImage(cell, background(kind));
      painter.drawImage(cell + QPoint(kCell.width(), kCell.height()) / 2 + text.corner, text.image);
    }
  }
  return sheet;
}

}  // namespace korvia
