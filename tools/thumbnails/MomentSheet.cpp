#include "MomentSheet.h"

#include <QPainter>

namespace korvia {

namespace {

constexpr int kPercents[] = {0, 25, 50, 75, 100};
constexpr int kColumns = 5;
constexpr int kGap = 4;
constexpr int kLabelWidth = 168;
constexpr int kHeaderHeight = 22;
constexpr int kMargin = 14;
constexpr int kBlockGap = 22;

// Colours of window, text and muted text in the console's style sheet.
constexpr QRgb kWindow = 0xff14171c;
constexpr QRgb kText = 0xffd7dce3;
constexpr QRgb kMuted = 0xff8b95a3;
constexpr int kNamePixels = 13;
constexpr int kSmallPixels = 12;

QFont fontOf(int pixels, bool bold) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(pixels);
  font.setBold(bold);
  return font;
}

void drawHeader(QPainter& painter, int left, QSize picture) {
  painter.setFont(fontOf(kSmallPixels, false));
  painter.setPen(QColor(kMuted));
  int x = left + kLabelWidth;
  for (const int percent : kPercents) {
    painter.drawText(QRect(x, kMargin, picture.width(), kHeaderHeight), Qt::AlignHCenter | Qt::AlignTop,
                     QStringLiteral("%1 %").arg(percent));
    x += picture.width() + kGap;
  }
}

void drawRow(QPainter& painter, const QPoint& corner, const MomentRow& row, QSize picture) {
  const QRect label(corner, QSize(kLabelWidth - 8, picture.height()));
  const QRect upper = label.adjusted(0, 0, 0, -label.height() / 2);
  const QRect lower = label.adjusted(0, label.height() / 2, 0, 0);
  painter.setFont(fontOf(kNamePixels, true));
  painter.setPen(QColor(kText));
  painter.drawText(upper, Qt::AlignLeft | Qt::AlignBottom, row.name);
  painter.setFont(fontOf(kSmallPixels, false));
  painter.setPen(QColor(kMuted));
  painter.drawText(lower, Qt::AlignLeft | Qt::AlignTop, row.note);
  int x = corner.x() + kLabelWidth;
  for (const int percent : kPercents) {
    painter.drawImage(x, corner.y(), row.picture(percent / 100.0));
    x += picture.width() + kGap;
  }
}

}  // namespace

QImage drawMomentSheet(const std::vector<MomentRow>& rows, int blocks, QSize picture) {
  const int rowsInBlock = (static_cast<int>(rows.size()) + blocks - 1) / blocks;
  const int rowHeight = picture.height() + kGap;
  const int blockWidth = kLabelWidth + kColumns * (picture.width() + kGap) - kGap;
  QImage sheet(2 * kMargin + blocks * blockWidth + (blocks - 1) * kBlockGap,
               2 * kMargin + kHeaderHeight + rowsInBlock * rowHeight - kGap, QImage::Format_RGB32);
  sheet.fill(kWindow);
  QPainter painter(&sheet);
  for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
    const int left = kMargin + i / rowsInBlock * (blockWidth + kBlockGap);
    if (i % rowsInBlock == 0)
      drawHeader(painter, left, picture);
    const QPoint corner(left, kMargin + kHeaderHeight + i % rowsInBlock * rowHeight);
    drawRow(painter, corner, rows[static_cast<std::size_t>(i)], picture);
  }
  return sheet;
}

}  // namespace korvia
