// The sound of a demo film: a soft pad of chords, and a 1 kHz beep at each full second.
#pragma once

#include <vector>

namespace korvia {

class DemoSound {
 public:
  // `variant` chooses the chords; numbers as in DemoPicture.
  explicit DemoSound(int variant);

  // `count` samples per channel from sample `first` on, interleaved left and right, -1 to 1. `first` is 0 or
  // more and may lie beyond the end of the film, which is a loop.
  std::vector<float> samples(int first, int count) const;

 private:
  const double (*chords_)[3];
};

}  // namespace korvia
