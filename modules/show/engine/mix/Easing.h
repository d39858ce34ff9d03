// The easing curves of transitions, by their codes. Pure, any thread.
#pragma once

namespace korvia {

inline constexpr int kEasingCount = 29;

/// Eased progress, 0 to 1, for a linear progress of 0 to 1. Codes 0 to 28: linear, then in, out, in-out and
/// out-in of quad, cubic, quart, quint, sine, expo and circ. Any other code is linear. Exact at both ends.
double easedProgress(int code, double progress);

}  // namespace korvia
