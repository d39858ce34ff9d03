// The source of each sample of a shrunk row: the part of the row that it covers, as three neighbours and
// their weights. It changes with every frame of a movement, so it is written into memory of the caller. Pure
// functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Up to eight samples from each of two windows of sixteen.
struct alignas(32) ShrinkGroup {
  static constexpr int kHalves = 2;
  static constexpr int kLanes = 8;  ///< of a half
  static constexpr int kWindow = 16;
  static constexpr int kTaps = 3;
  /// Set in an index, so that a look-up of bytes gives zero for the upper byte.
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

/// The samples that a part covers, in whole 1/4096 samples. The part is at least one such step long and lies
/// within 0 to `length` samples, which is positive.
struct CoveredPart {
  static constexpr int kBits = 12;
  static constexpr int kOne = 1 << kBits;

  CoveredPart(const RowPart& part, double length);

  int begin;
  int end;
  int length() const { return end - begin; }
  int first() const { return begin >> kBits; }
  int last() const { return (end - 1) >> kBits; }
  /// The covered part of one sample.
  int of(int sample) const;
};

/// Fills `groups`, which has room for `count` groups, and returns the number used. Sample i is the mean of
/// the row over one `step` from `begin` + i * `step` on, limited to 0 to `length`; `step` is at most 2. The
/// row has `samples` of them, at least sixteen; the last one is repeated.
int fillShrinkGroups(double begin, double step, double length, int samples, int count, ShrinkGroup* groups);

}  // namespace korvia
