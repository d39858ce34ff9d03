// The processes of a session and the memory that they use, as the kernel tells. Any thread.
#pragma once
#include <QString>
#include <QStringList>

namespace korvia {

/// The numbers of the processes whose session this process leads.
QStringList processesOfSession(qint64 leader);

/// All that lies in memory; what processes share counts for each of them. 0 when the kernel does not tell.
qint64 sessionResidentBytes(qint64 leader);

/// What they share counts once. Takes some milliseconds for each of them.
qint64 sessionMemoryBytes(qint64 leader);

}  // namespace korvia
