// A transition makes one picture of two. Stateless; engine thread.
#pragma once
#include "engine/frame/Frame.h"

namespace korvia {

class Transition {
 public:
  virtual ~Transition() = default;
  /// The picture at `position`, which lies strictly between 0 (all `from`) and 1 (all `to`). All three frames
  /// have the same size.
  virtual void mix(const Frame& from, const Frame& to, double position, Frame& out) const = 0;
};

}  // namespace korvia
