#include "WebDesk.h"

#include <QRandomGenerator>
#include <array>

namespace korvia {

WebDesk& WebDesk::instance() {
  // Never destroyed: a server thread may still use it while the process ends.
  static auto* desk = new WebDesk;
  return *desk;
}

void WebDesk::setHandler(Handler handler) {
  const MutexLock lock(mutex_);
  handler_ = std::move(handler);
}

WebVerdict WebDesk::run(const WebCommand& command) {
  const MutexLock lock(mutex_);
  return handler_ ? handler_(command) : WebVerdict::NotReady;
}

QString WebDesk::token() {
  const MutexLock lock(mutex_);
  if (token_.isEmpty()) {
    std::array<quint32, 4> bits{};
    QRandomGenerator::system()->fillRange(bits.data(), static_cast<qsizetype>(bits.size()));
    const QByteArray bytes(reinterpret_cast<const char*>(bits.data()), sizeof bits);
    token_ =
        QString::fromLatin1(bytes.toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals));
  }
  return token_;
}

void WebDesk::setPort(int port) {
  const MutexLock lock(mutex_);
  port_ = port;
}

int WebDesk::port() const {
  const MutexLock lock(mutex_);
  return port_;
}

QString WebDesk::pageAddress(const QString& host) {
  const int port = this->port();
  return port == 0 ? QString() : QStringLiteral("http://%1:%2/#%3").arg(host).arg(port).arg(token());
}

}  // namespace korvia
