// One request of the web server, from its first line to its answer. Server thread, except wake().
#pragma once
#include <microhttpd.h>

#include <QByteArray>
#include <chrono>
#include <optional>

#include "PictureBoard.h"
#include "WebCommand.h"

namespace korvia {

class WebRequest final : public WebSleeper {
 public:
  /// `target` is the request's target as it was sent.
  WebRequest(MHD_Connection* connection, const QByteArray& target)
      : hasNul(target.contains("%00")), connection_(connection) {}
  ~WebRequest() {
    if (board_)
      board_->forget(*this);
  }
  WebRequest(const WebRequest&) = delete;
  WebRequest& operator=(const WebRequest&) = delete;

  void sleep() override { MHD_suspend_connection(connection_); }
  void wake() override { MHD_resume_connection(connection_); }

  MHD_Connection* connection() const { return connection_; }
  /// Null when the client did not send it.
  const char* header(const char* name) const {
    return MHD_lookup_connection_value(connection_, MHD_HEADER_KIND, name);
  }
  const char* argument(const char* name) const {
    return MHD_lookup_connection_value(connection_, MHD_GET_ARGUMENT_KIND, name);
  }
  std::chrono::steady_clock::duration age() const { return std::chrono::steady_clock::now() - began_; }

  /// The board at which the request may sleep.
  void waitAt(PictureBoard& board) { board_ = &board; }
  /// Counts received bytes of the body. True while they are no more than `limit`.
  bool takeBody(std::size_t bytes, std::size_t limit) { return (body_ += bytes) <= limit; }

  /// The target has an encoded NUL, at which the decoded path would end.
  const bool hasNul;
  bool isHeadRequest = false;
  bool isHeadRead = false;
  std::optional<WebCommand> command;

 private:
  MHD_Connection* const connection_;
  const std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();
  PictureBoard* board_ = nullptr;
  std::size_t body_ = 0;
};

}  // namespace korvia
