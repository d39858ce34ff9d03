// Fills the show-data folder with the files that the program brings. Called before the console is created,
// any thread.
#pragma once
#include <QString>

namespace korvia {

/// Copies every file below `from` that is missing below `to`, with its folders. Existing files are not
/// changed. A copy that fails is logged and leaves no partial file. Returns the number of copies.
int copyMissingFiles(const QString& from, const QString& to);

}  // namespace korvia
