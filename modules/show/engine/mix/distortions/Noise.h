// Chance that is the same at each call: numbers drawn from a seed and a place. Any thread.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvia {

/// Evenly spread from 0, included, to 1, not included.
double chanceAt(std::uint32_t seed, int x, int y);

/// Smooth noise of features of size 1 and, weaker each time, of half the size. It remembers where it was
/// asked last: neighbours cost little.
class CloudNoise {
 public:
  explicit CloudNoise(std::uint32_t seed) : seed_(seed) {}
  /// 0 to 1; x and y are not negative.
  double at(double x, double y);

 private:
  static constexpr std::size_t kOctaves = 5;
  /// Where the noise of one size is between four values of chance.
  struct Square {
    int column = -1;
    int row = -1;
    std::array<double, 4> corners{};
  };

  std::uint32_t seed_;
  std::array<Square, kOctaves> squares_;
};

/// Chance for a number of directions around a point.
class ChanceRing {
 public:
  ChanceRing(std::uint32_t seed, int directions);
  /// 0 to 1: between the nearest directions, in straight lines or in soft ones. `turn` is how far around the
  /// direction is, 0 to 1.
  double straightAt(double turn) const;
  double softAt(double turn) const;

 private:
  struct Place {
    std::size_t before;
    double beyond;
  };
  Place placeOf(double turn) const;
  double between(const Place& place, double weight) const;

  // The first value stands once more behind the last.
  std::vector<double> values_;
};

}  // namespace korvia
