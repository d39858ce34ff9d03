// The configuration file of the income server: the RTMP application "income" for streams from others, "live"
// for the program, which the console alone publishes, a folder of static pages, and two Unix sockets in the
// working folder: nginx asks the gate before each publisher and answers the console on the control socket. A
// plain value, usable from any thread.
#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace korvia {

struct NginxConfig {
  QString modulePath;     // ngx_rtmp_module.so
  QString workFolder;     // for the pid file and the temporary folders, without a trailing slash
  QString htmlFolder;     // what the page server shows
  QStringList addresses;  // numeric addresses that both servers listen on
  int httpPort = 0;
  int rtmpPort = 0;

  /// Of all kinds. The process needs a descriptor for each.
  static constexpr int kConnections = 4096;
  static constexpr char kControlSocket[] = "control.sock";
  static constexpr char kGateSocket[] = "gate.sock";

  /// The text of the file; empty when a path cannot be written into a configuration safely.
  std::optional<QByteArray> text() const;

  /// A path as a quoted word of the configuration; empty for control characters and for "$", which would
  /// begin a variable and cannot be escaped.
  static std::optional<QByteArray> quoted(const QString& path);
};

}  // namespace korvia
