#include "BandWipe.h"

#include "engine/kernels/MaskKernels.h"
#include "engine/mix/SeededRandom.h"
#include "engine/mix/wipes/CellJoin.h"

namespace korvia {

namespace {

constexpr int kSlats = 12;
constexpr int kBars = 48;
constexpr double kNarrowest = 4;
/// Part of the take during which one bar fades in.
constexpr double kBarFade = 0.15;

int divisions(double length, int most) {
  return std::clamp(static_cast<int>(length / kNarrowest), 1, most);
}

/// Each row is the coverage across, limited to the coverage down at that row.
class BandMask {
 public:
  BandMask(Band across, Band down, const PlaneGrid& grid, const MixPoint& point, TransitionScratch& scratch)
      : down_(down),
        grid_(grid),
        point_(point),
        columns_(scratch.buffer<std::uint8_t>(0, static_cast<std::size_t>(grid.width))),
        mask_(scratch.buffer<std::uint8_t>(1, static_cast<std::size_t>(grid.width))) {
    const double feather = featherOf(grid.size);
    for (int x = 0; x < grid.width; ++x)
      columns_[x] = maskOf(across({grid.x(x), static_cast<double>(grid.size.width), feather, point}));
  }

  const std::uint8_t* row(int y) {
    const double height = grid_.size.height;
    const std::uint8_t most = maskOf(down_({grid_.y(y), height, featherOf(grid_.size), point_}));
    if (most == last_)
      return nullptr;
    last_ = most;
    if (most == 255)
      return columns_;
    cappedMaskRow(columns_, most, mask_, grid_.width);
    return mask_;
  }

 private:
  Band down_;
  PlaneGrid grid_;
  MixPoint point_;
  std::uint8_t* columns_;
  std::uint8_t* mask_;
  int last_ = -1;
};

}  // namespace

double everywhere(const BandPlace& /*at*/) {
  return 1;
}

double fromStart(const BandPlace& at) {
  return swept(at.point.position, at.place, at.length, at.feather);
}

double fromEnd(const BandPlace& at) {
  return swept(at.point.position, at.length - at.place, at.length, at.feather);
}

double fromMiddle(const BandPlace& at) {
  const double half = at.length / 2;
  return swept(at.point.position, std::abs(at.place - half), half, at.feather);
}

double fromBothEnds(const BandPlace& at) {
  const double half = at.length / 2;
  return swept(at.point.position, half - std::abs(at.place - half), half, at.feather);
}

double inSlats(const BandPlace& at) {
  const int count = divisions(at.length, kSlats);
  const double slat = at.length / count;
  const double feather = std::min(at.feather / slat, 0.25);
  return joined(at.place / slat, count, feather,
                [&](int, double along) { return swept(at.point.position, along, 1, feather); });
}

double inRandomBars(const BandPlace& at) {
  const int count = divisions(at.length, kBars);
  const double bar = at.length / count;
  const Shuffle order(count, at.point.seed);
  return joined(at.place / bar, count, std::min(at.feather / bar, 0.5), [&](int index, double) {
    return swept(at.point.position, order.place(index), std::max(1, count - 1), kBarFade * count);
  });
}

double BandWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const double feather = featherOf(size);
  return std::min(across_({x, static_cast<double>(size.width), feather, point}),
                  down_({y, static_cast<double>(size.height), feather, point}));
}

void BandWipe::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                   Frame& out) const {
  mixByMask(from, to, scratch, out,
            [&](const PlaneGrid& grid) { return BandMask(across_, down_, grid, point, scratch); });
}

}  // namespace korvia
