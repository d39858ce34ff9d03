// Which of the machine's instruction sets the kernels run with. Pure function, any thread.
#pragma once

namespace korvia {

/// The name of the instruction set that is chosen now, e.g. "AVX2"; "SCALAR" or "EMU128" without vectors. Of
/// static life.
const char* instructionSetName();

}  // namespace korvia
