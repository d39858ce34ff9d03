// Makes the output of a slot. Engine thread.
#pragma once
#include <memory>

#include "OutputRequest.h"
#include "OutputSlot.h"

namespace korvia {

/// The reason when an output has no target.
inline constexpr const char* kNoTarget = "no target of the output is enabled";

/// An output with all targets of the request; null, with a log line, for a slot that cannot run.
std::unique_ptr<OutputSlot> createOutputSlot(const OutputRequest& request, Janitor& janitor);

}  // namespace korvia
