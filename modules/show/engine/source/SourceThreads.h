// The threads of sources. A show can end while a library still holds up one of them: a thread owns what it
// works on, and closing a source does not wait for it. Any thread.
#pragma once
#include <QString>
#include <functional>

namespace korvia {

/// Runs the work on a new thread. `name` is for the log, when the thread does not end. Returns the number for
/// markSourceThreadClosing().
quint64 startSourceThread(const QString& name, std::function<void()> work);

/// Notes that the thread was asked to end. A thread that still runs 5 s later is logged as abandoned.
void markSourceThreadClosing(quint64 number);

/// Waits until all threads that were asked to end have ended, except abandoned ones; false when some still
/// run. Called when the show ends, after all sources are closed.
bool waitForClosedSources(int timeoutMs);

}  // namespace korvia
