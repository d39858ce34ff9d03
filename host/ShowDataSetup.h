// Puts what the show-data folder starts with into its place. Before the console is created, any thread.
#pragma once
#include <QString>

namespace korvia {

/// Copies every file below `from` that is not below `to` yet, with its folders. Files that are there stay
/// as they are, and a copy that fails leaves nothing behind but a log line. Returns the number of copies.
int copyMissingFiles(const QString& from, const QString& to);

}  // namespace korvia
