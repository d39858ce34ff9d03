// The threads of sources, so that a show can end without waiting for one that a library holds up. A thread
// owns what it works on; whoever closes a source goes on at once. Any thread.
#pragma once
#include <QString>
#include <functional>

namespace korvia {

/// Runs the work on a thread of its own. `name` is for the log, should the thread not end.
/// Returns a number for closing it.
quint64 startSourceThread(const QString& name, std::function<void()> work);

/// Tells that the thread was asked to end. One that still runs 5 s later is logged as abandoned.
void markSourceThreadClosing(quint64 number);

/// Waits until all threads that were asked to end have ended; false when some still run. Threads that were
/// given up as abandoned are not waited for. Called when the show ends, after all sources are closed.
bool waitForClosedSources(int timeoutMs);

}  // namespace korvia
