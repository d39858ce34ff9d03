// The GStreamer elements that play on the sound devices of this machine. A sound server that hangs holds up
// the caller, so both functions are called on the thread of a SoundDevice.
#pragma once
#include <gst/gst.h>

#include <QString>

namespace korvia {

/// An element for the output that the system's sound server, or without a server the sound card, plays on by
/// default. The caller has a reference to it; null when there is none.
GstElement* makeDefaultDeviceSink();

/// An element for the device that the operator sees under this name; null when it is not there.
GstElement* makeNamedDeviceSink(const QString& displayName);

}  // namespace korvia
