#include "RequestCheck.h"

#include <arpa/inet.h>

#include <QString>
#include <QSysInfo>

#include "ListenPlace.h"
#include "secretEquals.h"

namespace korvia {

namespace {

constexpr char kBearer[] = "Bearer ";

/// The name or address of a Host header, in lower case and without its port.
QByteArray hostName(const char* header) {
  QByteArray host = QByteArray(header).toLower();
  const int colon = host.lastIndexOf(':');
  if (colon < 0)
    return host;
  bool isPort = false;
  host.mid(colon + 1).toUShort(&isPort);
  return isPort ? host.left(colon) : QByteArray();
}

bool isNumeric(const QByteArray& host) {
  in_addr address{};
  return inet_pton(AF_INET, host.constData(), &address) == 1;
}

}  // namespace

bool isOwnHost(const char* host, WebReach reach) {
  if (!host)
    return true;
  const QByteArray name = hostName(host);
  if (name == "127.0.0.1" || name == "localhost" || listenAddresses().contains(QString::fromLatin1(name)))
    return true;
  if (reach == WebReach::Loopback || name.isEmpty())
    return false;
  const QByteArray machine = QSysInfo::machineHostName().toUtf8().toLower();
  return isNumeric(name) || (!machine.isEmpty() && (name == machine || name == machine + ".local"));
}

bool isOwnOrigin(const char* origin, const char* host) {
  if (!origin)
    return true;
  return host && QByteArray(origin).toLower() == "http://" + QByteArray(host).toLower();
}

bool isOwnSite(const char* fetchSite) {
  if (!fetchSite)
    return true;
  const QByteArray site(fetchSite);
  return site == "same-origin" || site == "none";
}

bool hasToken(const char* authorization, const QByteArray& token) {
  const QByteArray given(authorization);
  return qstrnicmp(given.constData(), kBearer, sizeof kBearer - 1) == 0 &&
         secretEquals(given.mid(sizeof kBearer - 1), token);
}

}  // namespace korvia
