#include "NginxConfig.h"

#include <unistd.h>

#include <QFile>

namespace korvia {

namespace {

// A single process, so that its end ends everything. The MIME types stand here because their usual file is
// not part of every installation.
constexpr char kTemplate[] = R"(load_module %MODULE%;
daemon off;
master_process off;
worker_processes 1;
%USER%pid %WORK%/nginx.pid";
error_log stderr warn;
events {
  worker_connections 256;
}
rtmp {
  access_log off;
  server {
%RTMP_LISTEN%    chunk_size 4096;
    ping 30s;
    ping_timeout 10s;
    max_connections 64;
    application income {
      live on;
      record off;
      drop_idle_publisher 30s;
    }
    application live {
      live on;
      record off;
      wait_key on;
      wait_video on;
      allow publish 127.0.0.1;
      deny publish all;
      allow play all;
    }
  }
}
http {
  access_log off;
  server_tokens off;
  client_body_temp_path %WORK%/body";
  proxy_temp_path %WORK%/proxy";
  fastcgi_temp_path %WORK%/fastcgi";
  uwsgi_temp_path %WORK%/uwsgi";
  scgi_temp_path %WORK%/scgi";
  types {
    text/html html htm;
    text/css css;
    text/plain txt;
    application/javascript js;
    application/json json;
    image/png png;
    image/jpeg jpg jpeg;
    image/gif gif;
    image/svg+xml svg;
    application/vnd.apple.mpegurl m3u8;
    application/dash+xml mpd;
    video/mp2t ts;
    video/mp4 mp4 m4s;
    video/x-flv flv;
  }
  default_type application/octet-stream;
  server {
%HTTP_LISTEN%    client_max_body_size 64k;
    add_header X-Content-Type-Options nosniff;
    root %HTML%;
    index index.html;
    location / {
      limit_except GET {
        deny all;
      }
    }
    location = /ready-%TOKEN% {
      default_type text/plain;
      return 200 "%TOKEN%";
    }
  }
}
)";

/// A line for each address.
QByteArray listenLines(const QStringList& addresses, int port) {
  QByteArray lines;
  for (const QString& address : addresses)
    lines += "    listen " + address.toLatin1() + ':' + QByteArray::number(port) + ";\n";
  return lines;
}

}  // namespace

std::optional<QByteArray> NginxConfig::quoted(const QString& path) {
  QByteArray word = "\"";
  for (const char c : QFile::encodeName(path)) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 0x20 || code == 0x7F || c == '$')
      return std::nullopt;
    if (c == '"' || c == '\\')
      word += '\\';
    word += c;
  }
  return word + '"';
}

std::optional<QByteArray> NginxConfig::text() const {
  const auto module = quoted(modulePath);
  const auto html = quoted(htmlFolder);
  auto work = quoted(workFolder);
  if (!module || !html || !work)
    return std::nullopt;
  work->chop(1);  // the template continues and closes the word

  // Only root may set a user, and a single process keeps its own; naming it avoids the look-up of the
  // default user.
  const QByteArray user = geteuid() == 0 ? "user root;\n" : "";
  const std::pair<const char*, QByteArray> values[] = {
      {"%MODULE%", *module},
      {"%USER%", user},
      {"%WORK%", *work},
      {"%HTTP_LISTEN%", listenLines(addresses, httpPort)},
      {"%RTMP_LISTEN%", listenLines(addresses, rtmpPort)},
      {"%TOKEN%", readyToken},
      {"%HTML%", *html},
  };
  // One pass over the template, so that a path that looks like a placeholder is not replaced.
  QByteArray result;
  const QByteArray source = kTemplate;
  for (int at = 0; at < source.size();) {
    const auto mark = std::find_if(std::begin(values), std::end(values), [&](const auto& value) {
      return qstrncmp(source.constData() + at, value.first, qstrlen(value.first)) == 0;
    });
    if (mark == std::end(values)) {
      result += source[at++];
    } else {
      result += mark->second;
      at += static_cast<int>(qstrlen(mark->first));
    }
  }
  return result;
}

}  // namespace korvia
