#include "WideColorKernels.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "engine/kernels/WideColorKernels.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace korvia::HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// Luma weights and chroma divisors of BT.2020 and BT.709.
constexpr float kRed2020 = 0.2627F, kGreen2020 = 0.6780F, kBlue2020 = 0.0593F;
constexpr float kCb2020 = 1.8814F, kCr2020 = 1.4746F;
constexpr float kRed709 = 0.2126F, kGreen709 = 0.7152F, kBlue709 = 0.0722F;
constexpr float kCb709 = 1.8556F, kCr709 = 1.5748F;

/// Maps as many pixels as a vector of `D` has lanes.
template <class D>
class Pixels {
 public:
  using Vector = hn::Vec<D>;

  HWY_ATTR Pixels(const WideColorSteps& steps) : steps_(steps) {}

  HWY_ATTR void map(const std::uint16_t* y, const float* cb, const float* cr, std::uint8_t* outY,
                    float* sumCb, float* sumCr) const {
    const hn::Rebind<std::uint16_t, D> d16;
    const hn::Rebind<std::int32_t, D> d32;
    const hn::Rebind<std::uint8_t, D> d8;
    const Vector codes = hn::ConvertTo(d_, hn::PromoteTo(d32, hn::LoadU(d16, y)));
    Vector r, g, b;
    rgbOf(hn::Mul(hn::Sub(codes, set(64)), set(1.0F / 876)), hn::LoadU(d_, cb), hn::LoadU(d_, cr), r, g, b);
    if (!steps_.hdrCoded.isEmpty())
      mapTone(r, g, b);
    const Vector lightR = lookBetween(steps_.light, r);
    const Vector lightG = lookBetween(steps_.light, g);
    const Vector lightB = lookBetween(steps_.light, b);
    const float* matrix = steps_.toBt709;
    r = look(steps_.coded, hn::Sqrt(unit(sum(lightR, lightG, lightB, matrix[0], matrix[1], matrix[2]))));
    g = look(steps_.coded, hn::Sqrt(unit(sum(lightR, lightG, lightB, matrix[3], matrix[4], matrix[5]))));
    b = look(steps_.coded, hn::Sqrt(unit(sum(lightR, lightG, lightB, matrix[6], matrix[7], matrix[8]))));
    const Vector luma = sum(r, g, b, kRed709, kGreen709, kBlue709);
    hn::StoreU(hn::DemoteTo(d8, hn::NearestInt(hn::MulAdd(luma, set(219), set(16)))), d8, outY);
    add(sumCb, hn::Mul(hn::Sub(b, luma), set(224 / kCb709)));
    add(sumCr, hn::Mul(hn::Sub(r, luma), set(224 / kCr709)));
  }

 private:
  HWY_ATTR Vector set(float value) const { return hn::Set(d_, value); }
  HWY_ATTR Vector unit(Vector value) const { return hn::Min(hn::Max(value, hn::Zero(d_)), set(1)); }
  HWY_ATTR Vector sum(Vector r, Vector g, Vector b, float weightR, float weightG, float weightB) const {
    return hn::MulAdd(r, set(weightR), hn::MulAdd(g, set(weightG), hn::Mul(b, set(weightB))));
  }
  HWY_ATTR Vector look(const UnitTable& table, Vector value) const {
    return hn::GatherIndex(d_, table.data(), hn::NearestInt(hn::Mul(value, set(UnitTable::kLast))));
  }
  /// Interpolates: light that the matrix takes to nearly nothing is coded by the steepest part of the curve,
  /// where the nearest entry of the table would be codes away.
  HWY_ATTR Vector lookBetween(const UnitTable& table, Vector value) const {
    const Vector place = hn::Mul(value, set(UnitTable::kLast));
    const Vector below = hn::Min(hn::Floor(place), set(UnitTable::kLast - 1));
    const auto index = hn::ConvertTo(hn::Rebind<std::int32_t, D>(), below);
    const Vector from = hn::GatherIndex(d_, table.data(), index);
    const Vector to = hn::GatherIndex(d_, table.data() + 1, index);
    return hn::MulAdd(hn::Sub(place, below), hn::Sub(to, from), from);
  }
  HWY_ATTR void add(float* sums, Vector value) const {
    hn::StoreU(hn::Add(hn::LoadU(d_, sums), value), d_, sums);
  }

  HWY_ATTR void rgbOf(Vector y, Vector cb, Vector cr, Vector& r, Vector& g, Vector& b) const {
    r = hn::MulAdd(cr, set(kCr2020), y);
    b = hn::MulAdd(cb, set(kCb2020), y);
    g = unit(
        hn::Mul(hn::Sub(y, hn::MulAdd(r, set(kRed2020), hn::Mul(b, set(kBlue2020)))), set(1 / kGreen2020)));
    r = unit(r);
    b = unit(b);
  }

  HWY_ATTR void mapTone(Vector& r, Vector& g, Vector& b) const {
    Vector codedR = look(steps_.hdrCoded, r);
    Vector codedG = look(steps_.hdrCoded, g);
    Vector codedB = look(steps_.hdrCoded, b);
    if (!steps_.scene.isEmpty()) {
      const Vector scene = sum(look(steps_.scene, r), look(steps_.scene, g), look(steps_.scene, b), kRed2020,
                               kGreen2020, kBlue2020);
      const Vector gain = look(steps_.gain, hn::Sqrt(unit(scene)));
      codedR = hn::Mul(codedR, gain);
      codedG = hn::Mul(codedG, gain);
      codedB = hn::Mul(codedB, gain);
    }
    const Vector luma = unit(sum(codedR, codedG, codedB, kRed2020, kGreen2020, kBlue2020));
    const Vector saturation = look(steps_.saturation, luma);
    const Vector cb = hn::Mul(hn::Mul(saturation, hn::Sub(codedB, luma)), set(1 / kCb2020));
    const Vector cr = hn::Mul(hn::Mul(saturation, hn::Sub(codedR, luma)), set(1 / kCr2020));
    const Vector mapped = hn::Sub(look(steps_.luma, luma), hn::Max(hn::Mul(cr, set(0.1F)), hn::Zero(d_)));
    rgbOf(mapped, cb, cr, r, g, b);
  }

  const D d_;
  const WideColorSteps& steps_;
};

void mapWideColors(const WideColorSteps& steps, const std::uint16_t* y, const float* cb, const float* cr,
                   int width, std::uint8_t* outY, float* sumCb, float* sumCr) {
  using Wide = hn::ScalableTag<float>;
  const Pixels<Wide> many(steps);
  const Pixels<hn::CappedTag<float, 1>> one(steps);
  const int lanes = static_cast<int>(hn::Lanes(Wide()));
  int x = 0;
  for (; x + lanes <= width; x += lanes)
    many.map(y + x, cb + x, cr + x, outY + x, sumCb + x, sumCr + x);
  for (; x < width; ++x)
    one.map(y + x, cb + x, cr + x, outY + x, sumCb + x, sumCr + x);
}

}  // namespace korvia::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvia {

HWY_EXPORT(mapWideColors);

void mapWideColors(const WideColorSteps& steps, const std::uint16_t* y, const float* cb, const float* cr,
                   int width, std::uint8_t* outY, float* sumCb, float* sumCr) {
  HWY_DYNAMIC_DISPATCH(mapWideColors)(steps, y, cb, cr, width, outY, sumCb, sumCr);
}

}  // namespace korvia
#endif
