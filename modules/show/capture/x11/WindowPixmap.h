// The picture of one window, which the server keeps apart from the screen as long as this lives. Capture
// thread.
#pragma once
#include <optional>

#include "DesktopWindows.h"
#include "XGrabber.h"

namespace korvia {

class WindowPixmap {
 public:
  WindowPixmap(const DesktopWindows& desktop, xcb_window_t window);
  WindowPixmap(const WindowPixmap&) = delete;
  WindowPixmap& operator=(const WindowPixmap&) = delete;
  ~WindowPixmap();

  /// False on a display that cannot keep windows apart.
  bool isKeptApart() const { return keptApart_; }
  /// Takes note of an event of the window.
  void onEvent(const xcb_generic_event_t& event);
  bool isClosed() const { return closed_; }
  /// Where the contents of the window lie now; nothing while it is not shown.
  std::optional<XGrabber::Place> place();
  /// The server refused the place.
  void onRefused() { stale_ = true; }

 private:
  void renew();
  void freePixmap();

  const DesktopWindows& desktop_;
  const xcb_window_t window_;
  bool keptApart_ = false;
  bool closed_ = false;
  bool stale_ = true;  // the window was shown anew, or has another size or place
  xcb_pixmap_t pixmap_ = XCB_NONE;
  XGrabber::Place place_;
};

}  // namespace korvia
