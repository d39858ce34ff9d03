#include "RecordJson.h"

#include <QColor>
#include <QHash>
#include <QImage>
#include <QJsonArray>
#include <QJsonObject>
#include <QStringList>
#include <QUuid>
#include <algorithm>
#include <cmath>
#include <tuple>

#include "KorviaMetaType.h"
#include "RecordFields.h"

namespace korvia {

namespace {

QJsonValue colorJson(const QColor& color) {
  if (!color.isValid())
    return QJsonValue::Null;
  const quint32 rgba = (static_cast<quint32>(color.red()) << 24) |
                       (static_cast<quint32>(color.green()) << 16) |
                       (static_cast<quint32>(color.blue()) << 8) | static_cast<quint32>(color.alpha());
  return QStringLiteral("#%1").arg(rgba, 8, 16, QLatin1Char('0')).toUpper();
}

QJsonValue numberJson(double value) {
  return std::isfinite(value) ? QJsonValue(value) : QJsonValue::Null;
}

/// Seven digits, so that a float of 0.1 is not written with the error of its conversion to double.
QJsonValue numberJson(float value) {
  return std::isfinite(value) ? QJsonValue(QByteArray::number(static_cast<double>(value), 'g', 7).toDouble())
                              : QJsonValue::Null;
}

QJsonValue sizeJson(const QSize& size) {
  return QJsonObject{{"width", size.width()}, {"height", size.height()}};
}

template <class T>
struct IsList : std::false_type {};
template <class T>
struct IsList<QList<T>> : std::true_type {};
template <class T, std::size_t N>
struct IsList<std::array<T, N>> : std::true_type {};

template <class T>
QJsonValue fieldJson(const T& field);

class ObjectWriter {
 public:
  template <class T>
  void operator()(const char* name, const T& field) {
    object_.insert(QLatin1String(name), fieldJson(field));
  }
  const QJsonObject& object() const { return object_; }

 private:
  QJsonObject object_;
};

template <std::size_t N>
QJsonValue charactersJson(const std::array<char, N>& text) {
  return QString::fromLatin1(text.data(),
                             static_cast<int>(std::find(text.begin(), text.end(), '\0') - text.begin()));
}

template <class T>
QJsonValue fieldJson(const T& field) {
  if constexpr (std::is_same_v<T, bool>) {
    return field;
  } else if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
    return static_cast<qint64>(field);
  } else if constexpr (std::is_floating_point_v<T>) {
    return numberJson(field);
  } else if constexpr (std::is_same_v<T, QString>) {
    return maskSecrets(field);
  } else if constexpr (std::is_same_v<T, QUuid>) {
    return field.toString();
  } else if constexpr (std::is_same_v<T, QColor>) {
    return colorJson(field);
  } else if constexpr (requires { field.argb; }) {
    return colorJson(QColor::fromRgba(field.argb));
  } else if constexpr (requires { charactersJson(field); }) {
    return charactersJson(field);
  } else if constexpr (IsList<T>::value || std::is_same_v<T, QStringList>) {
    QJsonArray list;
    for (const auto& entry : field)
      list.append(fieldJson(entry));
    return list;
  } else {
    ObjectWriter writer;
    visitFields(field, writer);
    return writer.object();
  }
}

/// Every record that may stand in a variant.
using RecordTypes =
    std::tuple<tagKorviaFormatInfo, tagKorviaShowEngineInfo, tagKorviaWindowInfo, tagKorviaShowWindowPackInfo,
               tagKorviaShowPresentPlacement, tagKorviaShowOutputParam, tagKorviaShowSourceInfo,
               tagKorviaShowChannelSlot, tagKorviaWindowHWNDInfo, tagKorviaShowRenderTextParam,
               tagKorviaShowAlphaMattingParam, tagKorviaShowChannelBackgroundInfo,
               tagKorviaShowAudioMixerParam, tagKorviaAudioEffectParam, tagKorviaAudioProcessParamVolcalCut,
               tagGShowKaroakeTextParam, tagKorviaShowComponentInfo, tagKorviaShowPresentTimelineInfo,
               tagKorviaShowTextInfo, tagKorviaShowLogoInfo, tagKorviaShowTextStyle,
               tagKorviaShowPresentAnimation, tagKorviaShowAudioLevel, tagKorviaShowEngineFigures,
               tagKorviaSourceLinkState, tagKorviaSourceState, tagKorviaOutputStatistics,
               tagKorviaShowSourceStatisticsItem, tagZRCFileInfo>;

using RecordWriter = QJsonValue (*)(const void* record);

template <class... Records>
QHash<int, RecordWriter> writersOf(const std::tuple<Records...>*) {
  QHash<int, RecordWriter> writers;
  (writers.insert(korviaMetaTypeId<Records>(),
                  [](const void* record) { return fieldJson(*static_cast<const Records*>(record)); }),
   ...);
  return writers;
}

QJsonValue recordJson(const QVariant& value) {
  static const QHash<int, RecordWriter> writers = writersOf(static_cast<const RecordTypes*>(nullptr));
  if (const RecordWriter write = writers.value(value.userType()))
    return write(value.constData());
  return QJsonObject{{"type", QLatin1String(value.typeName())}};
}

}  // namespace

QJsonValue toJson(const QVariant& value) {
  switch (value.userType()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
      return QJsonValue::Null;
    case QMetaType::Bool:
      return value.toBool();
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
      return value.toLongLong();
    case QMetaType::ULongLong:
      return static_cast<double>(value.toULongLong());
    case QMetaType::Float:
      return numberJson(value.toFloat());
    case QMetaType::Double:
      return numberJson(value.toDouble());
    case QMetaType::QString:
      return maskSecrets(value.toString());
    case QMetaType::QStringList:
      return fieldJson(value.toStringList());
    case QMetaType::QVariantList: {
      QJsonArray list;
      for (const QVariant& entry : value.toList())
        list.append(toJson(entry));
      return list;
    }
    case QMetaType::QByteArray:
      return QJsonObject{{"bytes", value.toByteArray().size()}};
    case QMetaType::QUuid:
      return value.toUuid().toString();
    case QMetaType::QColor:
      return colorJson(qvariant_cast<QColor>(value));
    case QMetaType::QImage:
      return sizeJson(qvariant_cast<QImage>(value).size());
    case QMetaType::QSize:
      return sizeJson(value.toSize());
    default:
      return recordJson(value);
  }
}

}  // namespace korvia
