// Where show data lies on every desk, wherever the program does. A constant, usable from any thread.
#pragma once

namespace korvia {

/// A drive path: DrivePath says which folder of this machine it is. Closes with a separator.
inline constexpr char kShowDataDrivePath[] = "D:\\KorviaVR\\code\\output\\ShowData\\";

}  // namespace korvia
