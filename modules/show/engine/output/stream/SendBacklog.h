// Keeps what waits in a socket small. Any thread.
#pragma once

namespace korvia {

/// Bounds the bytes that the kernel keeps unsent for each connection of GLib's, which the RTMP element uses
/// and does not hand out. Otherwise some megabytes pile up before anybody sees that a server takes nothing,
/// which is half a minute of a stream. The speed of a connection does not suffer: what is under way is not
/// counted.
void boundSendBacklog();

}  // namespace korvia
