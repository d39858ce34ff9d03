#include "WindowCapture.h"

#include "FramePace.h"
#include "WindowPixmap.h"
#include "XReply.h"

namespace korvia {

namespace {

/// The window that the operator has chosen. Programs get other window numbers when they are started again,
/// and the number may belong to another program then; so it counts only with the same class, whatever the
/// title is by then. Else class and title must be the same: another window of the program may be nothing that
/// belongs on air.
xcb_window_t find(const DesktopWindows& desktop, const CaptureRequest& request) {
  const xcb_window_t known = request.windowId.toUInt(nullptr, 0);
  xcb_window_t sameTitle = XCB_NONE;
  for (const xcb_window_t window : desktop.list()) {
    if (desktop.program(window) != request.windowProgram)
      continue;
    if (window == known)
      return window;
    if (sameTitle == XCB_NONE && desktop.title(window) == request.windowTitle)
      sameTitle = window;
  }
  return sameTitle;
}

/// Whether the number of the record is a window of its program, although no list has it: it may be minimised.
bool isThere(const DesktopWindows& desktop, xcb_window_t window, const QString& program) {
  return window != XCB_NONE && !program.isEmpty() && desktop.program(window) == program;
}

xcb_window_t windowOf(const DesktopWindows& desktop, const CaptureRequest& request) {
  const xcb_window_t known = request.windowId.toUInt(nullptr, 0);
  return isThere(desktop, known, request.windowProgram) ? known : find(desktop, request);
}

void handleEvents(const DesktopWindows& desktop, WindowPixmap& pixmap) {
  while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(desktop.connection())})
    pixmap.onEvent(*event);
}

}  // namespace

QString WindowCapture::run() {
  const DesktopWindows desktop;
  if (!desktop.isOpen())
    return QStringLiteral("no x display");
  XGrabber grabber(desktop, sender_);
  if (!grabber.canRead())
    return QStringLiteral("x display has no pixels of 32 bits");
  const xcb_window_t window = windowOf(desktop, request_);
  if (window == XCB_NONE)
    return QLatin1String(kWindowIsNotOpen);
  WindowPixmap pixmap(desktop, window);
  if (!pixmap.isKeptApart())
    return QStringLiteral("window cannot be captured");
  FramePace pace(request_.rateNumerator, request_.rateDenominator);
  for (;;) {
    const std::int64_t stampNs = pace.wait();
    handleEvents(desktop, pixmap);
    const std::optional<XGrabber::Place> place = pixmap.isClosed() ? std::nullopt : pixmap.place();
    if (!place)
      sender_.sendRepeat(stampNs);
    else if (grabber.grab(*place, stampNs) == XGrabber::Result::Refused)
      pixmap.onRefused();
    if (!desktop.isOpen())
      return QStringLiteral("x display is gone");
    if (pixmap.isClosed())
      return QLatin1String(kWindowWasClosed);
  }
}

}  // namespace korvia
