#include "SoundKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/SoundKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

#ifndef KORVIA_INTERPOLATION_TABLE
#define KORVIA_INTERPOLATION_TABLE
namespace korvia {

constexpr int kPhases = 4;
constexpr int kTapsOfPhase = 2 * kInterpolationReach;

/// For each quarter between two samples the weights of the twelve samples around.
using InterpolationTable = std::array<std::array<float, kTapsOfPhase>, kPhases - 1>;

inline const InterpolationTable& interpolationTable() {
  static const InterpolationTable table = [] {
    InterpolationTable made{};
    constexpr double kPi = 3.14159265358979323846;
    for (int phase = 1; phase < kPhases; ++phase)
      for (int tap = 0; tap < kTapsOfPhase; ++tap) {
        // Distance of the sample from the point, in samples.
        const double distance = tap - (kInterpolationReach - 1) - static_cast<double>(phase) / kPhases;
        const double window = 0.5 * (1 + std::cos(kPi * distance / kInterpolationReach));
        made[phase - 1][tap] = static_cast<float>(window * std::sin(kPi * distance) / (kPi * distance));
      }
    return made;
  }();
  return table;
}

}  // namespace korvia
#endif

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

namespace {

using Floats = hn::ScalableTag<float>;
using Ints = hn::RebindToSigned<Floats>;
constexpr Floats kFloats;
constexpr Ints kInts;

/// The gain of sample i is from + step * (i + 1).
struct Ramp {
  Ramp(float begin, float end, int count)
      : from(begin), step(count > 0 ? (end - begin) / static_cast<float>(count) : 0) {}
  float one(int i) const { return from + step * static_cast<float>(i + 1); }
  HWY_ATTR hn::Vec<Floats> many(int i) const {
    return hn::MulAdd(hn::Set(kFloats, step), hn::Iota(kFloats, static_cast<float>(i + 1)),
                      hn::Set(kFloats, from));
  }

  float from;
  float step;
};

}  // namespace

void scaleRamped(float* samples, float from, float to, int count) {
  const Ramp gain(from, to, count);
  const int lanes = static_cast<int>(hn::Lanes(kFloats));
  int i = 0;
  for (; i + lanes <= count; i += lanes)
    hn::StoreU(hn::Mul(hn::LoadU(kFloats, samples + i), gain.many(i)), kFloats, samples + i);
  for (; i < count; ++i)
    samples[i] *= gain.one(i);
}

void addRamped(const float* in, float from, float to, float* HWY_RESTRICT out, int count) {
  const Ramp gain(from, to, count);
  const int lanes = static_cast<int>(hn::Lanes(kFloats));
  int i = 0;
  for (; i + lanes <= count; i += lanes)
    hn::StoreU(hn::MulAdd(hn::LoadU(kFloats, in + i), gain.many(i), hn::LoadU(kFloats, out + i)), kFloats,
               out + i);
  for (; i < count; ++i)
    out[i] += in[i] * gain.one(i);
}

// Without its sign a float that is larger has larger bits, and one that is no number has the largest.
float peakOf(const float* samples, int count) {
  constexpr std::int32_t kMagnitude = 0x7FFF'FFFF;
  const int lanes = static_cast<int>(hn::Lanes(kFloats));
  auto most = hn::Zero(kInts);
  int i = 0;
  for (; i + lanes <= count; i += lanes) {
    const auto bits = hn::BitCast(kInts, hn::LoadU(kFloats, samples + i));
    most = hn::Max(most, hn::And(bits, hn::Set(kInts, kMagnitude)));
  }
  std::int32_t peak = hn::GetLane(hn::MaxOfLanes(kInts, most));
  for (; i < count; ++i)
    peak = std::max(peak, std::bit_cast<std::int32_t>(samples[i]) & kMagnitude);
  return std::bit_cast<float>(peak);
}

void interpolatedPeaks(const float* samples, float* HWY_RESTRICT peaks, int count) {
  const InterpolationTable& table = interpolationTable();
  const int lanes = static_cast<int>(hn::Lanes(kFloats));
  const auto magnitudeAt = [samples](int i) HWY_ATTR { return hn::Abs(hn::LoadU(kFloats, samples + i)); };
  int i = 0;
  for (; i + lanes <= count; i += lanes) {
    auto most = hn::Max(hn::LoadU(kFloats, peaks + i), hn::Max(magnitudeAt(i), magnitudeAt(i + 1)));
    for (const auto& weights : table) {
      auto sum = hn::Zero(kFloats);
      for (int tap = 0; tap < kTapsOfPhase; ++tap)
        sum = hn::MulAdd(hn::Set(kFloats, weights[tap]),
                         hn::LoadU(kFloats, samples + i + tap - (kInterpolationReach - 1)), sum);
      most = hn::Max(most, hn::Abs(sum));
    }
    hn::StoreU(most, kFloats, peaks + i);
  }
  for (; i < count; ++i) {
    float most = std::max({peaks[i], std::abs(samples[i]), std::abs(samples[i + 1])});
    for (const auto& weights : table) {
      float sum = 0;
      for (int tap = 0; tap < kTapsOfPhase; ++tap)
        sum += weights[tap] * samples[i + tap - (kInterpolationReach - 1)];
      most = std::max(most, std::abs(sum));
    }
    peaks[i] = most;
  }
}

void interleave16(const float* left, const float* right, std::int16_t* HWY_RESTRICT out, int count) {
  static constexpr float kFull = 32767;
  const auto rounded = [](float sample) {
    return static_cast<std::int16_t>(std::lrint(std::clamp(sample * kFull, -kFull, kFull)));
  };
  int i = 0;
// A scalar target cannot interleave registers.
#if HWY_TARGET != HWY_SCALAR
  const hn::Rebind<std::int16_t, Floats> halves;
  const auto roundedAt = [&](const float* samples) HWY_ATTR {
    const auto limited = hn::Clamp(hn::Mul(hn::LoadU(kFloats, samples), hn::Set(kFloats, kFull)),
                                   hn::Set(kFloats, -kFull), hn::Set(kFloats, kFull));
    return hn::DemoteTo(halves, hn::NearestInt(limited));
  };
  const int lanes = static_cast<int>(hn::Lanes(kFloats));
  for (; i + lanes <= count; i += lanes)
    hn::StoreInterleaved2(roundedAt(left + i), roundedAt(right + i), halves, out + 2 * i);
#endif
  for (; i < count; ++i) {
    out[2 * i] = rounded(left[i]);
    out[2 * i + 1] = rounded(right[i]);
  }
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(scaleRamped);
HWY_EXPORT(addRamped);
HWY_EXPORT(peakOf);
HWY_EXPORT(interpolatedPeaks);
HWY_EXPORT(interleave16);

void scaleRamped(float* samples, float from, float to, int count) {
  HWY_DYNAMIC_DISPATCH(scaleRamped)(samples, from, to, count);
}

void addRamped(const float* in, float from, float to, float* out, int count) {
  HWY_DYNAMIC_DISPATCH(addRamped)(in, from, to, out, count);
}

float peakOf(const float* samples, int count) {
  return HWY_DYNAMIC_DISPATCH(peakOf)(samples, count);
}

void interpolatedPeaks(const float* samples, float* peaks, int count) {
  HWY_DYNAMIC_DISPATCH(interpolatedPeaks)(samples, peaks, count);
}

void interleave16(const float* left, const float* right, std::int16_t* out, int count) {
  HWY_DYNAMIC_DISPATCH(interleave16)(left, right, out, count);
}

}  // namespace korvia
#endif
