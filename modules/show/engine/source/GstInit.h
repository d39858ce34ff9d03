// Starts GStreamer for the process, with an element of the engine for DNxHR in QuickTime files. Any thread.
#pragma once

namespace korvia {

/// True when GStreamer is ready. The first call may take a second, because GStreamer scans its plugins, so it
/// must not be made on the console or the engine thread.
bool startGStreamer();

}  // namespace korvia
