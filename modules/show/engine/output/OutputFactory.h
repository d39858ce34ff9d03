// Makes the output of a slot. Engine thread.
#pragma once
#include <memory>

#include "OutputRequest.h"
#include "OutputSlot.h"

namespace korvia {

/// The reason when an output has no target.
inline constexpr const char* kNoTarget = "no target of the output is enabled";

/// An output with all targets of the request; null, with a log line, for a slot that cannot run. `running` is
/// the encoder of another output, which this one shares when it suits; null when there is none.
std::unique_ptr<OutputSlot> createOutputSlot(const OutputRequest& request, Janitor& janitor,
                                             std::shared_ptr<SlotEncoder> running = nullptr);

}  // namespace korvia
