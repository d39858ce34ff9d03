// Writes to a file descriptor of any kind. Any thread.
#pragma once
#include <poll.h>
#include <unistd.h>

#include <QByteArray>
#include <cerrno>

namespace korvia {

/// Waits while the descriptor blocks. Returns the bytes written: less than all on a write error, when the
/// disk is full or the reader or terminal is gone.
inline int writeAll(int descriptor, const QByteArray& bytes) {
  int done = 0;
  while (done < bytes.size()) {
    const ssize_t count =
        ::write(descriptor, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
    if (count > 0) {
      done += static_cast<int>(count);
    } else if (count < 0 && errno == EAGAIN) {
      pollfd room{descriptor, POLLOUT, 0};
      ::poll(&room, 1, -1);
    } else if (count == 0 || errno != EINTR) {
      break;
    }
  }
  return done;
}

}  // namespace korvia
