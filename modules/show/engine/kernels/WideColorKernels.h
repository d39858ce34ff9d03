// Kernel that maps pixels of a wide gamut or a high dynamic range to BT.709. Pure function, any thread.
#pragma once
#include <cstdint>
#include <vector>

namespace korvia {

/// A function over 0..1, in equal steps.
class UnitTable {
 public:
  static constexpr int kLast = 4095;

  UnitTable() = default;
  template <typename Function>
  explicit UnitTable(Function function) : values_(kLast + 1) {
    for (int i = 0; i <= kLast; ++i)
      values_[static_cast<std::size_t>(i)] = static_cast<float>(function(static_cast<double>(i) / kLast));
  }
  bool isEmpty() const { return values_.empty(); }
  const float* data() const { return values_.data(); }

 private:
  std::vector<float> values_;
};

/// The steps of the mapping. "Coded" values have gamma 2.4. Without a tone map `hdrCoded` is empty, and so
/// are the tables up to `saturation`.
struct WideColorSteps {
  UnitTable hdrCoded;     ///< code value to coded light, before the system gamma of HLG
  UnitTable scene;        ///< HLG: code value to scene light
  UnitTable gain;         ///< HLG: square root of the luma of scene light to the gain of coded light
  UnitTable luma;         ///< coded luma of HDR to that of SDR
  UnitTable saturation;   ///< coded luma of HDR to the factor of the colour differences
  UnitTable light;        ///< coded value to light
  UnitTable coded;        ///< square root of light to coded value
  float toBt709[9] = {};  ///< matrix in light, row by row
};

/// Maps `width` pixels: 10-bit luma codes, and colour differences of -0.5 to 0.5 with the matrix of BT.2020.
/// Luma goes to `outY`; colour differences of BT.709, in 8-bit codes around 0, are added to `sumCb` and
/// `sumCr`.
void mapWideColors(const WideColorSteps& steps, const std::uint16_t* y, const float* cb, const float* cr,
                   int width, std::uint8_t* outY, float* sumCb, float* sumCr);

}  // namespace korvia
