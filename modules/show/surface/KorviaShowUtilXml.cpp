#include <QColor>
#include <QDomElement>
#include <QXmlStreamWriter>
#include <cmath>

#include "KorviaShowUtil.h"
#include "trace/RecordFields.h"

namespace {

using korvia::visitFields;

/// Limit of a list: more entries than any record needs. The rest of a longer list in a file is ignored.
constexpr int kMaxListEntries = 4096;

const QString kValueAttribute = QStringLiteral("value");
const QString kItemElement = QStringLiteral("item");

/// XML has no escape for these characters, and one of them makes the whole file unreadable.
QString withoutForbiddenCharacters(const QString& text) {
  QString clean;
  clean.reserve(text.size());
  for (int i = 0; i < text.size(); ++i) {
    const QChar character = text[i];
    const ushort code = character.unicode();
    if (character.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
      clean += character;
      clean += text[++i];
    } else if (!character.isSurrogate() && code < 0xFFFE &&
               (code >= 0x20 || code == '\t' || code == '\n' || code == '\r')) {
      clean += character;
    }
  }
  return clean;
}

template <class T>
void writeField(QXmlStreamWriter& writer, const QString& name, const T& field);

void writeValue(QXmlStreamWriter& writer, const QString& name, const QString& value) {
  writer.writeEmptyElement(name);
  writer.writeAttribute(kValueAttribute, value);
}

template <class Entries>
void writeEntries(QXmlStreamWriter& writer, const QString& name, const Entries& entries) {
  writer.writeStartElement(name);
  for (const auto& entry : entries)
    writeField(writer, kItemElement, entry);
  writer.writeEndElement();
}

template <class T>
void writeField(QXmlStreamWriter& writer, const QString& name, const T& field) {
  if constexpr (std::is_integral_v<T>) {
    writeValue(writer, name, QString::number(field));
  } else if constexpr (std::is_floating_point_v<T>) {
    writeValue(writer, name,
               QString::number(static_cast<double>(field), 'g', sizeof(T) == sizeof(float) ? 9 : 17));
  } else if constexpr (std::is_same_v<T, QString>) {
    writeValue(writer, name, withoutForbiddenCharacters(field));
  } else if constexpr (requires { field.argb; }) {
    writeValue(writer, name, QColor::fromRgba(field.argb).name(QColor::HexArgb));
  } else if constexpr (requires { field.begin(); }) {
    writeEntries(writer, name, field);
  } else {
    writer.writeStartElement(name);
    visitFields(field, [&writer](const char* fieldName, const auto& value) {
      writeField(writer, QLatin1String(fieldName), value);
    });
    writer.writeEndElement();
  }
}

template <class T>
void readField(const QDomElement& element, T& field);

template <class T>
void readInteger(const QString& text, T& field) {
  bool valid = false;
  const qlonglong value = text.toLongLong(&valid);
  if (valid && std::in_range<T>(value))
    field = static_cast<T>(value);
}

template <class T>
void readNumber(const QString& text, T& field) {
  bool valid = false;
  const double value = text.toDouble(&valid);
  if (valid && std::isfinite(static_cast<T>(value)))
    field = static_cast<T>(value);
}

template <class Entries>
void readEntries(const QDomElement& element, Entries& entries) {
  using Entry = typename Entries::value_type;
  constexpr bool fixed = requires {
    std::tuple_size<Entries>::value;
  };
  const int count = fixed ? static_cast<int>(entries.size()) : kMaxListEntries;
  if constexpr (!fixed)
    entries.clear();
  int index = 0;
  for (QDomElement child = element.firstChildElement(kItemElement); !child.isNull() && index < count;
       child = child.nextSiblingElement(kItemElement), ++index) {
    if constexpr (fixed) {
      readField(child, entries[static_cast<std::size_t>(index)]);
    } else {
      Entry entry{};
      readField(child, entry);
      entries.append(entry);
    }
  }
}

/// The number of fields that were found.
template <class Record>
int readRecord(const QDomElement& element, Record& record) {
  int found = 0;
  visitFields(record, [&](const char* name, auto&& field) {
    const QDomElement child = element.firstChildElement(QLatin1String(name));
    if (child.isNull())
      return;
    ++found;
    readField(child, field);
  });
  return found;
}

template <class T>
void readField(const QDomElement& element, T& field) {
  if constexpr (std::is_integral_v<T>) {
    readInteger(element.attribute(kValueAttribute), field);
  } else if constexpr (std::is_floating_point_v<T>) {
    readNumber(element.attribute(kValueAttribute), field);
  } else if constexpr (std::is_same_v<T, QString>) {
    if (element.hasAttribute(kValueAttribute))
      field = element.attribute(kValueAttribute);
  } else if constexpr (requires { field.argb; }) {
    const QColor color(element.attribute(kValueAttribute));
    if (color.isValid())
      field.argb = color.rgba();
  } else if constexpr (requires { field.begin(); }) {
    readEntries(element, field);
  } else {
    readRecord(element, field);
  }
}

}  // namespace

bool KorviaShowUtil::readDomElement(const QDomElement& element, tagKorviaShowAudioMixerParam& param) {
  return readRecord(element, param) > 0;
}

bool KorviaShowUtil::readDomElement(const QDomElement& element, tagKorviaShowComponentInfo& info) {
  return readRecord(element, info) > 0;
}

void KorviaShowUtil::writeXmlWriter(QXmlStreamWriter& writer, const QString& name,
                                    const tagKorviaShowAudioMixerParam& param) {
  writeField(writer, name, param);
}

void KorviaShowUtil::writeXmlWriter(QXmlStreamWriter& writer, const QString& name,
                                    const tagKorviaShowComponentInfo& info) {
  writeField(writer, name, info);
}
