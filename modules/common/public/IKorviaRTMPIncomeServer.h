// The income server: receives RTMP streams that are pushed to "rtmp://HOST:rtmpPort()/income/NAME" for a name
// that PublishRules allows, and serves a folder of pages. Called on the console thread; the server is a child
// process that ends with this one.
#pragma once
#include <QString>

#include "IUnknownEx.h"

class IKorviaRTMPIncomeServer : public IUnknownEx {
 public:
  /// Starts the server without waiting for it; isRunning() tells when it answers. port is the wanted port of
  /// the page server for the folder htmlPath; if it is busy, the next free one is taken. Working files lie
  /// in a temporary folder below the cache of rootPath. Returns 0, or a negative value for errors that are
  /// known at once: bad arguments, a folder name that cannot be served, a missing server program or RTMP
  /// module. If the server fails to start later, this is logged and shown on the status board; it stays open
  /// until close().
  virtual int open(const QString& rootPath, int port, const QString& htmlPath) = 0;
  /// True while the child process runs and answers.
  virtual bool isRunning() = 0;
  /// The RTMP port; 0 while the server is not open.
  virtual int rtmpPort() = 0;
  /// Ends the child process. Does nothing when the server is not open.
  virtual void close() = 0;
  /// What a publisher of the application "live" must bring as the argument "secret" of its stream; a new one
  /// for each open(), empty before.
  virtual QString publishSecret() = 0;

 protected:
  ~IKorviaRTMPIncomeServer() = default;
};
