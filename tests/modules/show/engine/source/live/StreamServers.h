// Servers on the loopback, and what live_sender.py has to be told to feed them.
#pragma once
#include <memory>

#include "../../output/stream/StreamRig.h"
#include "LiveRig.h"

namespace korvia::test {

inline QStringList mpegTs(const QString& url) {
  return {"-f", "mpegts", "-muxdelay", "0", "-muxpreload", "0", "-pes_payload_size", "16", url};
}

inline constexpr int kCacheMs = 800;
/// More than this says that the picture is not live.
inline constexpr int kLiveMs = kCacheMs + 1500;

inline tagKorviaShowSourceInfo urlRecord(const QString& url, int cacheMs = kCacheMs) {
  tagKorviaShowSourceInfo info;
  info.kind = SourceKindUrl;
  info.url = url;
  info.urlCache = cacheMs;
  return info;
}

/// 1e9 for none.
template <typename Values>
double median(Values values) {
  if (values.isEmpty())
    return 1e9;
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

inline QVector<int> latencies(const std::vector<LiveRig::Tick>& ticks) {
  QVector<int> found;
  for (const LiveRig::Tick& tick : ticks)
    found.append(tick.latencyMs);
  return found;
}

inline int freshPictures(const std::vector<LiveRig::Tick>& ticks) {
  int fresh = 0;
  for (std::size_t i = 1; i < ticks.size(); ++i)
    fresh += ticks[i].number != ticks[i - 1].number ? 1 : 0;
  return fresh;
}

/// A stream that can be received under url(). Publisher and server can be killed and started again.
class StreamPlace {
 public:
  virtual ~StreamPlace() = default;
  virtual QString url() const = 0;
  virtual void start() { sender_.send(output()); }
  virtual void kill() { sender_.stop(); }

 protected:
  virtual QStringList output() const = 0;

  LiveSender sender_;
};

class UdpPlace final : public StreamPlace {
 public:
  QString url() const override { return QStringLiteral("udp://@127.0.0.1:%1").arg(port_); }

 protected:
  QStringList output() const override {
    return mpegTs(QStringLiteral("udp://127.0.0.1:%1?pkt_size=1316").arg(port_));
  }

 private:
  const int port_ = freeUdpPort();
};

class MulticastPlace final : public StreamPlace {
 public:
  QString url() const override { return QStringLiteral("udp://@239.255.77.1:%1?iface=lo").arg(port_); }

 protected:
  QStringList output() const override {
    return mpegTs(QStringLiteral("udp://239.255.77.1:%1?pkt_size=1316&localaddr=127.0.0.1&ttl=0").arg(port_));
  }

 private:
  const int port_ = freeUdpPort();
};

class SrtPlace final : public StreamPlace {
 public:
  QString url() const override { return QStringLiteral("srt://127.0.0.1:%1").arg(port_); }

 protected:
  QStringList output() const override {
    return mpegTs(QStringLiteral("srt://127.0.0.1:%1?mode=listener&latency=20000").arg(port_));
  }

 private:
  const int port_ = freeUdpPort();
};

class HttpPlace final : public StreamPlace {
 public:
  QString url() const override { return QStringLiteral("http://127.0.0.1:%1/live/0").arg(port_); }

 protected:
  QStringList output() const override { return QStringList{"-listen", "1"} + mpegTs(url()); }

 private:
  const int port_ = freeTcpPort();
};

class RtmpPlace final : public StreamPlace {
 public:
  QString url() const override { return server_.url("stream"); }
  void start() override {
    if (!server_.start())
      qWarning("nginx does not start");
    StreamPlace::start();
  }
  void kill() override {
    server_.kill();
    StreamPlace::kill();
  }
  int port() const { return server_.port(); }
  LiveSender& publisher() { return sender_; }
  void publish() { StreamPlace::start(); }

 protected:
  QStringList output() const override { return {"-f", "flv", url()}; }

 private:
  RtmpServer server_;
};

class RtspPlace final : public StreamPlace {
 public:
  ~RtspPlace() override { kill(); }
  QString url() const override { return QStringLiteral("rtsp://127.0.0.1:%1/live").arg(port_); }
  void start() override {
    server_.setProcessChannelMode(QProcess::ForwardedChannels);
    server_.start(QCoreApplication::applicationDirPath() + "/korvia-test-rtsp-server",
                  {QString::number(port_), QString::number(feed_)});
    StreamPlace::start();
  }
  void kill() override {
    server_.kill();
    server_.waitForFinished();
    StreamPlace::kill();
  }

 protected:
  QStringList output() const override {
    return mpegTs(QStringLiteral("udp://127.0.0.1:%1?pkt_size=1316").arg(feed_));
  }

 private:
  const int port_ = freeTcpPort();
  const int feed_ = freeUdpPort();
  QProcess server_;
};

/// Segments of a second on a plain server of files.
class HlsPlace final : public StreamPlace {
 public:
  ~HlsPlace() override { kill(); }
  QString url() const override { return QStringLiteral("http://127.0.0.1:%1/live.m3u8").arg(port_); }
  void start() override {
    server_.setProcessChannelMode(QProcess::MergedChannels);
    server_.start("python3", {"-m", "http.server", "--bind", "127.0.0.1", "--directory", folder_.path(),
                              QString::number(port_)});
    StreamPlace::start();
  }
  void kill() override {
    server_.kill();
    server_.waitForFinished();
    StreamPlace::kill();
  }

 protected:
  QStringList output() const override {
    return {"-f",
            "hls",
            "-hls_time",
            "1",
            "-hls_list_size",
            "6",
            "-hls_flags",
            "delete_segments",
            folder_.filePath("live.m3u8")};
  }

 private:
  const int port_ = freeTcpPort();
  QTemporaryDir folder_;
  QProcess server_;
};

inline std::unique_ptr<StreamPlace> makePlace(const QString& kind) {
  if (kind == "udp")
    return std::make_unique<UdpPlace>();
  if (kind == "multicast")
    return std::make_unique<MulticastPlace>();
  if (kind == "srt")
    return std::make_unique<SrtPlace>();
  if (kind == "http")
    return std::make_unique<HttpPlace>();
  if (kind == "rtmp")
    return std::make_unique<RtmpPlace>();
  if (kind == "rtsp")
    return std::make_unique<RtspPlace>();
  return std::make_unique<HlsPlace>();
}

}  // namespace korvia::test
