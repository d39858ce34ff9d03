// What is received under the URL of a stream: by which GStreamer element, with which of its properties, and
// how long the data are kept to take up their jitter. A plain value. Any thread.
#pragma once
#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>
#include <cstdint>
#include <optional>

namespace korvia {

struct StreamAddress {
  const char* element = nullptr;
  /// As texts, by name; one that the installed element does not have is left out.
  QList<QPair<QByteArray, QByteArray>> properties;
  /// The latency of the source's clock. Less than the cache where the protocol keeps the data itself.
  std::int64_t latencyNs = 0;
  /// How long the element itself keeps the data for their jitter.
  std::int64_t elementLatencyNs = 0;
  /// Nothing for this time means that the connection is lost.
  std::int64_t silenceNs = 0;
  /// Whether the element finds the streams itself and gives a pad for each.
  bool givesStreams = false;
  /// Whether nobody is called, so that nothing may come for any time.
  bool onlyListens = false;

  /// None for a URL that cannot be received. `cacheMs` is the jitter buffer that the operator wants.
  static std::optional<StreamAddress> fromUrl(const QString& url, int cacheMs);
};

}  // namespace korvia
