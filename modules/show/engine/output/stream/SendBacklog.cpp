#include "SendBacklog.h"

// A macro of Qt's, and a name in a header of GLib's.
#undef signals
#include <gio/gio.h>
#include <netinet/in.h>
#include <netinet/tcp.h>

namespace korvia {

namespace {

constexpr int kUnsentBytes = 32 * 1024;

gboolean onEvent(GSignalInvocationHint*, guint, const GValue* values, gpointer) {
  // The instance, the event, the host, the connection.
  const auto event = static_cast<GSocketClientEvent>(g_value_get_enum(&values[1]));
  auto* connection = static_cast<GObject*>(g_value_get_object(&values[3]));
  if (event == G_SOCKET_CLIENT_CONNECTED && G_IS_SOCKET_CONNECTION(connection))
    g_socket_set_option(g_socket_connection_get_socket(G_SOCKET_CONNECTION(connection)), IPPROTO_TCP,
                        TCP_NOTSENT_LOWAT, kUnsentBytes, nullptr);
  return TRUE;
}

}  // namespace

void boundSendBacklog() {
  static const gulong hook = [] {
    g_type_class_ref(G_TYPE_SOCKET_CLIENT);
    return g_signal_add_emission_hook(g_signal_lookup("event", G_TYPE_SOCKET_CLIENT), 0, onEvent, nullptr,
                                      nullptr);
  }();
  static_cast<void>(hook);
}

}  // namespace korvia
