// Starts GStreamer for the process. Any thread.
#pragma once

namespace korvia {

/// True when GStreamer is ready. The first call may take a second, when plugins have to be looked through; do
/// not make it on the console or the engine thread.
bool startGStreamer();

}  // namespace korvia
