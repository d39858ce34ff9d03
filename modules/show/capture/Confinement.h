// Takes from the program, and from all that it starts, what it does not need. Main thread, before any other
// one runs.
#pragma once
#include <QStringList>

namespace korvia {

/// No more rights by other programs, no core files, private files.
void dropRights();

/// From here on only system folders and these paths, with all that lies in them, can be read, and only the
/// current folder can be written. A page of a file therefore reads all that lies beside and below its file.
/// Returns false where the kernel cannot do that.
bool confineFiles(const QStringList& readable);

}  // namespace korvia
