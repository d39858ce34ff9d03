// The web server of the console: state as JSON and as a page, on loopback. Called on the console thread;
// requests are served on a thread of the server.
#pragma once
#include "IUnknownEx.h"

class IKorviaWebServerSink;

class IKorviaWebServer : public IUnknownEx {
 public:
  /// Starts to listen. *httpPort is the wanted port when it is 1 to 65535, else 8800 is; a busy port gives
  /// way to the next free one, which is written back. Returns 0, or a negative value when no port could be
  /// had. No request needs the sink so far; it may be null. Opening an open server fails.
  virtual int open(IKorviaWebServerSink* sink, int* httpPort) = 0;
  /// Ends all connections and frees the port. Harmless when the server is not open.
  virtual void close() = 0;

 protected:
  ~IKorviaWebServer() = default;
};
