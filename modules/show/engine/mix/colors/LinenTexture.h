// A procedural texture of woven linen: threads that cross over and under each other, each with a height
// drawn by a hash. Pure function, any thread.
#pragma once
#include <cstdint>

#include "engine/frame/Frame.h"

namespace korvia {

/// Writes size.width * size.height samples, row after row without a gap, from 16 in the gaps between threads
/// to 235 on the highest ones. The width of a thread is in proportion to the size, at least four samples.
void weaveLinen(FrameSize size, std::uint8_t* relief);

}  // namespace korvia
