// Writes to a file descriptor of any kind. Any thread.
#pragma once
#include <poll.h>
#include <unistd.h>

#include <QByteArray>
#include <cerrno>

namespace korvia {

/// Waits while the descriptor blocks. False on a write error: the disk is full, or the reader or terminal is
/// gone.
inline bool writeAll(int descriptor, const QByteArray& bytes) {
  for (int done = 0; done < bytes.size();) {
    const ssize_t count =
        ::write(descriptor, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
    if (count > 0) {
      done += static_cast<int>(count);
    } else if (count < 0 && errno == EAGAIN) {
      pollfd room{descriptor, POLLOUT, 0};
      ::poll(&room, 1, -1);
    } else if (count == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

}  // namespace korvia
