// What has to be set up in the web engine itself, of which GStreamer shows only the objects. Called on the
// web engine's thread, before the page is loaded.
#pragma once
#include <gst/gst.h>

namespace korvia {

/// Lets the page's sound come to GStreamer. Some builds of GStreamer's plugin name a folder for the web
/// engine's extension that does not exist, and the page would play on the machine's loudspeakers.
void sendSoundToPipeline(GObject* webView);

}  // namespace korvia
