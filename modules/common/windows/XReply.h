// A reply of the X server, freed with its owner.
#pragma once
#include <cstdlib>
#include <memory>

namespace korvia {

struct XReplyFree {
  void operator()(void* memory) const { std::free(memory); }
};

template <class T>
using XReply = std::unique_ptr<T, XReplyFree>;

}  // namespace korvia
