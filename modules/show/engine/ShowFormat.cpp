#include "ShowFormat.h"

#include "engine/EngineLog.h"

namespace korvia {

namespace {

bool isInRange(int side) {
  return side >= kFrameSideMin && side <= kFrameSideMax;
}

}  // namespace

ShowFormat ShowFormat::of(const tagKorviaVideoFormat& video) {
  ShowFormat format;
  const FrameSize size{video.width, video.height};
  if (isInRange(size.width) && isInRange(size.height))
    format.size = {size.width & ~1, size.height & ~1};
  else
    qCWarning(logEngine, "render size %d x %d is out of range, taking 1920 x 1080", size.width, size.height);
  const FrameRate rate{video.fpsNumerator, video.fpsDenominator};
  if (rate.isValid())
    format.rate = rate;
  else
    qCWarning(logEngine, "render rate %lld / %lld is out of range, taking 25",
              static_cast<long long>(rate.numerator), static_cast<long long>(rate.denominator));
  return format;
}

}  // namespace korvia
