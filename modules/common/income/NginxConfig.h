// The configuration file of the income server: the RTMP application "income" for streams from
// others, "live" for the program, which this machine alone may publish, and a folder of static pages.
// A plain value, usable from any thread.
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
  QByteArray readyToken;  // letters and digits; "/ready-<token>" answers with it

  /// The text of the file; empty when a path cannot be written into a configuration safely.
  std::optional<QByteArray> text() const;

  /// A path as a quoted word of the configuration; empty for control characters and for "$", which would
  /// begin a variable and cannot be escaped.
  static std::optional<QByteArray> quoted(const QString& path);
};

}  // namespace korvia
