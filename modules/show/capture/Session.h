// The processes of the program's session: itself and, for a page, those that draw it. Main thread.
#pragma once
#include <QString>

namespace korvia {

/// The memory that all of them use, in bytes; shared memory counts by its share.
qint64 sessionMemoryBytes();

/// Ends all of them, and this process last. Removes the current folder, which is the program's own.
[[noreturn]] void endSession();

}  // namespace korvia
