#include "PresetSheet.h"

#include <QFileInfo>
#include <QPainter>

#include "PresetPictures.h"
#include "SampleScene.h"
#include "present/ItemCatalogue.h"

namespace korvia {

namespace {

constexpr int kBackgrounds = 3;
constexpr QSize kCell{220, 68};
constexpr int kLabelWidth = 176;
constexpr int kBlocks = 2;
constexpr int kRows = (PresetPictures::kCount + kBlocks - 1) / kBlocks;
constexpr int kGap = 4;
constexpr int kMargin = 14;
constexpr int kBlockGap = 22;
constexpr int kBlockWidth = kLabelWidth + kBackgrounds * (kCell.width() + kGap) - kGap;

// Colours of window, text and muted text in the console's style sheet.
constexpr QRgb kWindow = 0xff14171c;
constexpr QRgb kText = 0xffd7dce3;
constexpr QRgb kMuted = 0xff8b95a3;
constexpr int kNamePixels = 13;

QImage background(int kind) {
  if (kind == 2)
    return drawSceneA(QSize(kCell.width(), kCell.width() * 9 / 16)).copy(QRect({0, 40}, kCell));
  QImage image(kCell, QImage::Format_RGB32);
  image.fill(kind == 0 ? QColor(30, 40, 56) : QColor(236, 236, 232));
  return image;
}

void drawLabel(QPainter& painter, const QPoint& corner, int preset, const QString& name) {
  const QRect label(corner, QSize(kLabelWidth - 8, kCell.height()));
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(kNamePixels);
  painter.setFont(font);
  painter.setPen(QColor(kMuted));
  painter.drawText(label, Qt::AlignLeft | Qt::AlignVCenter, QString::number(preset));
  painter.setPen(QColor(kText));
  painter.drawText(label.adjusted(24, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, name);
}

}  // namespace

QImage drawPresetSheet() {
  QImage sheet(2 * kMargin + kBlocks * kBlockWidth + (kBlocks - 1) * kBlockGap,
               2 * kMargin + kRows * (kCell.height() + kGap) - kGap, QImage::Format_RGB32);
  sheet.fill(kWindow);
  QPainter painter(&sheet);
  PresetPictures presets;
  const QList<GListWidgetItemInfo> tiles = ItemCatalogue().textPresets();
  for (int preset = 0; preset < PresetPictures::kCount; ++preset) {
    const QPoint corner(kMargin + preset / kRows * (kBlockWidth + kBlockGap),
                        kMargin + preset % kRows * (kCell.height() + kGap));
    drawLabel(painter, corner, preset, QFileInfo(tiles.at(preset).thumbPath).baseName());
    const TextPicture text = presets.text(preset, QStringLiteral("Ag 42 新闻"), 1);
    for (int kind = 0; kind < kBackgrounds; ++kind) {
      QImage cell = background(kind);
      QPainter(&cell).drawImage(cell.rect().center() + text.corner, text.image);
      painter.drawImage(corner + QPoint(kLabelWidth + kind * (kCell.width() + kGap), 0), cell);
    }
  }
  return sheet;
}

}  // namespace korvia
