#include "ScreenCapture.h"

#include <xcb/randr.h>

#include <algorithm>
#include <optional>
#include <vector>

#include "FramePace.h"
#include "XReply.h"

namespace korvia {

namespace {

struct Monitor {
  int x, y, width, height;
};

/// The screens in the order in which Qt counts them, the primary one first. A display that knows no screens
/// is one.
std::vector<Monitor> monitorsOf(const DesktopWindows& desktop) {
  xcb_connection_t* connection = desktop.connection();
  const xcb_window_t root = desktop.screen().root;
  std::vector<Monitor> monitors;
  const XReply<xcb_randr_get_monitors_reply_t> reply(xcb_randr_get_monitors_reply(
      connection, xcb_randr_get_monitors(connection, root, /*get_active=*/1), nullptr));
  if (reply) {
    for (auto it = xcb_randr_get_monitors_monitors_iterator(reply.get()); it.rem > 0;
         xcb_randr_monitor_info_next(&it)) {
      const Monitor monitor{it.data->x, it.data->y, it.data->width, it.data->height};
      monitors.insert(it.data->primary ? monitors.begin() : monitors.end(), monitor);
    }
  }
  if (monitors.empty()) {
    const XReply<xcb_get_geometry_reply_t> all(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, root), nullptr));
    if (all)
      monitors.push_back({0, 0, all->width, all->height});
  }
  return monitors;
}

std::optional<XGrabber::Place> placeOf(const DesktopWindows& desktop, int index) {
  const std::vector<Monitor> monitors = monitorsOf(desktop);
  if (index < 0 || static_cast<std::size_t>(index) >= monitors.size())
    return std::nullopt;
  const Monitor& monitor = monitors[static_cast<std::size_t>(index)];
  return XGrabber::Place{desktop.screen().root, monitor.x, monitor.y, monitor.width,
                         monitor.height,        monitor.x, monitor.y};
}

/// Asks to be told when the screens change.
void watchScreens(const DesktopWindows& desktop) {
  constexpr std::uint32_t kMajor = 1;
  constexpr std::uint32_t kMinor = 5;
  xcb_connection_t* connection = desktop.connection();
  const XReply<xcb_randr_query_version_reply_t> version(xcb_randr_query_version_reply(
      connection, xcb_randr_query_version(connection, kMajor, kMinor), nullptr));
  if (version)
    xcb_randr_select_input(connection, desktop.screen().root,
                           XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE);
}

bool hasEvents(const DesktopWindows& desktop) {
  bool any = false;
  while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(desktop.connection())})
    any = true;
  return any;
}

}  // namespace

QString ScreenCapture::run() {
  const DesktopWindows desktop;
  if (!desktop.isOpen())
    return QStringLiteral("no x display");
  XGrabber grabber(desktop, sender_);
  if (!grabber.canRead())
    return QStringLiteral("x display has no pixels of 32 bits");
  watchScreens(desktop);
  std::optional<XGrabber::Place> place = placeOf(desktop, request_.screenIndex);
  FramePace pace(request_.rateNumerator, request_.rateDenominator);
  bool isStale = false;
  while (place) {
    const std::int64_t stampNs = pace.wait();
    if (hasEvents(desktop) || isStale)
      place = placeOf(desktop, request_.screenIndex);
    // The screen may have become smaller since its size was read.
    isStale = place && grabber.grab(*place, stampNs) == XGrabber::Result::Refused;
    if (!desktop.isOpen())
      return QStringLiteral("x display is gone");
  }
  return desktop.isOpen() ? QStringLiteral("no screen %1").arg(request_.screenIndex)
                          : QStringLiteral("x display is gone");
}

}  // namespace korvia
