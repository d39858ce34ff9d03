#include "CaptureChannel.h"

#include <sys/socket.h>

#include <cerrno>

namespace korvia {

namespace {

using KindNumber = std::underlying_type_t<CaptureMessage>;

/// Room for one descriptor beside a message.
union DescriptorRoom {
  cmsghdr header;
  char bytes[CMSG_SPACE(sizeof(int))];
};

FileDescriptor descriptorOf(msghdr& message) {
  FileDescriptor descriptor;
  for (cmsghdr* header = CMSG_FIRSTHDR(&message); header; header = CMSG_NXTHDR(&message, header)) {
    if (header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_RIGHTS)
      continue;
    int number = -1;
    std::memcpy(&number, CMSG_DATA(header), sizeof number);
    descriptor = FileDescriptor(number);
  }
  return descriptor;
}

}  // namespace

std::pair<CaptureChannel, CaptureChannel> CaptureChannel::pair() {
  int ends[2] = {-1, -1};
  if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0)
    return {};
  return {CaptureChannel(FileDescriptor(ends[0])), CaptureChannel(FileDescriptor(ends[1]))};
}

bool CaptureChannel::send(CaptureMessage kind, const QByteArray& bytes, int descriptor) {
  auto number = static_cast<KindNumber>(kind);
  iovec parts[2] = {{&number, sizeof number},
                    {const_cast<char*>(bytes.constData()), static_cast<std::size_t>(bytes.size())}};
  msghdr message = {};
  message.msg_iov = parts;
  message.msg_iovlen = 2;
  DescriptorRoom room = {};
  if (descriptor >= 0) {
    message.msg_control = &room;
    message.msg_controllen = sizeof room;
    cmsghdr* header = CMSG_FIRSTHDR(&message);
    header->cmsg_level = SOL_SOCKET;
    header->cmsg_type = SCM_RIGHTS;
    header->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(header), &descriptor, sizeof descriptor);
  }
  ssize_t sent = -1;
  do {
    sent = ::sendmsg(socket_.get(), &message, MSG_NOSIGNAL | MSG_DONTWAIT);
  } while (sent < 0 && errno == EINTR);
  return sent >= 0;
}

CaptureChannel::Received CaptureChannel::receive(CapturePacket& packet) {
  KindNumber number = 0;
  packet.bytes.resize(kMostMessageBytes);
  iovec parts[2] = {{&number, sizeof number},
                    {packet.bytes.data(), static_cast<std::size_t>(packet.bytes.size())}};
  DescriptorRoom room = {};
  msghdr message = {};
  message.msg_iov = parts;
  message.msg_iovlen = 2;
  message.msg_control = &room;
  // Padding would be room for a second descriptor, which nobody would close.
  message.msg_controllen = CMSG_LEN(sizeof(int));
  ssize_t got = -1;
  do {
    got = ::recvmsg(socket_.get(), &message, MSG_DONTWAIT | MSG_CMSG_CLOEXEC);
  } while (got < 0 && errno == EINTR);
  if (got < 0 && errno == EAGAIN)
    return Received::Nothing;
  packet.descriptor = got > 0 ? descriptorOf(message) : FileDescriptor();
  if (got < static_cast<ssize_t>(sizeof number) || (message.msg_flags & MSG_TRUNC) != 0)
    return Received::Closed;
  packet.kind = static_cast<CaptureMessage>(number);
  packet.bytes.resize(static_cast<int>(got) - static_cast<int>(sizeof number));
  return Received::Message;
}

}  // namespace korvia
