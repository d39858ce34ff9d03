// Counts the calls of the allocator on the thread that asks, whoever makes them: new, malloc, aligned_alloc.
#pragma once
#include <QtGlobal>

namespace korvia::test {

/// Calls of this thread so far. Memory that is released is not taken off.
qint64 allocationCalls();

}  // namespace korvia::test
