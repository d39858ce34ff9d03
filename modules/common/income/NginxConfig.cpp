#include "NginxConfig.h"

#include <unistd.h>

#include <QFile>

namespace korvia {

namespace {

// A single process, so that its end ends everything. The paths of the sockets are relative to the folder that
// nginx is started in, because a path of a socket has 107 bytes at most. The MIME types stand here because
// their usual file is not part of every installation.
//
// The limit of connections of an address counts only requests whose head was read. Clients that send it
// slowly are ended after 10 s, and there are many more slots than one of them needs to be noticed.
constexpr char kTemplate[] = R"(load_module %MODULE%;
daemon off;
master_process off;
worker_processes 1;
%USER%pid %WORK%/nginx.pid";
error_log stderr warn;
events {
  worker_connections %CONNECTIONS%;
}
rtmp {
  access_log off;
  server {
%RTMP_LISTEN%    chunk_size 4096;
    ping 30s;
    ping_timeout 10s;
    max_connections 256;
    notify_method post;
    application income {
      live on;
      record off;
      drop_idle_publisher 30s;
      on_publish "http://unix:%GATE%:/publish";
    }
    application live {
      live on;
      record off;
      wait_key on;
      wait_video on;
      on_publish "http://unix:%GATE%:/publish";
      allow publish 127.0.0.1;
      deny publish all;
      allow play all;
    }
  }
}
http {
  access_log off;
  error_log stderr crit;
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
  limit_conn_zone $binary_remote_addr zone=address:1m;
  server {
%HTTP_LISTEN%    limit_conn address 16;
    client_header_timeout 10s;
    client_body_timeout 10s;
    send_timeout 10s;
    keepalive_timeout 10s;
    client_max_body_size 64k;
    absolute_redirect off;
    disable_symlinks on from=$document_root;
    add_header X-Content-Type-Options nosniff always;
    add_header Referrer-Policy no-referrer always;
    add_header X-Frame-Options SAMEORIGIN always;
    root %HTML%;
    index index.html;
    location / {
      limit_except GET {
        deny all;
      }
    }
    location ~ /\. {
      deny all;
    }
  }
  server {
    listen unix:%CONTROL%;
    location = /ready {
      return 204;
    }
    location = /stat {
      rtmp_stat all;
    }
    location /control {
      rtmp_control all;
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
      {"%CONNECTIONS%", QByteArray::number(kConnections)},
      {"%GATE%", kGateSocket},
      {"%CONTROL%", kControlSocket},
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
