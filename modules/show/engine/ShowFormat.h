// The render format of the open show. A plain value, any thread.
#pragma once
#include "FrameRate.h"
#include "engine/frame/Frame.h"
#include "tagKorviaFormatInfo.h"

namespace korvia {

/// Limits of the sides of pictures that the engine renders or encodes.
inline constexpr int kFrameSideMin = 16;
inline constexpr int kFrameSideMax = 8192;

struct ShowFormat {
  FrameSize size{1920, 1080};
  FrameRate rate;

  /// The format that the console asks for, with odd sides rounded down, since chroma and encoders need even
  /// ones. A size or a rate out of range is logged and replaced by 1920 x 1080 or 25 frames a second.
  static ShowFormat of(const tagKorviaVideoFormat& video);
};

}  // namespace korvia
