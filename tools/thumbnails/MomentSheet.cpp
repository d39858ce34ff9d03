#include "MomentSheet.h"

#include <QPainter>

#include "SheetStyle.h"

namespace korvia {

namespace {

constexpr int kPercents[] = {0, 25, 50, 75, 100};
constexpr int kColumns = 5;
constexpr int kLabelWidth = 168;
constexpr int kHeaderHeight = 22;

void drawHeader(QPainter& painter, int left, QSize picture) {
  painter.setFont(sheetFont(kSheetNotePixels));
  painter.setPen(QColor(kSheetMuted));
  int x = left + kLabelWidth;
  for (const int percent : kPercents) {
    painter.drawText(QRect(x, kSheetMargin, picture.width(), kHeaderHeight), Qt::AlignHCenter | Qt::AlignTop,
                     QStringLiteral("%1 %").arg(percent));
    x += picture.width() + kSheetGap;
  }
}

void drawRow(QPainter& painter, const QPoint& corner, const MomentRow& row, QSize picture) {
  const QRect label(corner, QSize(kLabelWidth - 8, picture.height()));
  const QRect upper = label.adjusted(0, 0, 0, -label.height() / 2);
  const QRect lower = label.adjusted(0, label.height() / 2, 0, 0);
  QFont nameFont = sheetFont(kSheetNamePixels);
  nameFont.setBold(true);
  painter.setFont(nameFont);
  painter.setPen(QColor(kSheetText));
  painter.drawText(upper, Qt::AlignLeft | Qt::AlignBottom, row.name);
  painter.setFont(sheetFont(kSheetNotePixels));
  painter.setPen(QColor(kSheetMuted));
  painter.drawText(lower, Qt::AlignLeft | Qt::AlignTop, row.note);
  int x = corner.x() + kLabelWidth;
  for (const int percent : kPercents) {
    painter.drawImage(x, corner.y(), row.picture(percent / 100.0));
    x += picture.width() + kSheetGap;
  }
}

}  // namespace

QImage drawMomentSheet(const std::vector<MomentRow>& rows, int blocks, QSize picture) {
  const int rowsInBlock = (static_cast<int>(rows.size()) + blocks - 1) / blocks;
  const int rowHeight = picture.height() + kSheetGap;
  const int blockWidth = kLabelWidth + kColumns * (picture.width() + kSheetGap) - kSheetGap;
  QImage sheet(2 * kSheetMargin + blocks * blockWidth + (blocks - 1) * kSheetBlockGap,
               2 * kSheetMargin + kHeaderHeight + rowsInBlock * rowHeight - kSheetGap, QImage::Format_RGB32);
  sheet.fill(kSheetWindow);
  QPainter painter(&sheet);
  for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
    const int left = kSheetMargin + i / rowsInBlock * (blockWidth + kSheetBlockGap);
    if (i % rowsInBlock == 0)
      drawHeader(painter, left, picture);
    const QPoint corner(left, kSheetMargin + kHeaderHeight + i % rowsInBlock * rowHeight);
    drawRow(painter, corner, rows[static_cast<std::size_t>(i)], picture);
  }
  return sheet;
}

}  // namespace korvia
