// Finds the device of the kernel module v4l2loopback, which other programs see as a camera.
#pragma once
#include <linux/videodev2.h>

#include <QString>

namespace korvia {

/// Whether the device belongs to v4l2loopback and takes pictures.
bool isVirtualCamera(const v4l2_capability& capability);

/// The path of the first one under /dev, or else of a device that may be one and that the user may not open;
/// empty without both. Any thread. Opens no real cameras, some of which switch a light on.
QString findVirtualCamera();

}  // namespace korvia
