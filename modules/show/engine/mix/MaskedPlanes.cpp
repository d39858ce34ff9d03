#include "MaskedPlanes.h"

#include <hwy/cache_control.h>

#include <algorithm>
#include <cstring>

#include "engine/kernels/RowKernels.h"
#include "engine/kernels/StreamRow.h"

namespace korvia {

namespace {

constexpr int kBlock = 64;
// Where pictures change along a row, the memory's own look-ahead begins anew at each run; so the rows that
// come are asked for in time.
constexpr int kRowsAhead = 2;

void fetch(const std::uint8_t* row, int begin, int end) {
  for (int x = begin; x < end; x += kBlock)
    hwy::Prefetch(row + x);
}

}  // namespace

MaskedPlanes::MaskedPlanes(const Frame& from, const Frame& to, bool chroma, TransitionScratch& scratch,
                           Frame& out) {
  const auto add = [&](int plane) {
    planes_[static_cast<std::size_t>(planeCount_++)] = {planeOf(from, plane), planeOf(to, plane),
                                                        writablePlaneOf(out, plane)};
  };
  add(chroma ? Frame::U : Frame::Y);
  if (chroma)
    add(Frame::V);
  else if (out.hasAlpha())
    add(Frame::A);
  width_ = planes_[0].out.width;
  runs_ = scratch.buffer<Run>(kBuffer, static_cast<std::size_t>(width_ / kBlock + 1));
}

MaskedPlanes::Kind MaskedPlanes::kindOf(const std::uint8_t* mask, int count) {
  const std::uint8_t first = mask[0];
  if (first != 0 && first != 255)
    return Kind::Mixed;
  if (count == kBlock) {
    std::uint64_t pattern = 0;
    std::memset(&pattern, first, sizeof pattern);
    std::uint64_t others = 0;
    for (int i = 0; i < kBlock; i += 8) {
      std::uint64_t eight = 0;
      std::memcpy(&eight, mask + i, sizeof eight);
      others |= eight ^ pattern;
    }
    if (others != 0)
      return Kind::Mixed;
  } else if (std::any_of(mask, mask + count, [&](std::uint8_t value) { return value != first; })) {
    return Kind::Mixed;
  }
  return first == 0 ? Kind::From : Kind::To;
}

void MaskedPlanes::findRuns() {
  runCount_ = 0;
  for (int begin = 0; begin < width_; begin += kBlock) {
    const int end = std::min(begin + kBlock, width_);
    const Kind kind = kindOf(mask_ + begin, end - begin);
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
      if (run->kind != Kind::To)
        fetch(planes.from.row(ahead), run->begin, run->end);
      if (run->kind != Kind::From)
        fetch(planes.to.row(ahead), run->begin, run->end);
      if (run->kind == Kind::Mixed)
        mixMaskedRow(from + run->begin, to + run->begin, mask_ + run->begin, out + run->begin, count);
      else
        streamRow((run->kind == Kind::From ? from : to) + run->begin, out + run->begin, count);
    }
  }
}

}  // namespace korvia
