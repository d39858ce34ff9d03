// Makes the output of a slot. Engine thread.
#pragma once
#include <memory>

#include "engine/output/ProgramOutput.h"

namespace korvia {

/// An output that starts on its own thread, or null with a log line for a slot that cannot run.
std::unique_ptr<ProgramOutput> createProgramOutput(const OutputRequest& request);

}  // namespace korvia
