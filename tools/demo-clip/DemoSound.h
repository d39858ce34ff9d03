// The sound of a demo film: a soft pad of chords, and a 1 kHz beep at each full second.
#pragma once

#include <vector>

namespace korvia {

class DemoSound {
 public:
  // `variant` as in DemoPicture: it chooses the chords.
  explicit DemoSound(int variant);

  // `count` samples per channel from sample `first` on, interleaved left and right, -1 to 1. The film
  // is a loop, so any `first` of 0 or more is good.
  std::vector<float> samples(int first, int count) const;

 private:
  const double (*chords_)[3];
};

}  // namespace korvia
