// A slot that runs at the pace of a show, and a server as a process that can be stopped and killed.
#pragma once
#include <signal.h>

#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>
#include <atomic>
#include <memory>
#include <random>
#include <thread>

#include "engine/Janitor.h"
#include "engine/frame/FramePool.h"
#include "engine/output/OutputSlot.h"

namespace korvia::test {

inline constexpr FrameSize kStreamSize{320, 180};

inline int freePort() {
  QTcpServer server;
  return server.listen(QHostAddress::LocalHost) ? server.serverPort() : 0;
}

/// Noise, so that the encoder needs the whole bitrate.
inline FrameRef noiseFrame(FramePool& pool, std::minstd_rand& random) {
  MutableFrame frame = pool.acquire();
  for (int plane = 0; plane < 3; ++plane) {
    for (int y = 0; y < frame->planeHeight(plane); ++y) {
      std::uint8_t* row = frame->writablePlane(plane) + static_cast<std::ptrdiff_t>(y) * frame->stride(plane);
      for (int x = 0; x < frame->planeWidth(plane); ++x)
        row[x] = static_cast<std::uint8_t>(plane == 0 ? 16 + random() % 200 : 128);
    }
  }
  return std::move(frame).publish();
}

/// Runs from its construction on, with 25 frames a second and silence.
class LiveSlot {
 public:
  explicit LiveSlot(const OutputSlot::Targets& targets, int kbps = 1000) {
    EncoderSettings encoder;
    encoder.label = QStringLiteral("the stream");
    encoder.picture = {kStreamSize, {25, 1}, kbps};
    encoder.soundKbps = 64;
    slot_ = std::make_unique<OutputSlot>(encoder, targets, janitor_);
    thread_ = std::thread([this] { feed(); });
  }
  ~LiveSlot() { stop(); }

  void stop() {
    ending_ = true;
    if (thread_.joinable())
      thread_.join();
  }
  OutputSlot& slot() { return *slot_; }
  tagKorviaShowTargetReport report(int target = 0) const { return slot_->report().targets[target]; }
  bool waitFor(KorviaShowTargetState state, int timeoutMs = 10'000, int target = 0) const {
    return QTest::qWaitFor([&] { return report(target).state == state; }, timeoutMs);
  }

 private:
  void feed() {
    std::minstd_rand random(1);
    FramePool pool(kStreamSize);
    std::vector<float> silence(kSampleRate / 25);
    auto next = std::chrono::steady_clock::now();
    while (!ending_) {
      slot_->encoder()->pushFrame(noiseFrame(pool, random));
      slot_->encoder()->pushSound({silence.data(), silence.data(), static_cast<int>(silence.size())});
      next += std::chrono::milliseconds(40);
      std::this_thread::sleep_until(next);
    }
  }

  Janitor janitor_;
  std::unique_ptr<OutputSlot> slot_;
  std::atomic<bool> ending_{false};
  std::thread thread_;
};

/// An nginx that takes and hands on RTMP streams in the application "live".
class RtmpServer {
 public:
  bool start() {
    QFile config(folder_.filePath("nginx.conf"));
    if (!config.open(QIODevice::WriteOnly))
      return false;
    const QByteArray modules =
        qEnvironmentVariable("KORVIA_NGINX_MODULES", "/usr/lib/nginx/modules").toUtf8();
    config.write("load_module " + modules + "/ngx_rtmp_module.so;\n" +
                 "daemon off; master_process off; worker_processes 1; " +
                 (geteuid() == 0 ? "user root; " : "") + "pid " + folder_.filePath("pid").toUtf8() +
                 "; error_log stderr warn; events { worker_connections 64; }\n" +
                 "rtmp { server { listen 127.0.0.1:" + QByteArray::number(port_) +
                 "; application live { live on; wait_key on; wait_video on; } } }\n");
    config.close();
    process_ = std::make_unique<QProcess>();
    process_->setProcessChannelMode(QProcess::MergedChannels);
    process_->start(qEnvironmentVariable("KORVIA_NGINX", "/usr/sbin/nginx"),
                    {"-p", folder_.path(), "-c", config.fileName()});
    return process_->waitForStarted() && QTest::qWaitFor([this] { return accepts(); }, 5000);
  }
  void kill() {
    process_->kill();
    process_->waitForFinished();
  }
  void freeze() { ::kill(static_cast<pid_t>(process_->processId()), SIGSTOP); }
  void thaw() { ::kill(static_cast<pid_t>(process_->processId()), SIGCONT); }
  int port() const { return port_; }
  QString url(const QString& stream) const {
    return QStringLiteral("rtmp://127.0.0.1:%1/live/%2").arg(QString::number(port_), stream);
  }
  ~RtmpServer() {
    if (process_ && process_->state() != QProcess::NotRunning) {
      thaw();
      kill();
    }
  }

 private:
  bool accepts() const {
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port_));
    return socket.waitForConnected(500);
  }

  QTemporaryDir folder_;
  int port_ = freePort();
  std::unique_ptr<QProcess> process_;
};

/// ffmpeg, which stores a second of what an address sends. Empty when it fails.
inline QString storeSecond(const QString& url, const QTemporaryDir& folder, const QString& suffix) {
  static int count = 0;
  const QString fileName = folder.filePath(QStringLiteral("%1.%2").arg(++count).arg(suffix));
  QProcess process;
  process.start("ffmpeg", {"-v", "error", "-rw_timeout", "8000000", "-i", url, "-t", "1", "-c", "copy", "-y",
                           fileName});
  const bool ended = process.waitForFinished(15'000) && process.exitCode() == 0;
  if (!ended)
    qWarning("ffmpeg : %s", process.readAllStandardError().constData());
  return ended ? fileName : QString();
}

}  // namespace korvia::test
