#include "TextShape.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QStringList>
#include <QTextOption>
#include <algorithm>

#include "engine/items/text/EmojiRuns.h"

namespace korvia {

namespace {

constexpr int kMostLines = 512;
/// Wider than any line that is not broken.
constexpr double kUnbroken = 4e6;

double shareBefore(TextSide side) {
  switch (side) {
    case TextSide::Begin:
      return 0;
    case TextSide::End:
      return 1;
    case TextSide::Middle:
      break;
  }
  return 0.5;
}

/// The length of the text without half of a surrogate pair at its end.
int wholeLength(const QString& text, int length) {
  return length > 0 && length < text.size() && text[length - 1].isHighSurrogate() ? length - 1 : length;
}

}  // namespace

TextShape::TextShape(const QString& text, const QFont& font, const TextBox& box, const TextLimits& limits) {
  for (const QString& paragraph : text.split(QLatin1Char('\n'))) {
    if (lineCount_ >= kMostLines)
      break;
    addParagraph(paragraph, font, box, limits);
  }
  place(font, box);
}

void TextShape::addParagraph(const QString& text, const QFont& font, const TextBox& box,
                             const TextLimits& limits) {
  const bool breaks = box.width > 0;
  EmojiText marked = markEmoji(breaks ? text : text.left(wholeLength(text, limits.characters)), font);
  auto layout = std::make_unique<QTextLayout>(marked.text, font);
  QTextOption option;
  option.setWrapMode(breaks ? QTextOption::WrapAtWordBoundaryOrAnywhere : QTextOption::ManualWrap);
  // Otherwise advances are rounded to whole pixels, and texts of other sizes would have other proportions.
  option.setUseDesignMetrics(true);
  layout->setTextOption(option);
  layout->setCacheEnabled(true);
  layout->setFormats(marked.formats);
  const auto setLines = [&] {
    layout->beginLayout();
    for (QTextLine line = layout->createLine(); line.isValid(); line = layout->createLine()) {
      line.setLineWidth(breaks ? box.width : kUnbroken);
      if (lineCount_ + layout->lineCount() >= kMostLines)
        break;
    }
    layout->endLayout();
  };
  setLines();
  if (!breaks && layout->lineCount() > 0 && layout->lineAt(0).naturalTextWidth() > limits.width) {
    // Whatever side the text is written from, as many characters as fit are its first ones.
    const double share = limits.width / layout->lineAt(0).naturalTextWidth();
    const int kept = std::max(1, static_cast<int>(marked.text.size() * share));
    marked.truncate(wholeLength(marked.text, kept));
    layout->setText(marked.text);
    layout->setFormats(marked.formats);
    setLines();
  }
  lineCount_ += layout->lineCount();
  paragraphs_.push_back(std::move(layout));
}

void TextShape::place(const QFont& font, const TextBox& box) {
  double width = 0;
  double height = 0;
  for (const auto& paragraph : paragraphs_)
    for (int i = 0; i < paragraph->lineCount(); ++i) {
      width = std::max(width, paragraph->lineAt(i).naturalTextWidth());
      height += paragraph->lineAt(i).height();
    }
  const double boxWidth = box.width > 0 ? box.width : width;
  const double boxHeight = box.height > 0 ? box.height : height;
  box_ = QRectF(-boxWidth / 2, -boxHeight / 2, boxWidth, boxHeight);

  const double top = box_.top() + (boxHeight - height) * shareBefore(box.vertical);
  double y = top;
  double left = box_.right();
  double right = box_.left();
  bool first = true;
  for (const auto& paragraph : paragraphs_)
    for (int i = 0; i < paragraph->lineCount(); ++i) {
      QTextLine line = paragraph->lineAt(i);
      line.setPosition({});
      const double x = box_.left() + (boxWidth - line.naturalTextWidth()) * shareBefore(box.horizontal);
      // A line of a script that is written from the right ends at the right of the line's own width.
      line.setPosition({x - line.naturalTextRect().left(), y});
      left = std::min(left, x);
      right = std::max(right, x + line.naturalTextWidth());
      lastBaseline_ = y + line.ascent();
      if (first)
        capTop_ = lastBaseline_ - QFontMetricsF(font).capHeight();
      first = false;
      y += line.height();
    }
  lines_ = QRectF(left, top, std::max(0.0, right - left), height);
}

void TextShape::draw(QPainter& painter, const QRectF& visible) const {
  for (const auto& paragraph : paragraphs_)
    paragraph->draw(&painter, {}, {}, visible);
}

}  // namespace korvia
