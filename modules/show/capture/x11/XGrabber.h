// Copies rectangles of an X drawable into shared pictures, with the pointer over them. The X server writes
// into the memory that the console reads, where it can share memory. Capture thread.
#pragma once
#include <xcb/shm.h>
#include <xcb/xfixes.h>

#include "DesktopWindows.h"
#include "PictureSender.h"

namespace korvia {

class XGrabber {
 public:
  enum class Result {
    Sent,
    NoSlot,  ///< the console has not taken the pictures before
    Refused  ///< the server gives no picture of this drawable
  };

  /// What to copy, in pixels of the drawable.
  struct Place {
    xcb_drawable_t drawable = XCB_NONE;
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    /// Of the upper left pixel on the screen, for the pointer.
    int screenX = 0;
    int screenY = 0;
  };

  XGrabber(const DesktopWindows& desktop, PictureSender& sender);
  XGrabber(const XGrabber&) = delete;
  XGrabber& operator=(const XGrabber&) = delete;
  ~XGrabber();

  /// Whether the display has pixels of four bytes, which all pictures are made of.
  bool canRead() const;
  Result grab(const Place& place, std::int64_t stampNs);

 private:
  bool shareRing(const PictureSender::Slot& slot);
  bool copyShared(const Place& place, const PictureSender::Slot& slot);
  bool copyThroughSocket(const Place& place, const PictureSender::Slot& slot);
  void drawPointer(const Place& place, std::uint8_t* picture);

  const DesktopWindows& desktop_;
  PictureSender& sender_;
  bool canShare_ = false;
  bool hasPointer_ = false;
  xcb_shm_seg_t segment_ = XCB_NONE;
  std::uint64_t serial_ = 0;  // of the ring that the server shares
};

}  // namespace korvia
