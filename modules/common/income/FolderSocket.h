// Unix sockets in a folder, of any length of its path: sun_path takes 107 bytes, so the folder is named by
// its descriptor. Stateless, usable from any thread.
#pragma once
#include <QString>

namespace korvia {

/// A descriptor of the folder, closed on exec; the caller owns it. Negative errno on failure.
int openFolder(const QString& path);

/// A socket that listens under `name` in the folder, closed on exec; the caller owns it. A socket file that
/// an ended program left there is replaced. Negative errno on failure.
int listenInFolder(int folder, const char* name);

/// A connected socket that does not block, closed on exec; the caller owns it. Negative errno on failure.
int connectInFolder(int folder, const char* name);

}  // namespace korvia
