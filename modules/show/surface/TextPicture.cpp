#include "TextPicture.h"

#include <QFontMetricsF>
#include <QLinearGradient>
#include <QLoggingCategory>
#include <QPainter>
#include <QPainterPath>
#include <QStringList>
#include <QTextBoundaryFinder>
#include <QTextLayout>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <vector>

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(logText, "korvia.text")

constexpr int kMaxSide = 8192;
constexpr int kMaxFontSize = 2048;
/// More than fits on any picture in a size that can be read.
constexpr int kMaxCharacters = 65536;

/// The text's shapes. Underlines stay apart, since crossing windings would punch holes into letters.
struct Shapes {
  QPainterPath letters;
  QPainterPath underlines;

  QRectF bounds() const { return letters.boundingRect().united(underlines.boundingRect()); }
  void translate(qreal x, qreal y) {
    letters.translate(x, y);
    underlines.translate(x, y);
  }
};

QFont fontOf(const tagKorviaShowRenderTextParam& param) {
  QFont font(param.fontName);
  font.setPixelSize(std::clamp(param.fontSize, 1, kMaxFontSize));
  font.setBold(param.bold);
  font.setItalic(param.italic);
  return font;
}

/// Share of the free room that lies before the text: none, half or all of it.
qreal horizontalShare(qint32 alignment) {
  if (alignment & TextAlignLeft)
    return 0;
  if (alignment & TextAlignCenter)
    return 0.5;
  return alignment & TextAlignRight ? 1 : 0;
}

qreal verticalShare(qint32 alignment) {
  if (alignment & TextAlignTop)
    return 0;
  if (alignment & TextAlignMiddle)
    return 0.5;
  return alignment & TextAlignBottom ? 1 : 0;
}

QStringList paragraphsOf(const QString& text) {
  QString plain = text.left(kMaxCharacters);
  plain.replace(QLatin1String("\r\n"), QLatin1String("\n"));
  plain.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  plain.replace(QLatin1Char('\t'), QLatin1String("    "));
  return plain.split(QLatin1Char('\n'));
}

/// The lines of a horizontal text, at most as many as fit into the room's height and one more.
QStringList linesOf(const tagKorviaShowRenderTextParam& param, const QFont& font, const QSizeF& room) {
  const auto most = static_cast<int>(room.height() / std::max(1.0, QFontMetricsF(font).lineSpacing())) + 2;
  QStringList lines;
  for (const QString& paragraph : paragraphsOf(param.text)) {
    if (lines.size() >= most)
      break;
    if (!param.wrap || paragraph.isEmpty()) {
      lines += paragraph;
      continue;
    }
    QTextLayout layout(paragraph, font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid() && lines.size() < most;
         line = layout.createLine()) {
      line.setLineWidth(room.width());
      lines += paragraph.mid(line.textStart(), line.textLength()).trimmed();
    }
    layout.endLayout();
  }
  return lines;
}

Shapes horizontalShapes(const tagKorviaShowRenderTextParam& param, const QSizeF& room) {
  const QFont font = fontOf(param);
  const QFontMetricsF metrics(font);
  const QStringList lines = linesOf(param, font, room);
  const qreal height = metrics.height() + metrics.lineSpacing() * (lines.size() - 1);
  qreal baseline = (room.height() - height) * verticalShare(param.alignment) + metrics.ascent();
  Shapes shapes;
  for (const QString& line : lines) {
    const qreal width = metrics.horizontalAdvance(line);
    const qreal x = (room.width() - width) * horizontalShare(param.alignment);
    shapes.letters.addText(x, baseline, font, line);
    if (param.underline && width > 0)
      shapes.underlines.addRect(x, baseline + metrics.underlinePos(), width,
                                std::max(1.0, metrics.lineWidth()));
    baseline += metrics.lineSpacing();
  }
  return shapes;
}

std::vector<QString> graphemesOf(const QString& text) {
  std::vector<QString> graphemes;
  QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
  int begin = 0;
  for (int end = finder.toNextBoundary(); end > 0; end = finder.toNextBoundary()) {
    graphemes.push_back(text.mid(begin, end - begin));
    begin = end;
  }
  return graphemes;
}

