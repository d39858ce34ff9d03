// Chance that is the same at each call: numbers drawn from a seed and a place. Pure functions, any thread.
#pragma once
#include <cstdint>

namespace korvia {

/// Evenly spread from 0, included, to 1, not included.
double chanceAt(std::uint32_t seed, int x, int y);

/// Smooth noise from 0 to 1: chance at whole places, with soft slopes between.
double noiseAt(std::uint32_t seed, double x, double y);

/// Smooth noise from 0 to 1 of features of size 1 and, weaker each time, of half the size, `octaves` sizes in
/// all.
double cloudsAt(std::uint32_t seed, double x, double y, int octaves);

}  // namespace korvia
