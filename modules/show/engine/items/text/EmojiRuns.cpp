#include "EmojiRuns.h"

#include <algorithm>
#include <iterator>

#include "engine/items/text/FontChoice.h"

namespace korvia {

namespace {

struct CodeRange {
  uint first;
  uint last;
};

/// What Unicode shows in colour by itself.
constexpr CodeRange kShownInColor[] = {
    {0x231A, 0x231B}, {0x23E9, 0x23EC}, {0x23F0, 0x23F0}, {0x23F3, 0x23F3},  {0x25FD, 0x25FE},
    {0x2614, 0x2615}, {0x2648, 0x2653}, {0x267F, 0x267F}, {0x2693, 0x2693},  {0x26A1, 0x26A1},
    {0x26AA, 0x26AB}, {0x26BD, 0x26BE}, {0x26C4, 0x26C5}, {0x26CE, 0x26CE},  {0x26D4, 0x26D4},
    {0x26EA, 0x26EA}, {0x26F2, 0x26F3}, {0x26F5, 0x26F5}, {0x26FA, 0x26FA},  {0x26FD, 0x26FD},
    {0x2705, 0x2705}, {0x270A, 0x270B}, {0x2728, 0x2728}, {0x274C, 0x274C},  {0x274E, 0x274E},
    {0x2753, 0x2755}, {0x2757, 0x2757}, {0x2795, 0x2797}, {0x27B0, 0x27B0},  {0x27BF, 0x27BF},
    {0x2B1B, 0x2B1C}, {0x2B50, 0x2B50}, {0x2B55, 0x2B55}, {0x1F000, 0x1FAFF}};

constexpr uint kTextSelector = 0xFE0E;
constexpr uint kEmojiSelector = 0xFE0F;
constexpr uint kJoiner = 0x200D;
constexpr uint kKeycap = 0x20E3;
constexpr CodeRange kTags{0xE0020, 0xE007F};

bool isIn(uint code, const CodeRange& range) {
  return code >= range.first && code <= range.last;
}

bool showsInColor(uint code) {
  return std::any_of(std::begin(kShownInColor), std::end(kShownInColor),
                     [code](const CodeRange& range) { return isIn(code, range); });
}

/// 0 at the end of the text.
uint codeAt(const QString& text, int at) {
  if (at >= text.size())
    return 0;
  const QChar c = text[at];
  if (c.isHighSurrogate() && at + 1 < text.size() && text[at + 1].isLowSurrogate())
    return QChar::surrogateToUcs4(c, text[at + 1]);
  return c.unicode();
}

int sizeOf(uint code) {
  return QChar::requiresSurrogates(code) ? 2 : 1;
}

/// The end of the emoji that begins at `at`; `at` when none does.
int emojiEnd(const QString& text, int at) {
  const uint code = codeAt(text, at);
  int end = at + sizeOf(code);
  const uint next = codeAt(text, end);
  if (next == kTextSelector || (!showsInColor(code) && next != kEmojiSelector))
    return at;
  for (uint more = next; more == kEmojiSelector || more == kKeycap || more == kJoiner || isIn(more, kTags);
       more = codeAt(text, end)) {
    end += sizeOf(more);
    if (more == kJoiner && end < text.size())
      end += sizeOf(codeAt(text, end));
  }
  return end;
}

}  // namespace

void EmojiText::truncate(int length) {
  text.truncate(length);
  while (!formats.isEmpty() && formats.constLast().start >= length)
    formats.removeLast();
  if (!formats.isEmpty())
    formats.last().length = std::min(formats.last().length, length - formats.last().start);
}

EmojiText markEmoji(const QString& text, const QFont& font) {
  EmojiText marked;
  QVector<QTextLayout::FormatRange>& formats = marked.formats;
  for (int at = 0; at < text.size();) {
    const int begin = marked.text.size();
    const int end = emojiEnd(text, at);
    if (end == at) {
      const int size = sizeOf(codeAt(text, at));
      marked.text += text.midRef(at, size);
      at += size;
      continue;
    }
    for (; at < end; ++at)
      if (text[at] != QChar(kEmojiSelector))
        marked.text += text[at];
    const int length = marked.text.size() - begin;
    // Flags and skin tones are sequences of emoji, so neighbours are shaped together.
    if (!formats.isEmpty() && formats.constLast().start + formats.constLast().length == begin) {
      formats.last().length += length;
      continue;
    }
    QTextLayout::FormatRange range;
    range.start = begin;
    range.length = length;
    range.format.setFont(emojiFont(font));
    formats.append(range);
  }
  return marked;
}

}  // namespace korvia