/// The columns of a vertical text, at most as many as fit into the room's width and one more.
std::vector<std::vector<QString>> columnsOf(const tagKorviaShowRenderTextParam& param, qreal step,
                                            qreal columnWidth, const QSizeF& room) {
  const auto mostColumns = static_cast<std::size_t>(room.width() / columnWidth) + 2;
  const auto mostCharacters = std::max<std::size_t>(1, static_cast<std::size_t>(room.height() / step));
  std::vector<std::vector<QString>> columns;
  for (const QString& paragraph : paragraphsOf(param.text)) {
    if (columns.size() >= mostColumns)
      break;
    columns.emplace_back();
    for (QString& grapheme : graphemesOf(paragraph)) {
      if (param.wrap && columns.back().size() == mostCharacters)
        columns.emplace_back();
      columns.back().push_back(std::move(grapheme));
    }
  }
  if (columns.size() > mostColumns)
    columns.resize(mostColumns);
  return columns;
}

Shapes verticalShapes(const tagKorviaShowRenderTextParam& param, const QSizeF& room) {
  const QFont font = fontOf(param);
  const QFontMetricsF metrics(font);
  const qreal step = std::max(1.0, metrics.height());
  const qreal columnWidth = std::max({1.0, metrics.maxWidth() > 2 * step ? step : metrics.maxWidth(), step});
  const auto columns = columnsOf(param, step, columnWidth, room);
  const qreal width = columnWidth * static_cast<qreal>(columns.size());
  qreal left = (room.width() - width) * horizontalShare(param.alignment) + width;
  Shapes shapes;
  for (const auto& column : columns) {
    left -= columnWidth;
    const qreal height = step * static_cast<qreal>(column.size());
    const qreal top = (room.height() - height) * verticalShare(param.alignment);
    qreal baseline = top + metrics.ascent();
    for (const QString& grapheme : column) {
      const qreal x = left + (columnWidth - metrics.horizontalAdvance(grapheme)) / 2;
      shapes.letters.addText(x, baseline, font, grapheme);
      baseline += step;
    }
    // Beside the column, as the underline of a vertical line stands.
    if (param.underline && height > 0)
      shapes.underlines.addRect(left, top, std::max(1.0, metrics.lineWidth()), height);
  }
  return shapes;
}

QBrush fillOf(const tagKorviaShowRenderTextParam& param, const QRectF& bounds) {
  const QColor begin = QColor::fromRgba(param.gradientBeginColor);
  const QColor end = QColor::fromRgba(param.gradientEndColor);
  if (begin == end)
    return begin;
  const qreal angle = qDegreesToRadians(static_cast<qreal>(param.gradientAngle % 360));
  const QPointF direction(std::cos(angle), std::sin(angle));
  // Half of what the rectangle measures along the direction, so that both colours are reached at its edges.
  const qreal reach =
      (std::abs(direction.x()) * bounds.width() + std::abs(direction.y()) * bounds.height()) / 2;
  QLinearGradient gradient(bounds.center() - direction * reach, bounds.center() + direction * reach);
  gradient.setColorAt(0, begin);
  gradient.setColorAt(1, end);
  return gradient;
}

}  // namespace

QImage drawTextPicture(int width, int height, const tagKorviaShowRenderTextParam& param) {
  if (width < 1 || height < 1)
    return {};
  QImage image(std::min(width, kMaxSide), std::min(height, kMaxSide), QImage::Format_ARGB32_Premultiplied);
  if (image.isNull()) {
    qCWarning(logText, "no memory for a text picture of %d x %d", width, height);
    return image;
  }
  image.fill(Qt::transparent);

  // The outline stays on the picture when the text touches an edge.
  const int outline = param.outline ? std::clamp(param.outlineSize, 0, kMaxFontSize) : 0;
  const QSizeF room(std::max(1, image.width() - 2 * outline), std::max(1, image.height() - 2 * outline));
  Shapes shapes = param.vertical ? verticalShapes(param, room) : horizontalShapes(param, room);
  shapes.translate(outline, outline);
  shapes.letters.setFillRule(Qt::WindingFill);

  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  if (outline > 0) {
    const QPen pen(QColor::fromRgba(param.outlineColor), 2.0 * outline, Qt::SolidLine, Qt::RoundCap,
                   Qt::RoundJoin);
    painter.strokePath(shapes.letters, pen);
    painter.strokePath(shapes.underlines, pen);
  }
  const QBrush fill = fillOf(param, shapes.bounds());
  painter.fillPath(shapes.letters, fill);
  painter.fillPath(shapes.underlines, fill);
  return image;
}

}  // namespace korvia
