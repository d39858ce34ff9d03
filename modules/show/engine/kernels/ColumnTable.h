// The source of each pixel of a scaled row: for every eight pixels a window of sixteen samples, and for each
// pixel its two neighbours in that window and their weights. Made once for each size. Immutable, any thread.
#pragma once
#include <array>
#include <cstdint>
#include <vector>

namespace korvia {

class ColumnTable {
 public:
  static constexpr int kGroup = 8;
  static constexpr int kWindow = 16;
  static constexpr int kWeightBits = 6;

  struct Group {
    int offset = 0;  ///< first sample of the window
    std::array<std::uint8_t, kGroup> left{};
    std::array<std::uint8_t, kGroup> right{};
    std::array<std::uint8_t, kGroup> rightWeight{};  ///< in 1/64
  };

  ColumnTable() = default;
  /// For rows of `from` samples that become rows of `to`; both positive.
  ColumnTable(int from, int to);

  bool fits(int from, int to) const { return from_ == from && to_ == to; }
  /// False when eight pixels need more than one window: the row shrinks to less than half, or is shorter
  /// than a window.
  bool isUsable() const { return usable_; }
  int width() const { return to_; }
  const std::vector<Group>& groups() const { return groups_; }

 private:
  int from_ = 0;
  int to_ = 0;
  bool usable_ = false;
  std::vector<Group> groups_;
};

}  // namespace korvia
