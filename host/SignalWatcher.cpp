#include "SignalWatcher.h"

#include <fcntl.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <iterator>

#include "HostLogCategories.h"

namespace korvia {

namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

// The signal handler uses only these, because little else is safe in a handler.
int pipeEnds[2] = {-1, -1};
std::atomic<bool> closeAsked{false};
std::atomic<bool> terminalGone{false};
static_assert(std::atomic<bool>::is_always_lock_free);

void onSignal(int number) {
  const int savedErrno = errno;
  (number == SIGHUP ? terminalGone : closeAsked) = true;
  const char byte = 1;
  // The result does not matter: a full pipe wakes the reader as well.
  [[maybe_unused]] const ssize_t written = write(pipeEnds[1], &byte, 1);
  errno = savedErrno;
}

bool isIgnored(int number) {
  struct sigaction action {};
  return sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

void setAction(void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  for (int number : kSignals) {
    if (number != SIGHUP || !isIgnored(number))
      sigaction(number, &action, nullptr);
  }
}

}  // namespace

SignalWatcher::SignalWatcher(QObject* parent) : QObject(parent) {
  if (pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0) {
    qCWarning(lcSignals, "failed to make the signal pipe");
    return;
  }
  notifier_ = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, this);
  connect(notifier_, &QSocketNotifier::activated, this, &SignalWatcher::readPipe);
  setAction(onSignal);
}

SignalWatcher::~SignalWatcher() {
  if (!notifier_)
    return;
  // The program is ending, and another signal must not interrupt it.
  setAction(SIG_IGN);
  delete notifier_;
  for (int& end : pipeEnds) {
    ::close(end);
    end = -1;
  }
}

void SignalWatcher::readPipe() {
  char bytes[16];
  while (read(pipeEnds[0], bytes, std::size(bytes)) > 0) {
  }
  if (terminalGone.exchange(false))
    emit hungUp();
  if (closeAsked.exchange(false))
    emit closeRequested();
}

}  // namespace korvia
