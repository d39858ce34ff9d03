// The signal inputs of capture cards that V4L2 drives: tuner, composite and the like. Any thread.
#pragma once
#include <linux/videodev2.h>

#include <QString>
#include <vector>

namespace korvia {

/// Number of the first input that is of the kind with this name ("Composite", "SVideo", "HDMI"), by the type
/// and the names that drivers give; -1 when there is none.
int findSignalInput(const std::vector<v4l2_input>& inputs, const QString& signal);

/// Connects the device to the input of this kind. An empty name and "Default" leave the device as it is.
/// False with a reason when the device has no such input or refuses. May block.
bool selectSignalInput(const QString& deviceFile, const QString& signal, QString& reason);

}  // namespace korvia
