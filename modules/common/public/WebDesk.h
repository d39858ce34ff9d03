// Where the console and the web server meet: the console tells events and publishes pictures here, and takes
// the commands of the viewers. One for the process; any thread, the parts lock for themselves.
#pragma once
#include <QString>
#include <functional>

#include "EventFeed.h"
#include "PictureBoard.h"
#include "ThreadSafety.h"
#include "WebCommand.h"

namespace korvia {

class WebDesk {
 public:
  /// Called on a thread of the web server. It must not wait for the console.
  using Handler = std::function<WebVerdict(const WebCommand&)>;

  static WebDesk& instance();

  /// The feed of "/events".
  EventFeed& events() { return events_; }
  /// The program picture, and the pictures of all channels in one.
  PictureBoard& program() { return program_; }
  PictureBoard& channels() { return channels_; }

  /// Replaces the handler of the commands; an empty one ends them. When this returns, the handler before is
  /// not called any more.
  void setHandler(Handler handler);
  WebVerdict run(const WebCommand& command);

  /// What a viewer must know to give commands, made at the first call: 22 characters that a URL may contain.
  QString token();

  /// The port of the open web server; 0 while there is none.
  void setPort(int port);
  int port() const;
  /// The address of the operator's page with the token behind "#", which browsers keep to themselves. `host`
  /// is a numeric address. Empty while the web server is not open.
  QString pageAddress(const QString& host);

 private:
  WebDesk() = default;

  EventFeed events_;
  PictureBoard program_;
  PictureBoard channels_;
  mutable Mutex mutex_;
  Handler handler_ GUARDED_BY(mutex_);
  QString token_ GUARDED_BY(mutex_);
  int port_ GUARDED_BY(mutex_) = 0;
};

}  // namespace korvia
