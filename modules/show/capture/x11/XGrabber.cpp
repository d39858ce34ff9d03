#include "XGrabber.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>

#include "XReply.h"

namespace korvia {

namespace {

constexpr int kPixelBytes = 4;
constexpr std::uint32_t kAllPlanes = ~0U;

/// Colours multiplied by alpha already, over an opaque pixel.
void blend(const std::uint8_t* over, std::uint8_t* pixel) {
  constexpr int kOpaque = 255;
  const int rest = kOpaque - over[3];
  for (int i = 0; i < 3; ++i)
    pixel[i] =
        static_cast<std::uint8_t>(std::min(kOpaque, over[i] + (pixel[i] * rest + kOpaque / 2) / kOpaque));
}

}  // namespace

XGrabber::XGrabber(const DesktopWindows& desktop, PictureSender& sender)
    : desktop_(desktop), sender_(sender) {
  xcb_connection_t* connection = desktop_.connection();
  // A server that takes descriptors has at least version 1.2 and runs on this machine.
  const XReply<xcb_shm_query_version_reply_t> shm(
      xcb_shm_query_version_reply(connection, xcb_shm_query_version(connection), nullptr));
  canShare_ = shm && (shm->major_version > 1 || (shm->major_version == 1 && shm->minor_version >= 2));
  constexpr std::uint32_t kXfixesMajor = 4;
  const XReply<xcb_xfixes_query_version_reply_t> xfixes(xcb_xfixes_query_version_reply(
      connection, xcb_xfixes_query_version(connection, kXfixesMajor, 0), nullptr));
  hasPointer_ = xfixes != nullptr;
}

XGrabber::~XGrabber() {
  if (segment_ != XCB_NONE)
    xcb_shm_detach(desktop_.connection(), segment_);
}

bool XGrabber::canRead() const {
  constexpr int kPixelBits = 32;
  const xcb_setup_t* setup = xcb_get_setup(desktop_.connection());
  if (setup->image_byte_order != XCB_IMAGE_ORDER_LSB_FIRST)
    return false;
  for (auto it = xcb_setup_pixmap_formats_iterator(setup); it.rem > 0; xcb_format_next(&it)) {
    if (it.data->depth == desktop_.screen().root_depth)
      return it.data->bits_per_pixel == kPixelBits;
  }
  return false;
}

bool XGrabber::shareRing(const PictureSender::Slot& slot) {
  if (!canShare_)
    return false;
  if (segment_ != XCB_NONE && serial_ == slot.serial)
    return true;
  xcb_connection_t* connection = desktop_.connection();
  if (segment_ != XCB_NONE)
    xcb_shm_detach(connection, segment_);
  segment_ = xcb_generate_id(connection);
  serial_ = slot.serial;
  // The connection closes the descriptor when it has sent it.
  const int descriptor = ::fcntl(slot.descriptor, F_DUPFD_CLOEXEC, 0);
  const XReply<xcb_generic_error_t> error(xcb_request_check(
      connection, xcb_shm_attach_fd_checked(connection, segment_, descriptor, /*read_only=*/0)));
  if (error) {
    segment_ = XCB_NONE;
    canShare_ = false;
  }
  return canShare_;
}

bool XGrabber::copyShared(const Place& place, const PictureSender::Slot& slot) {
  xcb_connection_t* connection = desktop_.connection();
  const auto cookie = xcb_shm_get_image(
      connection, place.drawable, static_cast<std::int16_t>(place.x), static_cast<std::int16_t>(place.y),
      static_cast<std::uint16_t>(place.width), static_cast<std::uint16_t>(place.height), kAllPlanes,
      XCB_IMAGE_FORMAT_Z_PIXMAP, segment_, static_cast<std::uint32_t>(slot.offset));
  xcb_generic_error_t* error = nullptr;
  const XReply<xcb_shm_get_image_reply_t> reply(xcb_shm_get_image_reply(connection, cookie, &error));
  const XReply<xcb_generic_error_t> errorOwner(error);
  return reply != nullptr;
}

bool XGrabber::copyThroughSocket(const Place& place, const PictureSender::Slot& slot) {
  xcb_connection_t* connection = desktop_.connection();
  const auto cookie =
      xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, place.drawable, static_cast<std::int16_t>(place.x),
                    static_cast<std::int16_t>(place.y), static_cast<std::uint16_t>(place.width),
                    static_cast<std::uint16_t>(place.height), kAllPlanes);
  xcb_generic_error_t* error = nullptr;
  const XReply<xcb_get_image_reply_t> reply(xcb_get_image_reply(connection, cookie, &error));
  const XReply<xcb_generic_error_t> errorOwner(error);
  const int bytes = place.width * place.height * kPixelBytes;
  if (!reply || xcb_get_image_data_length(reply.get()) < bytes)
    return false;
  std::memcpy(slot.data, xcb_get_image_data(reply.get()), static_cast<std::size_t>(bytes));
  return true;
}

void XGrabber::drawPointer(const Place& place, std::uint8_t* picture) {
  if (!hasPointer_)
    return;
  xcb_connection_t* connection = desktop_.connection();
  const XReply<xcb_xfixes_get_cursor_image_reply_t> pointer(
      xcb_xfixes_get_cursor_image_reply(connection, xcb_xfixes_get_cursor_image(connection), nullptr));
  if (!pointer)
    return;
  const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(pointer.get());
  const int left = pointer->x - pointer->xhot - place.screenX;
  const int top = pointer->y - pointer->yhot - place.screenY;
  const int firstX = std::max(0, -left);
  const int endX = std::min<int>(pointer->width, place.width - left);
  const int endY = std::min<int>(pointer->height, place.height - top);
  for (int y = std::max(0, -top); y < endY; ++y) {
    for (int x = firstX; x < endX; ++x) {
      std::uint8_t over[kPixelBytes];
      std::memcpy(over, pixels + y * pointer->width + x, sizeof over);
      blend(over, picture + (static_cast<std::ptrdiff_t>(top + y) * place.width + left + x) * kPixelBytes);
    }
  }
}

XGrabber::Result XGrabber::grab(const Place& place, std::int64_t stampNs) {
  const std::optional<PictureSender::Slot> slot = sender_.acquire(place.width, place.height);
  if (!slot)
    return Result::NoSlot;
  const bool copied = shareRing(*slot) ? copyShared(place, *slot) : copyThroughSocket(place, *slot);
  if (!copied) {
    sender_.giveBack(*slot);
    return Result::Refused;
  }
  drawPointer(place, slot->data);
  sender_.send(*slot, {place.width, place.height, CaptureLayout::Opaque}, stampNs);
  return Result::Sent;
}

}  // namespace korvia
