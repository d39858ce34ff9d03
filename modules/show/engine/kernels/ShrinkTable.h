// Where each sample of a shrunk row comes from: the part of the row that the sample covers, as three
// neighbours and their weights. Made anew for every frame of a movement, hence in memory of the caller. Pure
// functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Samples of two windows of sixteen each, up to eight of each window.
struct alignas(32) ShrinkGroup {
  static constexpr int kHalves = 2;
  static constexpr int kLanes = 8;  ///< of a half
  static constexpr int kWindow = 16;
  static constexpr int kTaps = 3;
  /// Beside an index, where a look-up of bytes takes it for a zero.
  static constexpr int kZeroAbove = 0x8000;

  std::uint16_t index[kHalves * kLanes];        ///< first neighbour in the window, and kZeroAbove
  std::uint16_t firstWeight[kHalves * kLanes];  ///< of the first neighbour, in 1/256
  std::uint16_t lastWeight[kHalves * kLanes];   ///< of the third; the second one has what is missing to 256
  std::int32_t offset[kHalves];                 ///< the window's first sample
  std::int32_t count[kHalves];                  ///< samples in use
};

/// Part of a row, in samples.
struct RowPart {
  double begin = 0;
  double end = 0;
};

/// The samples that a part covers, as whole numbers of 1/4096 sample. At least one such step long and inside
/// 0 to `length` samples, which is positive.
struct CoveredPart {
  static constexpr int kBits = 12;
  static constexpr int kOne = 1 << kBits;

  CoveredPart(const RowPart& part, double length);

  int begin;
  int end;
  int length() const { return end - begin; }
  int first() const { return begin >> kBits; }
  int last() const { return (end - 1) >> kBits; }
  /// How much of one sample is covered.
  int of(int sample) const;
};

/// Fills `groups`, which has room for one of them for each of the `count` samples, and returns how many it
/// used. The sample number i is the mean of the row from `begin` + i * `step` on, one `step` long, as far as
/// that lies in 0 to `length`; `step` at most 2. The row has `samples` of them, sixteen at least; beyond
/// those lies the last one.
int fillShrinkGroups(double begin, double step, double length, int samples, int count, ShrinkGroup* groups);

}  // namespace korvia
