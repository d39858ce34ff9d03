// How a delay is stored: how many frames it has, in memory or in a file, and in which size. Pure function,
// any thread.
#pragma once
#include <cstdint>

#include "FrameRate.h"
#include "engine/frame/Frame.h"

namespace korvia {

/// What delays may use, each of them.
struct DelayLimits {
  std::int64_t memoryBytes = 160LL * 1024 * 1024;
  std::int64_t fileBytes = 4LL * 1024 * 1024 * 1024;
  /// What the file leaves free on its disk.
  std::int64_t reserveBytes = 512LL * 1024 * 1024;
};

struct DelayPlan {
  enum class Store { Memory, File };
  /// Half has half the width and half the height.
  enum class PictureScale { Full, Half };

  Store store = Store::Memory;
  PictureScale scale = PictureScale::Full;
  /// From the tick of a picture to the one in which it is shown.
  int frames = 0;
  /// Samples of one channel that `frames` frames have.
  std::int64_t samples = 0;
  /// Pictures that the file has room for; 0 for memory.
  int places = 0;
  /// Bytes of each; 0 for memory.
  std::int64_t placeBytes = 0;
  /// Whether `frames` is less than what was asked for.
  bool isShortened = false;
};

/// The longest delay, in milliseconds.
inline constexpr int kLongestDelayMs = 10 * 60 * 1000;

/// A picture stays equal to the one before for at most this number of frames until it is written again.
inline constexpr int kDelayReuseFrames = 16;

/// The plan for a delay of 0 to kLongestDelayMs; values outside count as the nearest one. A delay is at least
/// as long as a block of sound, so that the order does not matter in which the mixer pulls the channels. A
/// picture of the delay in a file has its full size when all of them fit into the limit, else half of it; a
/// delay that does not fit even then is shortened.
DelayPlan planDelay(FrameSize size, FrameRate rate, int delayMs, const DelayLimits& limits);

}  // namespace korvia
