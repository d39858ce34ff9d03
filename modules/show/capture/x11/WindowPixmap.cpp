#include "WindowPixmap.h"

#include <xcb/composite.h>

#include "XReply.h"

namespace korvia {

WindowPixmap::WindowPixmap(const DesktopWindows& desktop, xcb_window_t window)
    : desktop_(desktop), window_(window) {
  constexpr std::uint32_t kMinor = 4;
  xcb_connection_t* connection = desktop_.connection();
  const XReply<xcb_composite_query_version_reply_t> version(xcb_composite_query_version_reply(
      connection, xcb_composite_query_version(connection, 0, kMinor), nullptr));
  if (!version)
    return;
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection, window_, XCB_CW_EVENT_MASK, &events);
  const XReply<xcb_generic_error_t> error(xcb_request_check(
      connection,
      xcb_composite_redirect_window_checked(connection, window_, XCB_COMPOSITE_REDIRECT_AUTOMATIC)));
  keptApart_ = !error;
}

WindowPixmap::~WindowPixmap() {
  freePixmap();
  if (keptApart_ && !closed_)
    xcb_composite_unredirect_window(desktop_.connection(), window_, XCB_COMPOSITE_REDIRECT_AUTOMATIC);
}

void WindowPixmap::freePixmap() {
  if (pixmap_ != XCB_NONE)
    xcb_free_pixmap(desktop_.connection(), pixmap_);
  pixmap_ = XCB_NONE;
}

void WindowPixmap::onEvent(const xcb_generic_event_t& event) {
  constexpr std::uint8_t kSentByClient = 0x80;
  switch (event.response_type & ~kSentByClient) {
    case XCB_DESTROY_NOTIFY:
      closed_ = true;
      break;
    case XCB_MAP_NOTIFY:
    case XCB_UNMAP_NOTIFY:
    case XCB_CONFIGURE_NOTIFY:
    case XCB_REPARENT_NOTIFY:
      stale_ = true;
      break;
    default:
      break;
  }
}

void WindowPixmap::renew() {
  xcb_connection_t* connection = desktop_.connection();
  freePixmap();
  stale_ = false;
  const XReply<xcb_get_window_attributes_reply_t> attributes(
      xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, window_), nullptr));
  const XReply<xcb_get_geometry_reply_t> geometry(
      xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window_), nullptr));
  closed_ = closed_ || !attributes || !geometry;
  if (closed_ || attributes->map_state != XCB_MAP_STATE_VIEWABLE)
    return;
  const xcb_pixmap_t pixmap = xcb_generate_id(connection);
  const XReply<xcb_generic_error_t> error(
      xcb_request_check(connection, xcb_composite_name_window_pixmap_checked(connection, window_, pixmap)));
  const XReply<xcb_translate_coordinates_reply_t> corner(xcb_translate_coordinates_reply(
      connection, xcb_translate_coordinates(connection, window_, desktop_.screen().root, 0, 0), nullptr));
  // The window may have been hidden or closed in between. Its event then comes, or the next look finds it
  // out.
  stale_ = error || !corner;
  if (stale_)
    return;
  pixmap_ = pixmap;
  // The border is part of the pixmap, but not of the window's contents.
  const int border = geometry->border_width;
  place_ = {pixmap_, border, border, geometry->width, geometry->height, corner->dst_x, corner->dst_y};
}

std::optional<XGrabber::Place> WindowPixmap::place() {
  if (stale_)
    renew();
  if (pixmap_ == XCB_NONE)
    return std::nullopt;
  return place_;
}

}  // namespace korvia
