#include "PublishRequest.h"

#include <QHash>

namespace korvia {

std::optional<PublishRequest> PublishRequest::fromForm(const QByteArray& form) {
  QHash<QByteArray, QByteArray> fields;
  const QList<QByteArray> parts = form.split('&');
  for (const QByteArray& part : parts) {
    const int equals = part.indexOf('=');
    const QByteArray field = equals < 0 ? part : part.left(equals);
    if (!fields.contains(field))
      fields.insert(field, equals < 0 ? QByteArray() : part.mid(equals + 1));
  }
  const auto decoded = [&fields](const char* field) {
    const QByteArray bytes = QByteArray::fromPercentEncoding(fields.value(field));
    // The size is told, because the text of a byte array ends at its first NUL otherwise.
    return QString::fromUtf8(bytes.constData(), bytes.size());
  };
  PublishRequest request{decoded("app"), decoded("name"), decoded("addr"), fields.value("key"),
                         fields.value("secret")};
  const bool isWhole = !request.app.isEmpty() && !request.name.isEmpty() && !request.addr.isEmpty() &&
                       fields.value("call") == "publish";
  return isWhole ? std::optional(request) : std::nullopt;
}

}  // namespace korvia
