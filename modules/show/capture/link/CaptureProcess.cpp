#include "CaptureProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>

#include <QDir>
#include <QElapsedTimer>
#include <QLoggingCategory>
#include <atomic>
#include <csignal>
#include <ctime>

#include "ProgramStart.h"
#include "SessionMemory.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(logCapture, "korvia.capture")

constexpr int kMostReasonLength = 200;
constexpr int kMostMessagesAtOnce = 64;
constexpr int kMostErrorLines = 100;
constexpr int kCheckMs = 1000;
constexpr int kChecksOfTheProgram = 4;
constexpr std::int64_t kHourNs = 3'600'000'000'000;

/// Far from now no stamp means anything, and sums with it could overflow.
bool isPlausible(std::int64_t stampNs) {
  timespec now = {};
  ::clock_gettime(CLOCK_MONOTONIC, &now);
  const std::int64_t nowNs = now.tv_sec * 1'000'000'000LL + now.tv_nsec;
  return stampNs > nowNs - kHourNs && stampNs < nowNs + kHourNs;
}

/// A reason as the log and the operator may see it: one line of printable characters.
QString readable(const QByteArray& text) {
  QString line = QString::fromUtf8(text).left(kMostReasonLength);
  for (QChar& letter : line) {
    if (!letter.isPrint())
      letter = QLatin1Char(' ');
  }
  return line.trimmed();
}

void warnOfFiles() {
  static std::atomic<bool> isSaid{false};
  if (!isSaid.exchange(true))
    qCWarning(logCapture, "the kernel has no landlock : web pages are not kept from the files of this user");
}

QString endOf(int status) {
  if (WIFSIGNALED(status))
    return QStringLiteral("capture program was killed by signal %1").arg(WTERMSIG(status));
  return QStringLiteral("capture program ended with code %1").arg(WEXITSTATUS(status));
}

}  // namespace

CaptureProcess::CaptureProcess(CaptureListener& listener) : listener_(&listener) {}

CaptureProcess::~CaptureProcess() {
  if (!thread_.joinable())
    return;
  ::eventfd_write(stop_.get(), 1);
  thread_.join();
}

bool CaptureProcess::start(const CaptureRequest& request, QString& reason) {
  folder_ = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/korvia-capture-XXXXXX"));
  auto [own, program] = CaptureChannel::pair();
  int pipe[2] = {-1, -1};
  stop_ = FileDescriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
  if (!folder_->isValid() || !own.isOpen() || !stop_.isOpen() || ::pipe2(pipe, O_CLOEXEC) != 0) {
    reason = QStringLiteral("no folder or descriptors for the capture program");
    return false;
  }
  errors_ = FileDescriptor(pipe[0]);
  const FileDescriptor programErrors(pipe[1]);
  ::fcntl(errors_.get(), F_SETFL, O_NONBLOCK);
  ProgramStart programStart;
  programStart.folder = folder_->path();
  programStart.channel = program.descriptor();
  programStart.errors = programErrors.get();
  const std::optional<qint64> process = programStart.run(request.kind, reason);
  if (!process)
    return false;
  process_ = *process;
  mostMemoryBytes_ = request.mostMemoryBytes;
  channel_ = std::move(own);
  channel_.send(CaptureMessage::Begin, request.toBytes());
  thread_ = std::thread([this] { run(); });
  return true;
}

bool CaptureProcess::setListener(CaptureListener* listener) {
  const MutexLock lock(listenerMutex_);
  listener_ = listener;
  return !ended_;
}

template <typename Call>
void CaptureProcess::tell(Call call) {
  const MutexLock lock(listenerMutex_);
  if (listener_)
    call(*listener_);
}

void CaptureProcess::sendMouseMove(double x, double y) {
  PointerMessage message;
  message.x = x;
  message.y = y;
  channel_.sendHead(CaptureMessage::MouseMove, message);
}

void CaptureProcess::sendMouseButton(double x, double y, int button, Press press) {
  PointerMessage message;
  message.x = x;
  message.y = y;
  message.button = button;
  message.pressed = press == Press::Down ? 1 : 0;
  channel_.sendHead(CaptureMessage::MouseButton, message);
}

void CaptureProcess::sendWheel(double x, double y, double deltaX, double deltaY) {
  PointerMessage message;
  message.x = x;
  message.y = y;
  message.deltaX = deltaX;
  message.deltaY = deltaY;
  channel_.sendHead(CaptureMessage::Wheel, message);
}

void CaptureProcess::sendKey(const QString& name, Press press) {
  KeyMessage message;
  message.pressed = press == Press::Down ? 1 : 0;
  channel_.sendHead(CaptureMessage::Key, message, name.toUtf8());
}

void CaptureProcess::resize(int width, int height) {
  ResizeMessage message;
  message.width = width;
  message.height = height;
  channel_.sendHead(CaptureMessage::Resize, message);
}

void CaptureProcess::load(const QString& address) {
  channel_.send(CaptureMessage::Load, address.toUtf8());
}

void CaptureProcess::run() {
  const bool isAsked = workUntilEnd();
  const QString end = endProgram();
  logErrors();
  const MutexLock lock(listenerMutex_);
  ended_ = true;
  if (!isAsked && listener_)
    listener_->onCaptureEnded(failure_.isEmpty() ? end : failure_);
}

