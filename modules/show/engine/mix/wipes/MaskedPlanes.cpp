#include "MaskedPlanes.h"

#include <algorithm>

#include "engine/kernels/FetchAhead.h"
#include "engine/kernels/MaskKernels.h"
#include "engine/kernels/RowKernels.h"

namespace korvia {

namespace {

constexpr std::uint8_t kFrom = 0;
constexpr std::uint8_t kTo = 255;
// At each run the hardware prefetcher starts again, so the rows that follow are prefetched explicitly.
constexpr int kRowsAhead = 4;

}  // namespace

MaskedPlanes::MaskedPlanes(const Frame& from, const Frame& to, PlaneGroup group, TransitionScratch& scratch,
                           Frame& out) {
  const auto add = [&](int plane) {
    planes_[static_cast<std::size_t>(planeCount_++)] = {planeOf(from, plane), planeOf(to, plane),
                                                        writablePlaneOf(out, plane)};
  };
  add(group == PlaneGroup::Chroma ? Frame::U : Frame::Y);
  if (group == PlaneGroup::Chroma)
    add(Frame::V);
  width_ = planes_[0].out.width;
  const auto blocks = static_cast<std::size_t>(width_) / kMaskBlock + 1;
  kinds_ = scratch.buffer<std::uint8_t>(kFirstBuffer, blocks);
  runs_ = scratch.buffer<Run>(kFirstBuffer + 1, blocks);
}

void MaskedPlanes::findRuns() {
  maskBlockKinds(mask_, width_, kinds_);
  runCount_ = 0;
  for (int begin = 0; begin < width_; begin += kMaskBlock) {
    const std::uint8_t kind = kinds_[begin / kMaskBlock];
    const int end = std::min(begin + kMaskBlock, width_);
    if (runCount_ > 0 && runs_[runCount_ - 1].kind == kind)
      runs_[runCount_ - 1].end = end;
    else
      runs_[runCount_++] = {begin, end, kind};
  }
}

void MaskedPlanes::mixRow(int y, const std::uint8_t* mask) {
  if (mask) {
    mask_ = mask;
    findRuns();
  }
  for (int i = 0; i < planeCount_; ++i) {
    const Planes& planes = planes_[static_cast<std::size_t>(i)];
    const std::uint8_t* from = planes.from.row(y);
    const std::uint8_t* to = planes.to.row(y);
    std::uint8_t* out = planes.out.row(y);
    const int ahead = std::min(y + kRowsAhead, planes.out.height - 1);
    for (const Run* run = runs_; run < runs_ + runCount_; ++run) {
      const int count = run->end - run->begin;
      if (run->kind != kTo)
        fetchAhead(planes.from.row(ahead) + run->begin, count);
      if (run->kind != kFrom)
        fetchAhead(planes.to.row(ahead) + run->begin, count);
      if (run->kind == kFrom || run->kind == kTo)
        copyRowNonTemporal((run->kind == kFrom ? from : to) + run->begin, out + run->begin, count);
      else
        mixMaskedRow(from + run->begin, to + run->begin, mask_ + run->begin, out + run->begin, count);
    }
  }
}

}  // namespace korvia
