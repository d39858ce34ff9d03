// Smooth noise made from seeded random numbers. Objects belong to one thread.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvia {

/// Value noise of five octaves: features of size 1 and, each octave weaker, of half the size. It keeps the
/// random numbers of the square that it was asked for last, so that calls for neighbours are cheap.
class CloudNoise {
 public:
  explicit CloudNoise(std::uint32_t seed) : seed_(seed) {}
  /// 0 to 1; x and y are not negative.
  double at(double x, double y);

 private:
  static constexpr std::size_t kOctaves = 5;
  /// The random numbers at the corners of the square that one octave was last asked for.
  struct Square {
    int column = -1;
    int row = -1;
    std::array<double, 4> corners{};
  };

  std::uint32_t seed_;
  std::array<Square, kOctaves> squares_;
};

/// A random number for each of a number of directions around a point, interpolated between them.
class DirectionNoise {
 public:
  DirectionNoise(std::uint32_t seed, int directions);
  /// 0 to 1, interpolated linearly or smoothly between the two nearest directions. `turn` is the direction as
  /// a part of a full turn, 0 to 1.
  double linearAt(double turn) const;
  double smoothAt(double turn) const;

 private:
  struct Place {
    std::size_t before;
    double beyond;
  };
  Place placeOf(double turn) const;
  double between(const Place& place, double weight) const;

  // The first value is repeated after the last, so that interpolation needs no wrap-around.
  std::vector<double> values_;
};

}  // namespace korvia
