#include "DesktopWindows.h"

#include <cstring>

#include "XReply.h"

namespace korvia {

namespace {

constexpr quint32 kTextWordsMax = 1024;
constexpr quint32 kListWordsMax = 4096;

}  // namespace

DesktopWindows::DesktopWindows() : connection_(xcb_connect(nullptr, nullptr)) {}

DesktopWindows::~DesktopWindows() {
  xcb_disconnect(connection_);
}

xcb_atom_t DesktopWindows::atom(const QByteArray& name) const {
  const auto cookie = xcb_intern_atom(connection_, 1, static_cast<quint16>(name.size()), name.constData());
  const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

QByteArray DesktopWindows::property(xcb_window_t window, xcb_atom_t name, quint32 words) const {
  if (name == XCB_ATOM_NONE)
    return {};
  const auto cookie = xcb_get_property(connection_, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
  const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, cookie, nullptr));
  if (!reply)
    return {};
  return QByteArray(static_cast<const char*>(xcb_get_property_value(reply.get())),
                    xcb_get_property_value_length(reply.get()));
}

QList<quint32> DesktopWindows::numbers(xcb_window_t window, const QByteArray& name) const {
  const QByteArray bytes = property(window, atom(name), kListWordsMax);
  QList<quint32> list;
  for (int at = 0; at + 4 <= bytes.size(); at += 4) {
    quint32 number = 0;
    std::memcpy(&number, bytes.constData() + at, sizeof number);
    list.append(number);
  }
  return list;
}

QString DesktopWindows::title(xcb_window_t window) const {
  const QByteArray utf8 = property(window, atom("_NET_WM_NAME"), kTextWordsMax);
  return utf8.isEmpty() ? QString::fromLatin1(property(window, XCB_ATOM_WM_NAME, kTextWordsMax))
                        : QString::fromUtf8(utf8);
}

QString DesktopWindows::program(xcb_window_t window) const {
  // The class is the second of the two strings of the property.
  const QList<QByteArray> names = property(window, XCB_ATOM_WM_CLASS, kTextWordsMax).split('\0');
  return QString::fromLatin1(names.size() > 1 ? names[1] : names.value(0));
}

quint32 DesktopWindows::processId(xcb_window_t window) const {
  return numbers(window, "_NET_WM_PID").value(0);
}

QList<xcb_window_t> DesktopWindows::list() const {
  const QList<xcb_window_t> clients = numbers(screen().root, "_NET_CLIENT_LIST");
  return clients.isEmpty() ? visibleTopLevels() : clients;
}

QList<xcb_window_t> DesktopWindows::visibleTopLevels() const {
  const XReply<xcb_query_tree_reply_t> tree(
      xcb_query_tree_reply(connection_, xcb_query_tree(connection_, screen().root), nullptr));
  QList<xcb_window_t> visible;
  if (!tree)
    return visible;
  const xcb_window_t* children = xcb_query_tree_children(tree.get());
  for (int n = 0; n < xcb_query_tree_children_length(tree.get()); ++n) {
    const XReply<xcb_get_window_attributes_reply_t> attributes(xcb_get_window_attributes_reply(
        connection_, xcb_get_window_attributes(connection_, children[n]), nullptr));
    if (attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE && !attributes->override_redirect &&
        !title(children[n]).isEmpty())
      visible.append(children[n]);
  }
  return visible;
}

}  // namespace korvia
