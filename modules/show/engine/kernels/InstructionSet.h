// The instruction set that the kernels run with. Pure function, any thread.
#pragma once

namespace korvia {

/// The name of the current instruction set, e.g. "AVX2"; "SCALAR" or "EMU128" without vectors. Static
/// storage.
const char* instructionSetName();

}  // namespace korvia
