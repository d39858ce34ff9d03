// The folder of the show data, independent of the folder of the program. A constant, usable from any thread.
#pragma once

namespace korvia {

/// A drive path, which DrivePath maps to a folder of this machine. Ends with a separator.
inline constexpr char kShowDataDrivePath[] = "D:\\KorviaVR\\code\\output\\ShowData\\";

}  // namespace korvia
