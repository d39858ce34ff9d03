// Serves the console's status as JSON and as a page, and the segments of a stream, on loopback. Called on the
// console thread; requests are served on a thread of the server.
#pragma once
#include <QString>

#include "IUnknownEx.h"

class IKorviaWebServerSink;

class IKorviaWebServer : public IUnknownEx {
 public:
  /// Starts to listen. Tries the port in *httpPort, or 8800 if that is not 1 to 65535, and then up to 99
  /// ports above it while they are busy. Writes the port that it took to *httpPort. Returns 0, or a negative
  /// errno: no port could be had, the server is open already, httpPort is null, or the server did not start.
  /// The sink is not used yet and may be null.
  virtual int open(IKorviaWebServerSink* sink, int* httpPort) = 0;
  /// Ends all connections and frees the port. Does nothing when the server is not open.
  virtual void close() = 0;
  /// Serves the playlists (*.m3u8) and segments (*.ts) of a folder of this machine below a path, "/hls/0" for
  /// "/hls/0/index.m3u8". It replaces the folder served before; an empty one ends that. May be called before
  /// open().
  virtual void serveSegments(const QString& path, const QString& folder) = 0;

 protected:
  ~IKorviaWebServer() = default;
};
