#include <QFile>
#include <QFileInfo>
#include <QFontMetricsF>
#include <QGlyphRun>
#include <QLinearGradient>
#include <QLoggingCategory>
#include <QPainter>
#include <QPainterPath>
#include <QRawFont>
#include <QStringList>
#include <QTextBoundaryFinder>
#include <QTextCodec>
#include <QTextLayout>
#include <QtMath>
#include <algorithm>
#include <cmath>
#include <vector>

#include "DrivePath.h"
#include "KorviaShowUtil.h"
#include "tagKorviaShowRenderTextParam.h"

namespace {

Q_LOGGING_CATEGORY(logText, "korvia.text")

constexpr int kMaxSide = 8192;
constexpr int kMaxFontSize = 2048;
/// Limit of the text: more than fits on any picture in a readable size.
constexpr int kMaxCharacters = 16384;
constexpr int kMaxLineCharacters = 4096;
constexpr qint64 kMaxFileBytes = 4 * 1024 * 1024;

/// The outlines of the text, one path for each glyph and underline: in a single path crossing contours would
/// leave holes, and the time to draw a path grows faster than its length.
class Shapes {
 public:
  /// `place` is the left end of the baseline.
  void addText(QPointF place, const QFont& font, const QString& text) {
    QTextLayout layout(text, font);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();
    if (!line.isValid())
      return;
    for (const QGlyphRun& run : line.glyphRuns()) {
      const QVector<quint32> glyphs = run.glyphIndexes();
      const QVector<QPointF> positions = run.positions();
      for (int i = 0; i < glyphs.size(); ++i) {
        QPainterPath path = run.rawFont().pathForGlyph(glyphs[i]);
        // Positions are relative to the top of the line.
        path.translate(place + positions[i] - QPointF(0, line.ascent()));
        path.setFillRule(Qt::WindingFill);
        add(path);
      }
    }
  }
  void addRect(const QRectF& rect) {
    QPainterPath path;
    path.addRect(rect);
    add(path);
  }
  const std::vector<QPainterPath>& paths() const { return paths_; }
  QRectF bounds() const { return bounds_; }

 private:
  void add(const QPainterPath& path) {
    if (path.isEmpty())
      return;
    bounds_ |= path.boundingRect();
    paths_.push_back(path);
  }

  std::vector<QPainterPath> paths_;
  QRectF bounds_;
};

QFont fontOf(const tagKorviaShowRenderTextParam& param) {
  QFont font(param.fontName);
  font.setPixelSize(std::clamp(param.fontSize, 1, kMaxFontSize));
  font.setBold(param.bold);
  font.setItalic(param.italic);
  return font;
}

/// The share of the free space that is before the text: none, half or all of it.
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
      lines += paragraph.left(kMaxLineCharacters);
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
    shapes.addText({x, baseline}, font, line);
    if (param.underline && width > 0)
      shapes.addRect({x, baseline + metrics.underlinePos(), width, std::max(1.0, metrics.lineWidth())});
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

/// The columns of a vertical text, at most as many as fit into the room's width and one more. The cells of
/// the characters are squares of `step` pixels.
std::vector<std::vector<QString>> columnsOf(const tagKorviaShowRenderTextParam& param, qreal step,
                                            const QSizeF& room) {
  const auto mostColumns = static_cast<std::size_t>(room.width() / step) + 2;
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
  const auto columns = columnsOf(param, step, room);
  const qreal width = step * static_cast<qreal>(columns.size());
  qreal left = (room.width() - width) * horizontalShare(param.alignment) + width;
  Shapes shapes;
  for (const auto& column : columns) {
    left -= step;
    const qreal height = step * static_cast<qreal>(column.size());
    const qreal top = (room.height() - height) * verticalShare(param.alignment);
    qreal baseline = top + metrics.ascent();
    for (const QString& grapheme : column) {
      if (baseline + metrics.descent() > 0 && baseline - metrics.ascent() < room.height())
        shapes.addText({left + (step - metrics.horizontalAdvance(grapheme)) / 2, baseline}, font, grapheme);
      baseline += step;
    }
    // Beside the column, where the underline of vertical text belongs.
    if (param.underline && height > 0)
      shapes.addRect({left, top, std::max(1.0, metrics.lineWidth()), height});
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
  // Half of the extent of the rectangle in the direction of the gradient, so that both colours are reached
  // at its edges.
  const qreal reach =
      (std::abs(direction.x()) * bounds.width() + std::abs(direction.y()) * bounds.height()) / 2;
  QLinearGradient gradient(bounds.center() - direction * reach, bounds.center() + direction * reach);
  gradient.setColorAt(0, begin);
  gradient.setColorAt(1, end);
  return gradient;
}

}  // namespace

QImage KorviaShowUtil::toImage(int width, int height, const tagKorviaShowRenderTextParam& param) {
  if (width < 1 || height < 1)
    return {};
  QImage image(std::min(width, kMaxSide), std::min(height, kMaxSide), QImage::Format_ARGB32_Premultiplied);
  if (image.isNull()) {
    qCWarning(logText, "no memory for a text picture of %d x %d", width, height);
    return image;
  }
  image.fill(Qt::transparent);

  // Keeps the outline on the picture when the text touches an edge.
  const int outline = param.outline ? std::clamp(param.outlineSize, 0, kMaxFontSize) : 0;
  const QSizeF room(std::max(1, image.width() - 2 * outline), std::max(1, image.height() - 2 * outline));
  const Shapes shapes = param.vertical ? verticalShapes(param, room) : horizontalShapes(param, room);

  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.translate(outline, outline);
  if (outline > 0) {
    const QPen pen(QColor::fromRgba(param.outlineColor), 2.0 * outline, Qt::SolidLine, Qt::RoundCap,
                   Qt::RoundJoin);
    for (const QPainterPath& path : shapes.paths())
      painter.strokePath(path, pen);
  }
  const QBrush fill = fillOf(param, shapes.bounds());
  for (const QPainterPath& path : shapes.paths())
    painter.fillPath(path, fill);
  return image;
}

bool KorviaShowUtil::readTextFile(const QString& path, QString& text, QString& reason) {
  text.clear();
  const QFileInfo info(korvia::DrivePath::resolve(path));
  // The kind is checked first, because opening a FIFO would wait for its writer.
  if (!info.isFile()) {
    reason = info.exists() ? QStringLiteral("is no file") : QStringLiteral("no such file");
    return false;
  }
  QFile file(info.filePath());
  if (!file.open(QIODevice::ReadOnly)) {
    reason = file.errorString().toLower();
    return false;
  }
  // One byte more than allowed detects a file that is too long, even when its size is not known.
  const QByteArray content = file.read(kMaxFileBytes + 1);
  if (file.error() != QFileDevice::NoError) {
    reason = file.errorString().toLower();
    return false;
  }
  if (content.size() > kMaxFileBytes) {
    reason = QStringLiteral("longer than 4 MiB");
    return false;
  }
  text = QTextCodec::codecForUtfText(content, QTextCodec::codecForLocale())->toUnicode(content);
  return true;
}
