#include "ContactSheet.h"

#include <QPainter>
#include <vector>

#include "EffectPictures.h"
#include "engine/mix/TransitionCatalog.h"
#include "transitions/TransitionCatalogue.h"

namespace korvia {

namespace {

constexpr QSize kPicture{112, 63};
constexpr int kPercents[] = {0, 25, 50, 75, 100};
constexpr int kColumns = 5;
constexpr int kBlocks = 3;
constexpr int kGap = 4;
constexpr int kLabelWidth = 168;
constexpr int kHeaderHeight = 22;
constexpr int kMargin = 14;
constexpr int kBlockGap = 22;
constexpr int kRowHeight = kPicture.height() + kGap;
constexpr int kBlockWidth = kLabelWidth + kColumns * (kPicture.width() + kGap) - kGap;

// Colours of window, text and muted text in the console's style sheet.
constexpr QRgb kWindow = 0xff14171c;
constexpr QRgb kText = 0xffd7dce3;
constexpr QRgb kMuted = 0xff8b95a3;
constexpr int kNamePixels = 13;
constexpr int kSmallPixels = 12;

struct Row {
  int effect;
  QString name;
  QString catalog;
};

std::vector<Row> rowsOfTheCatalogue() {
  std::vector<Row> rows;
  rows.reserve(kEffectCount);
  TransitionCatalogue catalogue;
  for (int catalog = 0; catalog < TransitionCatalogue::kCatalogCount; ++catalog)
    for (const GListWidgetItemInfo& item : *catalogue.effectList(catalog))
      if (transitionFor(item.id))
        rows.push_back({item.id, item.name, TransitionCatalogue::catalogName(catalog)});
  return rows;
}

QFont fontOf(int pixels, bool bold) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(pixels);
  font.setBold(bold);
  return font;
}

void drawHeader(QPainter& painter, int left) {
  painter.setFont(fontOf(kSmallPixels, false));
  painter.setPen(QColor(kMuted));
  int x = left + kLabelWidth;
  for (const int percent : kPercents) {
    painter.drawText(QRect(x, kMargin, kPicture.width(), kHeaderHeight), Qt::AlignHCenter | Qt::AlignTop,
                     QStringLiteral("%1 %").arg(percent));
    x += kPicture.width() + kGap;
  }
}

void drawRow(QPainter& painter, const QPoint& corner, const Row& row, EffectPictures& pictures) {
  const QRect label(corner, QSize(kLabelWidth - 8, kPicture.height()));
  const QRect upper = label.adjusted(0, 0, 0, -label.height() / 2);
  const QRect lower = label.adjusted(0, label.height() / 2, 0, 0);
  painter.setFont(fontOf(kNamePixels, true));
  painter.setPen(QColor(kText));
  painter.drawText(upper, Qt::AlignLeft | Qt::AlignBottom, row.name);
  painter.setFont(fontOf(kSmallPixels, false));
  painter.setPen(QColor(kMuted));
  painter.drawText(lower, Qt::AlignLeft | Qt::AlignTop,
                   QStringLiteral("%1  %2").arg(row.effect).arg(row.catalog));
  int x = corner.x() + kLabelWidth;
  for (const int percent : kPercents) {
    painter.drawImage(x, corner.y(), pictures.picture(row.effect, percent / 100.0));
    x += kPicture.width() + kGap;
  }
}

}  // namespace

QImage drawContactSheet() {
  const std::vector<Row> rows = rowsOfTheCatalogue();
  const int rowsInBlock = (static_cast<int>(rows.size()) + kBlocks - 1) / kBlocks;
  QImage sheet(2 * kMargin + kBlocks * kBlockWidth + (kBlocks - 1) * kBlockGap,
               2 * kMargin + kHeaderHeight + rowsInBlock * kRowHeight - kGap, QImage::Format_RGB32);
  sheet.fill(kWindow);
  QPainter painter(&sheet);
  EffectPictures pictures(kPicture);
  for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
    const int left = kMargin + i / rowsInBlock * (kBlockWidth + kBlockGap);
    if (i % rowsInBlock == 0)
      drawHeader(painter, left);
    const QPoint corner(left, kMargin + kHeaderHeight + i % rowsInBlock * kRowHeight);
    drawRow(painter, corner, rows[static_cast<std::size_t>(i)], pictures);
  }
  return sheet;
}

}  // namespace korvia