bool CaptureProcess::workUntilEnd() {
  pollfd waits[3] = {
      {channel_.descriptor(), POLLIN, 0}, {errors_.get(), POLLIN, 0}, {stop_.get(), POLLIN, 0}};
  QElapsedTimer sinceCheck;
  sinceCheck.start();
  int tooLarge = 0;
  for (;;) {
    if (::poll(waits, 3, kCheckMs) < 0)
      continue;
    if (waits[2].revents != 0)
      return true;
    if (waits[1].revents != 0)
      logErrors();
    if ((waits[1].revents & (POLLHUP | POLLERR)) != 0)
      waits[1].fd = -1;
    if (waits[0].revents != 0 && !handleMessages())
      return false;
    if (!sinceCheck.hasExpired(kCheckMs))
      continue;
    sinceCheck.start();
    sendReleases();
    // Its own guard, which looks more closely, comes first.
    tooLarge = isTooLarge() ? tooLarge + 1 : 0;
    if (tooLarge == kChecksOfTheProgram) {
      failure_ = QStringLiteral("capture program does not keep its memory limit");
      return false;
    }
  }
}

bool CaptureProcess::handleMessages() {
  CapturePacket packet;
  // In between the caller looks whether it has to end, whatever the program sends.
  for (int count = 0; count < kMostMessagesAtOnce; ++count) {
    switch (channel_.receive(packet)) {
      case CaptureChannel::Received::Nothing:
        return true;
      case CaptureChannel::Received::Closed:
        return false;
      case CaptureChannel::Received::Message:
        if (!handle(packet)) {
          if (failure_.isEmpty())
            failure_ = QStringLiteral("capture program sent a wrong message");
          return false;
        }
    }
  }
  return true;
}

bool CaptureProcess::handle(CapturePacket& packet) {
  switch (packet.kind) {
    case CaptureMessage::Unconfined:
      warnOfFiles();
      return true;
    case CaptureMessage::Ring:
      return ring_.takeRing(packet);
    case CaptureMessage::Picture: {
      const std::optional<PictureMessage> message = packet.head<PictureMessage>();
      return message && isPlausible(message->stampNs) && takePicture(*message);
    }
    case CaptureMessage::Repeat: {
      const std::optional<RepeatMessage> message = packet.head<RepeatMessage>();
      if (!message || !isPlausible(message->stampNs))
        return false;
      tell([&](CaptureListener& listener) { listener.onCaptureRepeat(message->stampNs); });
      return true;
    }
    case CaptureMessage::Sound:
      return takeSound(packet);
    case CaptureMessage::Failed:
      failure_ = readable(packet.bytes);
      return false;
    default:
      return false;
  }
}

bool CaptureProcess::takePicture(const PictureMessage& message) {
  const std::optional<CapturePicture> picture = ring_.pictureOf(message);
  if (!picture)
    return false;
  tell([&](CaptureListener& listener) { listener.onCapturePicture(*picture); });
  ReleaseMessage slot;
  slot.serial = message.serial;
  slot.slot = message.slot;
  release(slot);
  return true;
}

void CaptureProcess::release(const ReleaseMessage& slot) {
  // A slot of an earlier ring is of no use any more.
  if (!unsentReleases_.empty() && unsentReleases_.front().serial != slot.serial)
    unsentReleases_.clear();
  unsentReleases_.push_back(slot);
  sendReleases();
}

void CaptureProcess::sendReleases() {
  while (!unsentReleases_.empty() && channel_.sendHead(CaptureMessage::Release, unsentReleases_.back()))
    unsentReleases_.pop_back();
}

bool CaptureProcess::isTooLarge() const {
  const qint64 most = mostMemoryBytes_ + mostMemoryBytes_ / 4;
  // What lies in memory is quick to ask for, and counts what the processes share for each of them.
  return most > 0 && sessionResidentBytes(process_) > most && sessionMemoryBytes(process_) > most;
}

bool CaptureProcess::takeSound(const CapturePacket& packet) {
  const std::optional<SoundMessage> message = packet.head<SoundMessage>();
  if (!message || message->samples > kMostSoundSamples || !isPlausible(message->stampNs))
    return false;
  const QByteArray bytes = packet.after<SoundMessage>();
  if (bytes.size() != static_cast<int>(message->samples * 2 * sizeof(float)))
    return false;
  std::vector<float> samples(message->samples * 2);
  std::memcpy(samples.data(), bytes.constData(), static_cast<std::size_t>(bytes.size()));
  tell([&](CaptureListener& listener) {
    listener.onCaptureSound(samples.data(), static_cast<int>(message->samples), message->stampNs);
  });
  return true;
}

void CaptureProcess::logErrors() {
  char text[4096];
  for (;;) {
    const ssize_t got = ::read(errors_.get(), text, sizeof text);
    if (got <= 0)
      return;
    const auto lines = QByteArray(text, static_cast<int>(got)).split('\n');
    for (const QByteArray& line : lines) {
      if (!line.trimmed().isEmpty() && errorLines_++ < kMostErrorLines)
        qCDebug(logCapture, "%s", line.constData());
    }
  }
}

QString CaptureProcess::endProgram() {
  // The program leads its session and its process group, in which its child processes are. The group keeps
  // its number until the program is waited for.
  ::kill(static_cast<pid_t>(-process_), SIGKILL);
  int status = 0;
  while (::waitpid(static_cast<pid_t>(process_), &status, 0) < 0 && errno == EINTR) {
  }
  return endOf(status);
}

}  // namespace korvia
