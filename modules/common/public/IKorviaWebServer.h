// The web server of the console: its state as JSON and as a page, on loopback. Called on the console thread;
// requests are served on a thread of the server.
#pragma once
#include "IUnknownEx.h"

class IKorviaWebServerSink;

class IKorviaWebServer : public IUnknownEx {
 public:
  /// Starts to listen. *httpPort is the wanted port when it is 1 to 65535, else 8800 is. If it is busy, the
  /// next free port is taken and written back. Returns 0, or a negative value when no port is free. The sink
  /// is not used yet and may be null. Fails when the server is open.
  virtual int open(IKorviaWebServerSink* sink, int* httpPort) = 0;
  /// Ends all connections and frees the port. Does nothing when the server is not open.
  virtual void close() = 0;

 protected:
  ~IKorviaWebServer() = default;
};
