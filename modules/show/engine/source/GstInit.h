// Starts GStreamer for the process. Any thread.
#pragma once

namespace korvia {

/// True when GStreamer is ready. The first call may take a second, because GStreamer scans its plugins, so it
/// must not be made on the console or the engine thread.
bool startGStreamer();

}  // namespace korvia
