#include "StreamAddress.h"

#include <QNetworkInterface>
#include <QStringList>
#include <QUdpSocket>
#include <QUrl>
#include <QUrlQuery>
#include <algorithm>
#include <cstring>

namespace korvia {

namespace {

constexpr int kMostCacheMs = 10'000;
constexpr std::int64_t kMsNs = 1'000'000;
// Even on a perfect way pictures and sound of a stream do not come at the same time.
constexpr std::int64_t kLeastLatencyNs = 40'000'000;

constexpr int kSilenceMs = 5000;
// A sender of datagrams that is killed and comes back does not end the old connection.
constexpr int kSilenceOfDatagramsMs = 2000;

using Property = QPair<QByteArray, QByteArray>;
using Properties = QList<Property>;

enum class Cache {
  OfTheClock,   ///< data come at once, and wait decoded
  OfTheElement  ///< the element delays them by its property "latency"
};

struct Scheme {
  const char* name;
  const char* element;
  const char* location;  ///< the property for the URL
  Cache cache;
  bool givesStreams;
  const char* timeout;  ///< property and value; null for none
  const char* timeoutValue;
  int silenceMs;  ///< by which a connection is taken for lost
};

// Time-outs in the unit of each element: seconds, seconds, microseconds.
constexpr Scheme kSchemes[] = {
    {"http", "souphttpsrc", "location", Cache::OfTheClock, false, "timeout", "8", kSilenceMs},
    {"https", "souphttpsrc", "location", Cache::OfTheClock, false, "timeout", "8", kSilenceMs},
    {"rtmp", "rtmp2src", "location", Cache::OfTheClock, false, "timeout", "8", kSilenceMs},
    {"rtmps", "rtmp2src", "location", Cache::OfTheClock, false, "timeout", "8", kSilenceMs},
    {"rtsp", "rtspsrc", "location", Cache::OfTheClock, true, "tcp-timeout", "8000000", kSilenceOfDatagramsMs},
    {"rtspt", "rtspsrc", "location", Cache::OfTheClock, true, "tcp-timeout", "8000000",
     kSilenceOfDatagramsMs},
    {"rtspu", "rtspsrc", "location", Cache::OfTheClock, true, "tcp-timeout", "8000000",
     kSilenceOfDatagramsMs},
    {"rtsps", "rtspsrc", "location", Cache::OfTheClock, true, "tcp-timeout", "8000000",
     kSilenceOfDatagramsMs},
    {"srt", "srtsrc", "uri", Cache::OfTheElement, false, nullptr, nullptr, kSilenceOfDatagramsMs},
    {"udp", "udpsrc", "uri", Cache::OfTheClock, false, nullptr, nullptr, kSilenceMs},
};

/// The interfaces on which a multicast group is joined when no route leads to it; empty for the system's own
/// choice.
QByteArray interfacesFor(const QString& group) {
  const QHostAddress address(group);
  if (!address.isMulticast())
    return {};
  QUdpSocket probe;
  probe.connectToHost(address, 9);
  if (probe.waitForConnected(0) && !probe.localAddress().isNull())
    return {};
  QStringList names;
  for (const QNetworkInterface& interface : QNetworkInterface::allInterfaces()) {
    const auto flags = interface.flags();
    if (flags.testFlag(QNetworkInterface::IsUp) &&
        (flags.testFlag(QNetworkInterface::CanMulticast) || flags.testFlag(QNetworkInterface::IsLoopBack)))
      names << interface.name();
  }
  return names.join(',').toLatin1();
}

/// "udp://@234.0.0.1:7000?iface=eth0": the part before "@" is that of other programs and means nothing here.
bool setUpUdp(const QUrl& url, Properties& properties) {
  const int port = url.port();
  if (port <= 0)
    return false;
  const QString host = url.host().isEmpty() ? QStringLiteral("0.0.0.0") : url.host();
  const QString place = host.contains(':') ? '[' + host + ']' : host;
  properties.append(Property{"uri", QStringLiteral("udp://%1:%2").arg(place).arg(port).toUtf8()});
  const QString named = QUrlQuery(url).queryItemValue(QStringLiteral("iface"));
  const QByteArray interfaces = named.isEmpty() ? interfacesFor(host) : named.toUtf8();
  if (!interfaces.isEmpty())
    properties.append(Property{"multicast-iface", interfaces});
  // A key frame comes in one go, and the kernel drops what does not fit.
  properties.append(Property{"buffer-size", "4194304"});
  return true;
}

/// Whether this side waits for the other one to call.
bool isSrtListener(const QUrl& url) {
  return url.host().isEmpty() ||
         QUrlQuery(url).queryItemValue(QStringLiteral("mode")) == QLatin1String("listener");
}

}  // namespace

std::optional<StreamAddress> StreamAddress::fromUrl(const QString& text, int cacheMs) {
  const QUrl url(text.trimmed(), QUrl::TolerantMode);
  const QByteArray name = url.scheme().toLatin1();
  const auto* scheme = std::find_if(std::begin(kSchemes), std::end(kSchemes),
                                    [&name](const Scheme& entry) { return name == entry.name; });
  if (scheme == std::end(kSchemes) || !url.isValid())
    return std::nullopt;
  const std::int64_t cacheNs = std::clamp(cacheMs, 0, kMostCacheMs) * kMsNs;
  StreamAddress address;
  address.element = scheme->element;
  address.givesStreams = scheme->givesStreams;
  address.latencyNs = std::max(cacheNs, kLeastLatencyNs);
  std::int64_t elementNs = cacheNs;
  if (scheme->cache == Cache::OfTheElement) {
    // Half for what the protocol sends again, and half for the jitter of what it then delivers.
    elementNs /= 2;
    address.latencyNs = std::max(cacheNs - elementNs, kLeastLatencyNs);
    address.elementLatencyNs = elementNs;
  }
  address.silenceNs = scheme->silenceMs * kMsNs;
  if (scheme->timeout)
    address.properties.append(Property{scheme->timeout, scheme->timeoutValue});
  if (name == "udp") {
    address.onlyListens = true;
    return setUpUdp(url, address.properties) ? std::optional(address) : std::nullopt;
  }
  if (url.host().isEmpty() && name != "srt")
    return std::nullopt;
  address.properties.append(Property{scheme->location, url.toEncoded()});
  // rtspsrc waits this long for a lost packet; its default of two seconds would add to the cache.
  if (scheme->givesStreams || scheme->cache == Cache::OfTheElement)
    address.properties.append(Property{"latency", QByteArray::number(static_cast<int>(elementNs / kMsNs))});
  if (name == "srt") {
    address.onlyListens = isSrtListener(url);
    // The source itself connects anew, with all that is behind the element.
    address.properties.append(Property{"auto-reconnect", "false"});
  }
  return address;
}

}  // namespace korvia
