// The devices of this machine as GStreamer's providers know them. A sound server that hangs holds up the
// caller, so these functions are called on a thread that may wait. Any thread.
#pragma once
#include <gst/gst.h>

#include <QString>
#include <functional>

namespace korvia {

/// Calls `visit` with each device of these classes ("Audio/Sink") and the name of its provider. Starts
/// GStreamer; calls nothing, with a log line, when that fails.
void visitDevices(const char* classes, const std::function<void(GstDevice*, const char* provider)>& visit);

/// The name under which the operator sees the device.
QString displayNameOf(GstDevice* device);

/// An element that opens the device of this class and display name; the caller has a reference to it. Null
/// when the device is not there.
GstElement* makeDeviceElement(const char* classes, const QString& displayName);

}  // namespace korvia
