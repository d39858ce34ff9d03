#include "present/TileCaption.h"

#include <QPainter>
#include <QRegularExpression>
#include <QStyleOption>

namespace {

// The caption takes at most a third of the tile's height.
constexpr int kCaptionShare = 3;

QStringList piecesOf(const QString& text) {
  static const QRegularExpression seam(QStringLiteral("(?<=[\\p{Ll}\\p{N}])(?=\\p{Lu})|(?<=[^-\\s])(?=\\s)"));
  return text.split(seam);
}

}  // namespace

TileCaption::TileCaption(QWidget* parent) : QLabel(parent) {
  setAlignment(Qt::AlignCenter);
  // A font that is set with setFont would be overridden by the application's style sheet.
  setStyleSheet(QStringLiteral("font-size: 8pt; font-weight: bold;"));
}

QStringList TileCaption::linesOf(const QString& text, const QFontMetrics& metrics, int width, int lineCount) {
  QStringList lines;
  QString rest = text;
  while (lines.size() < lineCount - 1 && metrics.horizontalAdvance(rest) > width) {
    QString line;
    for (const QString& piece : piecesOf(rest)) {
      if (metrics.horizontalAdvance(line + piece) > width)
        break;
      line += piece;
    }
    if (line.isEmpty())
      break;
    rest = rest.mid(line.size()).trimmed();
    lines.append(line);
  }
  // elidedText measures more strictly and would also shorten a text that just fits.
  const bool fits = metrics.horizontalAdvance(rest) <= width;
  lines.append(fits ? rest : metrics.elidedText(rest, Qt::ElideMiddle, width));
  return lines;
}

void TileCaption::fitTile(int tileHeight) {
  ensurePolished();
  const int lineHeight = fontMetrics().height();
  _lineCount = 2 * lineHeight * kCaptionShare <= tileHeight ? 2 : 1;
  setFixedHeight(_lineCount * lineHeight);
}

void TileCaption::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  QStyleOption option;
  option.initFrom(this);
  style()->drawPrimitive(QStyle::PE_Widget, &option, &painter, this);
  const QStringList lines = linesOf(text(), fontMetrics(), width(), _lineCount);
  style()->drawItemText(&painter, rect(), static_cast<int>(alignment()), option.palette, isEnabled(),
                        lines.join(QLatin1Char('\n')), foregroundRole());
}
