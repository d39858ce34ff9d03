// A connection to the X display and what it tells of the desktop's windows. One thread at a time.
#pragma once
#include <xcb/xcb.h>

#include <QByteArray>
#include <QList>
#include <QString>

namespace korvia {

class DesktopWindows {
 public:
  /// Connects to the display that DISPLAY names.
  DesktopWindows();
  DesktopWindows(const DesktopWindows&) = delete;
  DesktopWindows& operator=(const DesktopWindows&) = delete;
  ~DesktopWindows();

  /// False when there was no display, or it went away.
  bool isOpen() const { return xcb_connection_has_error(connection_) == 0; }
  xcb_connection_t* connection() const { return connection_; }
  const xcb_screen_t& screen() const { return *xcb_setup_roots_iterator(xcb_get_setup(connection_)).data; }

  /// The windows that can be captured: the client list of the window manager, or where there is none the
  /// visible top-level windows with a title.
  QList<xcb_window_t> list() const;
  QString title(xcb_window_t window) const;
  /// The class of the window, by which its program is known.
  QString program(xcb_window_t window) const;
  /// 0 when the window does not tell.
  quint32 processId(xcb_window_t window) const;

 private:
  xcb_atom_t atom(const QByteArray& name) const;
  QByteArray property(xcb_window_t window, xcb_atom_t name, quint32 words) const;
  QList<quint32> numbers(xcb_window_t window, const QByteArray& name) const;
  QList<xcb_window_t> visibleTopLevels() const;

  xcb_connection_t* const connection_;
};

}  // namespace korvia
