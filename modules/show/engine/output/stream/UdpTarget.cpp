#include "UdpTarget.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <net/if.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>

#include "engine/EngineLog.h"

namespace korvia {

namespace {

struct Interface {
  QByteArray name;
  QByteArray address;
};

/// The interface of that name or address with its IPv4 address; both empty when there is none.
Interface findInterface(const QString& wanted) {
  const QByteArray text = wanted.trimmed().toUtf8();
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) != 0)
    return {};
  Interface found;
  for (const ifaddrs* entry = list; entry && found.name.isEmpty(); entry = entry->ifa_next) {
    if (!entry->ifa_addr || entry->ifa_addr->sa_family != AF_INET)
      continue;
    char address[INET_ADDRSTRLEN] = {};
    inet_ntop(AF_INET, &reinterpret_cast<const sockaddr_in*>(entry->ifa_addr)->sin_addr, address,
              sizeof address);
    if (text == entry->ifa_name || text == address)
      found = {entry->ifa_name, address};
  }
  freeifaddrs(list);
  return found;
}

/// The first address of the name in numbers; empty when it is not known or there is no way to it. No datagram
/// is sent. The element that sends only warns when it cannot.
QByteArray reachableAddress(const QString& name, int port, const Interface& from) {
  addrinfo wanted{};
  wanted.ai_socktype = SOCK_DGRAM;
  wanted.ai_family = from.address.isEmpty() ? AF_UNSPEC : AF_INET;
  addrinfo* list = nullptr;
  if (getaddrinfo(name.trimmed().toUtf8().constData(), QByteArray::number(port).constData(), &wanted,
                  &list) != 0)
    return {};
  char numbers[NI_MAXHOST] = {};
  const int probe = ::socket(list->ai_family, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  sockaddr_in own{};
  own.sin_family = AF_INET;
  bool isReachable = probe >= 0;
  if (isReachable && inet_pton(AF_INET, from.address.constData(), &own.sin_addr) == 1)
    isReachable = ::bind(probe, reinterpret_cast<const sockaddr*>(&own), sizeof own) == 0;
  isReachable =
      isReachable && ::connect(probe, list->ai_addr, list->ai_addrlen) == 0 &&
      getnameinfo(list->ai_addr, list->ai_addrlen, numbers, sizeof numbers, nullptr, 0, NI_NUMERICHOST) == 0;
  if (probe >= 0)
    ::close(probe);
  freeaddrinfo(list);
  return isReachable ? QByteArray(numbers) : QByteArray();
}

/// How datagrams get to an address.
struct Way {
  Interface from;      ///< empty for the system's choice
  QByteArray address;  ///< in numbers
  QString obstacle;    ///< why there is no way; empty when there is one
};

Way findWay(const QString& address, int port, const QString& bindInterface) {
  Way way;
  if (!bindInterface.trimmed().isEmpty()) {
    way.from = findInterface(bindInterface);
    if (way.from.name.isEmpty()) {
      way.obstacle = QStringLiteral("the network interface is not there");
      return way;
    }
  }
  way.address = reachableAddress(address, port, way.from);
  if (way.address.isEmpty())
    way.obstacle = QStringLiteral("there is no way to the address");
  return way;
}

TargetSettings targetSettings() {
  TargetSettings target{targetName(TargetKind::Udp), "kv-udp"};
  target.kind = TargetKind::Udp;
  target.finishTimeoutMs = 1500;
  return target;
}

std::unique_ptr<TargetWriter> retryingUdp(const UdpSettings& settings) {
  RetrySettings retry = settings.retry;
  retry.label = targetName(TargetKind::Udp);
  qCInfo(logOutput, "%s goes to %s port %d", qPrintable(retry.label), qPrintable(settings.address),
         settings.port);
  return std::make_unique<RetryingWriter>(
      std::move(retry), [settings] { return std::make_unique<MuxWriter>(UdpTarget::planFor(settings)); });
}

}  // namespace

UdpTarget::UdpTarget(const UdpSettings& settings) : Target(targetSettings(), retryingUdp(settings)) {}

std::unique_ptr<Target> UdpTarget::create(const OutputRequest& request) {
  const tagKorviaShowOutputItem& item = request.param.items[OutputSlotStream];
  if (request.slot != OutputSlotStream || item.udpEnable == 0)
    return nullptr;
  return std::make_unique<UdpTarget>(
      UdpSettings{item.udpAddress, item.udpPort, item.udpTtl, item.udpBindInterface, {}});
}

MuxPlan UdpTarget::planFor(const UdpSettings& settings) {
  MuxPlan plan;
  plan.container = MuxPlan::ts();
  if (settings.address.trimmed().isEmpty() || settings.port <= 0) {
    plan.problem = QStringLiteral("the address is not complete");
    return plan;
  }
  const Way way = findWay(settings.address, settings.port, settings.bindInterface);
  plan.obstacle = way.obstacle;
  // The name is not looked up again while it runs, which may take long.
  plan.check = [to = QString::fromLatin1(way.address), port = settings.port, from = settings.bindInterface] {
    return findWay(to, port, from).obstacle;
  };
  // The packets come at the pace of the encoder.
  plan.sink = {"udpsink",
               "host",
               way.address,
               {{"sync", "false"}, {"async", "false"}, {"enable-last-sample", "false"}},
               {}};
  plan.setText("port", QByteArray::number(settings.port));
  const QByteArray ttl = QByteArray::number(std::clamp(settings.ttl, 1, 255));
  plan.setText("ttl", ttl);
  plan.setText("ttl-mc", ttl);
  if (!way.from.name.isEmpty()) {
    plan.setText("multicast-iface", way.from.name);
    plan.setText("bind-address", way.from.address);
  }
  return plan;
}

}  // namespace korvia
