#include "CaptureRequest.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace korvia {

namespace {

struct KindName {
  CaptureKind kind;
  const char* name;
};

constexpr KindName kKindNames[] = {
    {CaptureKind::Page, "page"}, {CaptureKind::Window, "window"}, {CaptureKind::Screen, "screen"}};

constexpr qint64 kRatePartMax = 2'000'000;
constexpr qint64 kPicturesPerSecondMax = 1000;

bool isInRange(const CaptureRequest& request) {
  return request.rateNumerator > 0 && request.rateNumerator <= kRatePartMax && request.rateDenominator > 0 &&
         request.rateDenominator <= kRatePartMax &&
         request.rateNumerator <= request.rateDenominator * kPicturesPerSecondMax && request.width > 0 &&
         request.width <= kPageSideMax && request.height > 0 && request.height <= kPageSideMax &&
         request.mostMemoryBytes > 0;
}

}  // namespace

QByteArray CaptureRequest::toBytes() const {
  const QJsonObject object{{QStringLiteral("kind"), nameOf(kind)},
                           {QStringLiteral("rateNumerator"), rateNumerator},
                           {QStringLiteral("rateDenominator"), rateDenominator},
                           {QStringLiteral("address"), address},
                           {QStringLiteral("width"), width},
                           {QStringLiteral("height"), height},
                           {QStringLiteral("windowId"), windowId},
                           {QStringLiteral("windowTitle"), windowTitle},
                           {QStringLiteral("windowProgram"), windowProgram},
                           {QStringLiteral("screenIndex"), screenIndex},
                           {QStringLiteral("mostMemoryBytes"), mostMemoryBytes}};
  return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<CaptureRequest> CaptureRequest::fromBytes(const QByteArray& bytes) {
  const QJsonObject object = QJsonDocument::fromJson(bytes).object();
  const auto whole = [&object](const char* name) {
    return static_cast<qint64>(object[QLatin1String(name)].toDouble());
  };
  const std::optional<CaptureKind> kind = kindNamed(object[QStringLiteral("kind")].toString());
  if (!kind)
    return std::nullopt;
  CaptureRequest request;
  request.kind = *kind;
  request.rateNumerator = whole("rateNumerator");
  request.rateDenominator = whole("rateDenominator");
  request.address = object[QStringLiteral("address")].toString();
  request.width = object[QStringLiteral("width")].toInt();
  request.height = object[QStringLiteral("height")].toInt();
  request.windowId = object[QStringLiteral("windowId")].toString();
  request.windowTitle = object[QStringLiteral("windowTitle")].toString();
  request.windowProgram = object[QStringLiteral("windowProgram")].toString();
  request.screenIndex = object[QStringLiteral("screenIndex")].toInt();
  request.mostMemoryBytes = whole("mostMemoryBytes");
  if (!isInRange(request))
    return std::nullopt;
  return request;
}

QString CaptureRequest::nameOf(CaptureKind kind) {
  for (const KindName& entry : kKindNames) {
    if (entry.kind == kind)
      return QLatin1String(entry.name);
  }
  return {};
}

std::optional<CaptureKind> CaptureRequest::kindNamed(const QString& name) {
  for (const KindName& entry : kKindNames) {
    if (name == QLatin1String(entry.name))
      return entry.kind;
  }
  return std::nullopt;
}

}  // namespace korvia
