#include "GstInit.h"

#include <gst/gst.h>

#include <mutex>

#include "DnxhrCaps.h"
#include "SourceLog.h"

namespace korvia {

bool startGStreamer() {
  static std::once_flag once;
  static bool ready = false;
  std::call_once(once, [] {
    GError* error = nullptr;
    ready = gst_init_check(nullptr, nullptr, &error);
    if (!ready)
      qCWarning(logSource, "gstreamer does not start : %s", error ? error->message : "no reason given");
    g_clear_error(&error);
    if (ready && !registerDnxhrCaps())
      qCWarning(logSource, "dnxhr in quicktime files cannot be decoded");
  });
  return ready;
}

}  // namespace korvia
