// Where the operator's files lie. Stateless, usable from any thread.
#pragma once
#include <QString>

namespace korvia {

/// Absolute, without a trailing slash, and never the root of the file system: HOME, else the home of the
/// user's passwd entry, else a folder of the user below the temporary folder.
QString homeFolder();

}  // namespace korvia
