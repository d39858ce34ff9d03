// How transitions that hide the change of pictures run along the way. Pure functions, any thread.
#pragma once

namespace korvia {

/// How far a position is from both ends: 0 at them, 1 in the middle.
double depthAt(double position);

/// The weight of the second picture, 0 to 256, in a fade that keeps to where little can be made out.
int hiddenFadeWeight(double position);

}  // namespace korvia
