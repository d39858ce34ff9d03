// Captures a page, a window or a screen for the console, in a process of its own. The main thread guards it:
// it takes the console's messages, ends everything with the console, and watches the memory.
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <QElapsedTimer>
#include <QFileInfo>
#include <QUrl>
#include <memory>
#include <thread>

#include "Capture.h"
#include "Confinement.h"
#include "PictureSender.h"
#include "Session.h"
#include "link/ProgramStart.h"
#include "link/SessionMemory.h"
#include "page/PageCapture.h"
#include "x11/ScreenCapture.h"
#include "x11/WindowCapture.h"

namespace {

using namespace korvia;

constexpr int kBeginMs = 5000;
constexpr int kMemoryCheckMs = 1000;

std::optional<CaptureRequest> receiveRequest(CaptureChannel& channel) {
  pollfd wait = {channel.descriptor(), POLLIN, 0};
  CapturePacket packet;
  if (::poll(&wait, 1, kBeginMs) <= 0 || channel.receive(packet) != CaptureChannel::Received::Message ||
      packet.kind != CaptureMessage::Begin)
    return std::nullopt;
  return CaptureRequest::fromBytes(packet.bytes);
}

/// What this capture reads besides system folders.
QStringList readablePaths(const CaptureRequest& request) {
  QStringList paths;
  if (request.kind == CaptureKind::Page) {
    paths << qEnvironmentVariable(kCaptureRegistryVariable);
    if (const QUrl address(request.address); address.isLocalFile())
      paths << QFileInfo(address.toLocalFile()).absolutePath();
  } else {
    paths << qEnvironmentVariable("XAUTHORITY");
  }
  paths.removeAll(QString());
  return paths;
}

std::unique_ptr<Capture> makeCapture(const CaptureRequest& request, PictureSender& sender) {
  switch (request.kind) {
    case CaptureKind::Page:
      return std::make_unique<PageCapture>(request, sender);
    case CaptureKind::Window:
      return std::make_unique<WindowCapture>(request, sender);
    case CaptureKind::Screen:
      return std::make_unique<ScreenCapture>(request, sender);
  }
  return nullptr;
}

void handleMessages(CaptureChannel& channel, PictureSender& sender, Capture& capture) {
  CapturePacket packet;
  for (;;) {
    switch (channel.receive(packet)) {
      case CaptureChannel::Received::Nothing:
        return;
      case CaptureChannel::Received::Closed:
        endSession();
      case CaptureChannel::Received::Message:
        if (packet.kind != CaptureMessage::Release)
          capture.onInput(packet);
        else if (const std::optional<ReleaseMessage> release = packet.head<ReleaseMessage>())
          sender.onReleased(*release);
    }
  }
}

[[noreturn]] void guard(CaptureChannel& channel, PictureSender& sender, Capture& capture,
                        qint64 mostMemoryBytes) {
  pollfd wait = {channel.descriptor(), POLLIN, 0};
  QElapsedTimer sinceCheck;
  sinceCheck.start();
  for (;;) {
    if (::poll(&wait, 1, kMemoryCheckMs) > 0)
      handleMessages(channel, sender, capture);
    if (sinceCheck.elapsed() < kMemoryCheckMs)
      continue;
    sinceCheck.restart();
    if (sessionMemoryBytes(::getsid(0)) > mostMemoryBytes) {
      sender.sendFailed(QStringLiteral("too much memory was used"));
      endSession();
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  CaptureChannel channel{FileDescriptor(kCaptureChannelDescriptor)};
  if (argc != 2 || ::fcntl(kCaptureChannelDescriptor, F_SETFD, FD_CLOEXEC) != 0) {
    fputs("korvia-capture is started by korvia\n", stderr);
    return 2;
  }
  dropRights();
  const std::optional<CaptureRequest> request = receiveRequest(channel);
  if (!request || CaptureRequest::nameOf(request->kind) != QLatin1String(argv[1]))
    return 2;
  if (!confineFiles(readablePaths(*request)))
    channel.send(CaptureMessage::Unconfined, {});

  PictureSender sender(channel);
  const std::unique_ptr<Capture> capture = makeCapture(*request, sender);
  std::thread([&] {
    sender.sendFailed(capture->run());
    endSession();
  }).detach();
  guard(channel, sender, *capture, request->mostMemoryBytes);
}
