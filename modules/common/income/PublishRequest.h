// What nginx asks the gate: somebody wants to publish. A plain value, usable from any thread.
#pragma once
#include <QByteArray>
#include <QString>
#include <optional>

namespace korvia {

struct PublishRequest {
  QString app;
  QString name;
  QString addr;
  QByteArray key;     ///< the publisher's argument "key" as it sent it
  QByteArray secret;  ///< the same of "secret"

  /// Reads the form that nginx posts. nginx writes its own fields first and the publisher's arguments behind
  /// them as they came, so the first field of a name counts. Nothing without app, name and addr, and for a
  /// call that is not "publish".
  static std::optional<PublishRequest> fromForm(const QByteArray& form);
};

}  // namespace korvia
