// The end of the program's session: of itself and, for a page, of the processes that draw it. Any thread.
#pragma once

namespace korvia {

/// Ends all of them, and this process last. Removes the current folder, which is the program's own.
[[noreturn]] void endSession();

}  // namespace korvia
