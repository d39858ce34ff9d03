// What has to be set up in the web engine itself, of which GStreamer shows only the objects. Called on the
// web engine's thread, before the page is loaded.
#pragma once
#include <gst/gst.h>

namespace korvia {

/// Lets the page's sound come to GStreamer. Some builds of GStreamer's plugin name a folder for the web
/// engine's extension that does not exist, and the page would play on the machine's loudspeakers.
void sendSoundToPipeline(GObject* webView);

/// Makes the source of this view post an error when the web engine refuses an address, as it does for ports
/// of other services. It tells nothing then, and shows an empty page in its place. The source outlives the
/// view.
void failWhenRefused(GObject* webView, GstElement* source);

}  // namespace korvia
