// A live source at the pace of a show, and the stream that it receives: ffmpeg by live_sender.py, whose
// pictures show the time at which they were made.
#pragma once
#include <QElapsedTimer>
#include <QProcess>
#include <QTcpServer>
#include <QUdpSocket>
#include <QtTest>
#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

#include "../SourceRig.h"

namespace korvia::test {

/// The clock of the sender, as the pictures show it.
inline int clockMs() {
  return static_cast<int>(std::chrono::duration_cast<std::chrono::milliseconds>(
                              std::chrono::steady_clock::now().time_since_epoch())
                              .count() &
                          0xFFFF);
}

inline int freeTcpPort() {
  QTcpServer server;
  return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
}
inline int freeUdpPort() {
  QUdpSocket socket;
  return socket.bind(QHostAddress(QHostAddress::LocalHost)) ? socket.localPort() : 0;
}

/// Pulls the source 25 times a second from its construction on.
class LiveRig {
 public:
  static constexpr int kSamples = kSampleRate / 25;

  struct Tick {
    int number = -1;    ///< in the picture; -1 for none
    int latencyMs = 0;  ///< since the picture was made
    bool flash = false;
    int beepAt = -1;  ///< first sample of a tone in the tick; -1 for none
    float level = 0;
  };

  explicit LiveRig(const tagKorviaShowSourceInfo& info, int incomePort = 0, FrameSize size = {320, 180}) {
    context_.id = static_cast<KorviaShowObjectID>(MediaChannel);
    context_.renderSize = size;
    context_.rate.numerator = 25;
    context_.incomePort = std::make_shared<std::atomic<int>>(incomePort);
    source_ = createSource(context_, info, {});
    thread_ = std::thread([this] { run(); });
  }
  ~LiveRig() {
    ending_ = true;
    thread_.join();
    source_->close();
    source_.reset();
    waitForClosedSources(10'000);
  }

  Source* operator->() { return source_.get(); }
  std::vector<Tick> ticks() {
    std::lock_guard lock(mutex_);
    return ticks_;
  }
  /// Forgets what was shown up to now.
  void forget() {
    std::lock_guard lock(mutex_);
    ticks_.clear();
  }
  /// The ticks from now on until there are so many.
  std::vector<Tick> next(int count) {
    forget();
    if (!QTest::qWaitFor([&] { return static_cast<int>(ticks().size()) >= count; }, count * 120 + 5000))
      qWarning("the show stands still");
    return ticks();
  }
  /// Waits for pictures that are not older than this; the time that it took, or -1.
  int waitForFresh(int mostLatencyMs, int timeoutMs = 15'000) {
    QElapsedTimer timer;
    timer.start();
    forget();
    const bool came = QTest::qWaitFor(
        [&] {
          const auto seen = ticks();
          return seen.size() >= 2 && seen.back().number != seen[seen.size() - 2].number &&
                 seen.back().latencyMs <= mostLatencyMs;
        },
        timeoutMs);
    return came ? static_cast<int>(timer.elapsed()) : -1;
  }
  int state() { return source_->getPlayState(); }
  float rate() {
    tagKorviaSourceLinkState link;
    source_->getState(link);
    return link.rate;
  }
  QString reason() {
    tagKorviaSourceLinkState link;
    source_->getState(link);
    return link.reason;
  }

 private:
  void run() {
    std::vector<float> left(kSamples);
    std::vector<float> right(kSamples);
    auto due = std::chrono::steady_clock::now();
    while (!ending_) {
      std::this_thread::sleep_until(due += std::chrono::milliseconds(40));
      Tick tick;
      const FrameRef frame = source_->pullFrame(1);
      tick.number = numberIn(frame);
      if (frame) {
        tick.latencyMs = (clockMs() - tick.number) & 0xFFFF;
        tick.flash = codesAt(frame, frame->width() / 2, frame->height() * 3 / 4)[0] > 160;
      }
      if (source_->pullSound({left.data(), right.data(), kSamples})) {
        for (int at = 0; at < kSamples; ++at) {
          tick.level = std::max(tick.level, std::abs(left[static_cast<std::size_t>(at)]));
          if (tick.beepAt < 0 && std::abs(left[static_cast<std::size_t>(at)]) > 0.1F)
            tick.beepAt = at;
        }
      }
      std::lock_guard lock(mutex_);
      ticks_.push_back(tick);
    }
  }

  SourceContext context_;
  std::shared_ptr<Source> source_;
  std::atomic<bool> ending_{false};
  std::mutex mutex_;
  std::vector<Tick> ticks_;  // guarded by mutex_
  std::thread thread_;
};

/// Milliseconds by which each beep comes after its flash. A flash without a beep near it gives none.
inline QVector<double> beepsAfterFlashes(const std::vector<LiveRig::Tick>& ticks) {
  QVector<double> distances;
  for (int at = 1; at < static_cast<int>(ticks.size()); ++at) {
    const auto& tick = ticks[static_cast<std::size_t>(at)];
    if (!tick.flash || ticks[static_cast<std::size_t>(at - 1)].flash)
      continue;
    double nearest = 1e9;
    for (int other = std::max(0, at - 8); other < std::min(static_cast<int>(ticks.size()), at + 8); ++other) {
      const auto& candidate = ticks[static_cast<std::size_t>(other)];
      const bool begins =
          candidate.beepAt >= 0 && (other == 0 || ticks[static_cast<std::size_t>(other - 1)].beepAt < 0);
      const double ms = (other - at) * 40 + candidate.beepAt / 48.0;
      if (begins && std::abs(ms) < std::abs(nearest))
        nearest = ms;
    }
    if (nearest < 1e8)
      distances.append(nearest);
  }
  return distances;
}

/// A process of live_sender.py.
class LiveSender {
 public:
  ~LiveSender() { stop(); }
  void send(const QStringList& output, const QString& size = "320x180", int gop = 25,
            const QString& encoding = "h264") {
    run(QStringList{size, QString::number(gop), encoding, "--"} + output);
  }
  void relay(int from, int to, double lossPercent, int jitterMs) {
    run({"relay", QString::number(from), QString::number(to), QString::number(lossPercent),
         QString::number(jitterMs)});
  }
  /// Ends it and ffmpeg.
  void stop() {
    if (process_.state() == QProcess::NotRunning)
      return;
    process_.closeWriteChannel();
    if (!process_.waitForFinished(5000))
      process_.kill();
    process_.waitForFinished();
  }

 private:
  void run(const QStringList& arguments) {
    stop();
    process_.setProcessChannelMode(QProcess::ForwardedChannels);
    process_.start("python3", QStringList{KORVIA_LIVE_SENDER} + arguments);
    process_.waitForStarted();
  }

  QProcess process_;
};

inline QStringList toUdp(int port) {
  return {"-f",
          "mpegts",
          "-muxdelay",
          "0",
          "-muxpreload",
          "0",
          "-pes_payload_size",
          "16",
          QStringLiteral("udp://127.0.0.1:%1?pkt_size=1316").arg(port)};
}

}  // namespace korvia::test
