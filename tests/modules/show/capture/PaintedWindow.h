// A window of one colour on an X display, with a title and a class, as another program would have it. Test
// thread.
#pragma once
#include <xcb/xcb.h>

#include <QByteArray>
#include <QRect>
#include <QString>

namespace korvia::test {

class PaintedWindow {
 public:
  PaintedWindow(const QRect& place, quint32 color, const QByteArray& title, const QByteArray& program)
      : connection_(xcb_connect(nullptr, nullptr)), window_(xcb_generate_id(connection_)) {
    const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root,
                      static_cast<qint16>(place.x()), static_cast<qint16>(place.y()),
                      static_cast<quint16>(place.width()), static_cast<quint16>(place.height()), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual, XCB_CW_BACK_PIXEL, &color);
    setText(XCB_ATOM_WM_NAME, title);
    setText(XCB_ATOM_WM_CLASS, program + '\0' + program + '\0');
    show();
  }
  /// Closes the window.
  ~PaintedWindow() { xcb_disconnect(connection_); }
  PaintedWindow(const PaintedWindow&) = delete;
  PaintedWindow& operator=(const PaintedWindow&) = delete;

  QString id() const { return QStringLiteral("0x%1").arg(window_, 0, 16); }
  void show() {
    xcb_map_window(connection_, window_);
    synchronize();
  }
  void hide() {
    xcb_unmap_window(connection_, window_);
    synchronize();
  }
  void setTitle(const QByteArray& title) {
    setText(XCB_ATOM_WM_NAME, title);
    synchronize();
  }
  void setPlace(const QRect& place) {
    const quint32 values[] = {static_cast<quint32>(place.x()), static_cast<quint32>(place.y()),
                              static_cast<quint32>(place.width()), static_cast<quint32>(place.height())};
    xcb_configure_window(
        connection_, window_,
        XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
        values);
    synchronize();
  }
  void setColor(quint32 color) {
    xcb_change_window_attributes(connection_, window_, XCB_CW_BACK_PIXEL, &color);
    xcb_clear_area(connection_, 0, window_, 0, 0, 0, 0);
    synchronize();
  }
  void movePointer(int x, int y) {
    xcb_warp_pointer(connection_, XCB_NONE, window_, 0, 0, 0, 0, static_cast<qint16>(x),
                     static_cast<qint16>(y));
    synchronize();
  }

 private:
  void setText(xcb_atom_t property, const QByteArray& text) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, property, XCB_ATOM_STRING, 8,
                        static_cast<quint32>(text.size()), text.constData());
  }
  void synchronize() {
    free(xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  }

  xcb_connection_t* const connection_;
  const xcb_window_t window_;
};

}  // namespace korvia::test
