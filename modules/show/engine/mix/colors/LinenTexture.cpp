#include "LinenTexture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "engine/mix/SeededRandom.h"

namespace korvia {

namespace {

constexpr double kThreadsAcross = 84;
constexpr double kThreadWidthMin = 4;
// Heights in 1/256.
constexpr int kOne = 256;
constexpr int kThreadDifference = 70;

/// The thread that crosses an axis of the picture at a sample: the height of its profile there, the height
/// that the threads along the axis have where they cross it, and its own height.
struct Thread {
  bool odd = false;
  int across = 0;
  int along = 0;
  int height = 0;
};

/// The height of a thread: a hash, so that it is the same at each call.
int heightOf(int thread, std::uint32_t axis) {
  return kOne - static_cast<int>(hashBits(static_cast<std::uint32_t>(thread) * 2 + axis) % kThreadDifference);
}

std::vector<Thread> threadsAlong(int length, double width, std::uint32_t axis) {
  std::vector<Thread> threads(static_cast<std::size_t>(length));
  for (int i = 0; i < length; ++i) {
    const double place = (i + 0.5) / width;
    const int thread = static_cast<int>(place);
    const double fromMiddle = 2 * (place - thread) - 1;
    Thread& at = threads[static_cast<std::size_t>(i)];
    at.odd = thread % 2 != 0;
    at.across = static_cast<int>(std::lround(kOne * (1 - fromMiddle * fromMiddle)));
    at.along = static_cast<int>(std::lround(kOne * (1 - 0.6 * fromMiddle * fromMiddle)));
    at.height = heightOf(thread, axis);
  }
  return threads;
}

}  // namespace

void weaveLinen(FrameSize size, std::uint8_t* relief) {
  const double width = std::max(kThreadWidthMin, std::min(size.width, size.height) / kThreadsAcross);
  const std::vector<Thread> warp = threadsAlong(size.width, width, 0);
  const std::vector<Thread> weft = threadsAlong(size.height, width, 1);
  for (const Thread& row : weft)
    for (const Thread& column : warp) {
      const int height = row.odd == column.odd ? column.across * row.along / kOne * column.height
                                               : row.across * column.along / kOne * row.height;
      *relief++ = static_cast<std::uint8_t>(16 + height * 219 / (kOne * kOne));
    }
}

}  // namespace korvia
