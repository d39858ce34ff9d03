// The relief of woven linen, made by a formula: threads that cross over and under each other, each a little
// brighter or darker than the next. Pure function, any thread.
#pragma once
#include <cstdint>

#include "engine/frame/Frame.h"

namespace korvia {

/// Writes size.width * size.height samples, row after row without a gap, from 16 in the gaps between threads
/// to 235 on the highest ones. The threads are as wide as suits the size of the picture, four samples at
/// least.
void weaveLinen(FrameSize size, std::uint8_t* relief);

}  // namespace korvia
