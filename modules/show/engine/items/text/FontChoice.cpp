#include "FontChoice.h"

#include <QFontDatabase>
#include <QHash>
#include <QStringList>
#include <algorithm>
#include <iterator>
#include <optional>

namespace korvia {

namespace {

const QString kFallbackFamily = QStringLiteral("Noto Sans CJK SC");
const QString kEmojiFamily = QStringLiteral("Noto Color Emoji");
constexpr int kMostNameCharacters = 256;

struct StyleWord {
  const char* word;
  int weight;
};
constexpr StyleWord kStyleWords[] = {
    {"thin", QFont::Thin},
    {"extralight", QFont::ExtraLight},
    {"ultralight", QFont::ExtraLight},
    {"light", QFont::Light},
    {"regular", QFont::Normal},
    {"normal", QFont::Normal},
    {"book", QFont::Normal},
    {"medium", QFont::Medium},
    {"semibold", QFont::DemiBold},
    {"demibold", QFont::DemiBold},
    {"bold", QFont::Bold},
    {"extrabold", QFont::ExtraBold},
    {"ultrabold", QFont::ExtraBold},
    {"heavy", QFont::Black},
    {"black", QFont::Black},
};

struct NamedStyle {
  QString family;
  std::optional<int> weight;
  bool italic = false;
};

/// Takes the words of a style off the end of the name.
NamedStyle splitName(const QString& name) {
  NamedStyle style;
  QStringList words = name.simplified().split(QLatin1Char(' '));
  for (; words.size() > 1; words.removeLast()) {
    const QString last = words.constLast().toLower();
    if (last == QLatin1String("italic") || last == QLatin1String("oblique")) {
      style.italic = true;
      continue;
    }
    const auto* found =
        std::find_if(std::begin(kStyleWords), std::end(kStyleWords),
                     [&last](const StyleWord& entry) { return last == QLatin1String(entry.word); });
    if (found == std::end(kStyleWords))
      break;
    style.weight = style.weight.value_or(found->weight);
  }
  style.family = words.join(QLatin1Char(' '));
  return style;
}

/// The installed families under their names in lower case. Asked once, because listing them takes
/// milliseconds.
const QHash<QString, QString>& installedFamilies() {
  static const QHash<QString, QString> families = [] {
    QHash<QString, QString> byName;
    for (const QString& family : QFontDatabase().families()) {
      byName.insert(family.toLower(), family);
      // A family that several foundries have is listed as "Name [Foundry]".
      byName.insert(family.section(QLatin1String(" ["), 0, 0).toLower(), family);
    }
    return byName;
  }();
  return families;
}

NamedStyle chooseStyle(const QString& name) {
  const QStringList names = name.left(kMostNameCharacters).split(QLatin1String(" & "), Qt::SkipEmptyParts);
  const QHash<QString, QString>& installed = installedFamilies();
  for (const QString& one : names) {
    // The whole name first, because the name of a family may end with a word of a style.
    const auto whole = installed.constFind(one.simplified().toLower());
    if (whole != installed.constEnd())
      return {*whole, {}, false};
    NamedStyle split = splitName(one);
    const auto family = installed.constFind(split.family.toLower());
    if (family != installed.constEnd()) {
      split.family = *family;
      return split;
    }
  }
  NamedStyle fallback = names.isEmpty() ? NamedStyle() : splitName(names.constFirst());
  fallback.family = kFallbackFamily;
  return fallback;
}

}  // namespace

QFont chooseFont(const QString& name, int pixelSize) {
  const NamedStyle style = chooseStyle(name);
  QFont font;
  font.setFamilies({style.family, kFallbackFamily, kEmojiFamily});
  font.setPixelSize(pixelSize);
  font.setWeight(style.weight.value_or(QFont::Normal));
  font.setItalic(style.italic);
  font.setHintingPreference(QFont::PreferNoHinting);
  font.setStyleStrategy(
      static_cast<QFont::StyleStrategy>(QFont::PreferAntialias | QFont::NoSubpixelAntialias));
  return font;
}

QFont emojiFont(const QFont& font) {
  QFont emoji = font;
  emoji.setFamilies(QStringList(kEmojiFamily) + font.families());
  return emoji;
}

}  // namespace korvia
