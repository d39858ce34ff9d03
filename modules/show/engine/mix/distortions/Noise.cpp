#include "Noise.h"

#include <algorithm>

#include "engine/mix/Curves.h"
#include "engine/mix/SeededRandom.h"

namespace korvia {

namespace {

double mixed(double a, double b, double weight) {
  return a + (b - a) * weight;
}

}  // namespace

double CloudNoise::at(double x, double y) {
  constexpr double kWeaker = 0.55;
  double sum = 0;
  double all = 0;
  double strength = 1;
  std::uint32_t seed = seed_;
  for (Square& square : squares_) {
    const int column = static_cast<int>(x);
    const int row = static_cast<int>(y);
    if (column != square.column || row != square.row)
      square = {column,
                row,
                {seededRandom(seed, column, row), seededRandom(seed, column + 1, row),
                 seededRandom(seed, column, row + 1), seededRandom(seed, column + 1, row + 1)}};
    const double right = smoothStep(x - column);
    const double top = mixed(square.corners[0], square.corners[1], right);
    const double bottom = mixed(square.corners[2], square.corners[3], right);
    sum += strength * mixed(top, bottom, smoothStep(y - row));
    all += strength;
    strength *= kWeaker;
    x *= 2;
    y *= 2;
    ++seed;
  }
  return sum / all;
}

DirectionNoise::DirectionNoise(std::uint32_t seed, int directions)
    : values_(static_cast<std::size_t>(directions) + 1) {
  for (int i = 0; i < directions; ++i)
    values_[static_cast<std::size_t>(i)] = seededRandom(seed, i, directions);
  values_.back() = values_.front();
}

DirectionNoise::Place DirectionNoise::placeOf(double turn) const {
  const double place = turn * static_cast<double>(values_.size() - 1);
  const std::size_t before = std::min(static_cast<std::size_t>(place), values_.size() - 2);
  return {before, place - static_cast<double>(before)};
}

double DirectionNoise::between(const Place& place, double weight) const {
  return mixed(values_[place.before], values_[place.before + 1], weight);
}

double DirectionNoise::linearAt(double turn) const {
  const Place place = placeOf(turn);
  return between(place, place.beyond);
}

double DirectionNoise::smoothAt(double turn) const {
  const Place place = placeOf(turn);
  return between(place, smoothStep(place.beyond));
}

}  // namespace korvia
