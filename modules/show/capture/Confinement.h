// Takes from the program, and from all that it starts, what it does not need. Main thread, before any other
// one runs.
#pragma once
#include <QStringList>

namespace korvia {

/// No more rights by other programs, no core files, private files.
void dropRights();

/// From here on only system folders and these paths can be read, and only the current folder can be written.
/// Returns false where the kernel cannot do that.
bool confineFiles(const QStringList& readable);

}  // namespace korvia
