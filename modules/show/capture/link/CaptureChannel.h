// One end of the socket between the console and the capture program. It keeps the limits of messages, so that
// the other side can send what it likes. Any thread may send; one thread at a time receives.
#pragma once
#include <QByteArray>
#include <cstring>
#include <optional>
#include <type_traits>

#include "CaptureMessages.h"
#include "FileDescriptor.h"

namespace korvia {

struct CapturePacket {
  CaptureMessage kind = CaptureMessage::Begin;
  QByteArray bytes;
  FileDescriptor descriptor;  ///< not open, except for CaptureMessage::Ring

  /// The struct at the head of the message; nothing when the message is too short.
  template <typename Head>
  std::optional<Head> head() const {
    static_assert(std::is_trivially_copyable_v<Head>);
    if (bytes.size() < static_cast<int>(sizeof(Head)))
      return std::nullopt;
    Head head;
    std::memcpy(&head, bytes.constData(), sizeof head);
    return head;
  }
  /// What follows a struct of this type.
  template <typename Head>
  QByteArray after() const {
    return bytes.mid(static_cast<int>(sizeof(Head)));
  }
};

class CaptureChannel {
 public:
  enum class Received { Message, Nothing, Closed };

  CaptureChannel() = default;
  explicit CaptureChannel(FileDescriptor socket) : socket_(std::move(socket)) {}

  /// Both ends of a new channel; none are open when the system refuses. They are not inherited by other
  /// programs.
  static std::pair<CaptureChannel, CaptureChannel> pair();

  /// For poll().
  int descriptor() const { return socket_.get(); }
  bool isOpen() const { return socket_.isOpen(); }

  /// False when the other side is gone or takes no messages. Never waits.
  bool send(CaptureMessage kind, const QByteArray& bytes = {}, int descriptor = -1);
  template <typename Head>
  bool sendHead(CaptureMessage kind, const Head& head, const QByteArray& tail = {}, int descriptor = -1) {
    static_assert(std::is_trivially_copyable_v<Head>);
    return send(kind, QByteArray(reinterpret_cast<const char*>(&head), sizeof head) + tail, descriptor);
  }

  /// Never waits.
  Received receive(CapturePacket& packet);

 private:
  FileDescriptor socket_;
};

}  // namespace korvia
