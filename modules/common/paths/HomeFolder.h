// The home folder of the operator. Stateless, usable from any thread.
#pragma once
#include <QString>

namespace korvia {

/// Absolute, without a trailing slash, never the root of the file system: HOME, else the home in the passwd
/// entry of the user, else a folder of the user below the temporary folder.
QString homeFolder();

}  // namespace korvia
