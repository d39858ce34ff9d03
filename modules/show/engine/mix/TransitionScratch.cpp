#include "TransitionScratch.h"

#include <cstdlib>

namespace korvia {

namespace {

constexpr std::size_t kAlignment = 64;

}  // namespace

std::uint8_t* TransitionScratch::Bytes::grownTo(std::size_t count) {
  if (size < count || !memory) {
    size = (count / kAlignment + 1) * kAlignment;
    memory = {static_cast<std::uint8_t*>(std::aligned_alloc(kAlignment, size)), std::free};
  }
  return memory.get();
}

Frame& TransitionScratch::frame(int place, FrameSize size) {
  std::unique_ptr<Frame>& kept = frames_[static_cast<std::size_t>(place)];
  if (!kept || kept->size() != size)
    kept = std::make_unique<Frame>(size);
  return *kept;
}

std::uint8_t* TransitionScratch::bytes(int place, std::size_t count) {
  return buffers_[static_cast<std::size_t>(place)].grownTo(count);
}

std::uint8_t* TransitionScratch::tableBytes(std::size_t count) {
  return table_.grownTo(count);
}

}  // namespace korvia
