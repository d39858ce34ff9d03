// Asks the running nginx on its control socket, which nobody but this user reaches. Each call waits until its
// time limit at most. Any thread; calls may run at the same time.
#pragma once
#include <QByteArray>
#include <QList>
#include <QString>
#include <chrono>
#include <optional>

namespace korvia {

/// A publisher as nginx tells of it.
struct RtmpPublisher {
  QString app;
  QString name;
  QString addr;
  int clientId = 0;    ///< of its connection, never used twice by one nginx
  qint64 bytesIn = 0;  ///< of sound, pictures and data since the stream began
  qint64 connectedMs = 0;
  int players = 0;
};

class NginxControl {
 public:
  using TimeLimit = std::chrono::milliseconds;

  /// `workFolder` is where nginx opens its socket.
  explicit NginxControl(const QString& workFolder);
  ~NginxControl();
  NginxControl(const NginxControl&) = delete;
  NginxControl& operator=(const NginxControl&) = delete;

  bool isReady(TimeLimit limit) const;
  /// All publishers; nothing when there is no answer.
  std::optional<QList<RtmpPublisher>> publishers(TimeLimit limit) const;
  /// Ends the connection of that publisher and of no other.
  void drop(const RtmpPublisher& publisher, TimeLimit limit) const;

  /// Reads the statistics of nginx. Nothing when they break off; texts of clients in them may be any bytes.
  static std::optional<QList<RtmpPublisher>> parse(QByteArray statistics);

 private:
  /// The body of a good answer.
  std::optional<QByteArray> get(const QByteArray& path, TimeLimit limit) const;

  int folder_;
};

}  // namespace korvia
