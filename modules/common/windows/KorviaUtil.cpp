#include "KorviaUtil.h"

#include <unistd.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <class T>
using Reply = std::unique_ptr<T, Free>;

constexpr quint32 kTextWordsMax = 1024;
constexpr quint32 kListWordsMax = 4096;

/// The questions that the list asks of one display.
class Display {
 public:
  Display() : connection_(xcb_connect(nullptr, nullptr)) {}
  ~Display() { xcb_disconnect(connection_); }
  Display(const Display&) = delete;
  Display& operator=(const Display&) = delete;

  bool isOpen() const { return xcb_connection_has_error(connection_) == 0; }

  xcb_window_t root() const { return xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root; }

  xcb_atom_t atom(const QByteArray& name) const {
    const auto cookie = xcb_intern_atom(connection_, 1, static_cast<quint16>(name.size()), name.constData());
    const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  QByteArray property(xcb_window_t window, xcb_atom_t name, quint32 words) const {
    if (name == XCB_ATOM_NONE)
      return {};
    const auto cookie = xcb_get_property(connection_, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
    const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, cookie, nullptr));
    if (!reply)
      return {};
    return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                      xcb_get_property_value_length(reply.get()));
  }

  QList<xcb_window_t> numbers(xcb_window_t window, const QByteArray& name) const {
    const QByteArray bytes = property(window, atom(name), kListWordsMax);
    QList<xcb_window_t> list;
    for (int at = 0; at + 4 <= bytes.size(); at += 4) {
      quint32 number = 0;
      std::memcpy(&number, bytes.constData() + at, sizeof number);
      list.append(number);
    }
    return list;
  }

  QString title(xcb_window_t window) const {
    const QByteArray utf8 = property(window, atom("_NET_WM_NAME"), kTextWordsMax);
    return utf8.isEmpty() ? QString::fromLatin1(property(window, XCB_ATOM_WM_NAME, kTextWordsMax))
                          : QString::fromUtf8(utf8);
  }

  /// The class of the window, which is the second of the two strings of the property.
  QString program(xcb_window_t window) const {
    const QList<QByteArray> names = property(window, XCB_ATOM_WM_CLASS, kTextWordsMax).split('\0');
    return QString::fromLatin1(names.size() > 1 ? names[1] : names.value(0));
  }

  QList<xcb_window_t> visibleTopLevels() const {
    const Reply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root()), nullptr));
    QList<xcb_window_t> visible;
    if (!tree)
      return visible;
    const xcb_window_t* children = xcb_query_tree_children(tree.get());
    for (int n = 0; n < xcb_query_tree_children_length(tree.get()); ++n) {
      const Reply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
          connection_, xcb_get_window_attributes(connection_, children[n]), nullptr));
      if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE && !attributes->override_redirect &&
          !title(children[n]).isEmpty())
        visible.append(children[n]);
    }
    return visible;
  }

 private:
  xcb_connection_t* connection_;
};

}  // namespace

void KorviaUtil::fillWindowHwndList(QList<tagKorviaWindowHWNDInfo>& windows) {
  const Display display;
  if (!display.isOpen())
    return;
  QList<xcb_window_t> found = display.numbers(display.root(), "_NET_CLIENT_LIST");
  if (found.isEmpty())
    found = display.visibleTopLevels();
  for (const xcb_window_t window : std::as_const(found)) {
    if (display.numbers(window, "_NET_WM_PID").value(0) == static_cast<quint32>(::getpid()))
      continue;
    windows.append(
        {display.title(window), QStringLiteral("0x%1").arg(window, 0, 16), display.program(window)});
  }
}
