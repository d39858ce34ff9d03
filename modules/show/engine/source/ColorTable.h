// Maps pictures with a wide gamut or a high dynamic range to the working format: PQ, HLG, and the primaries
// of BT.2020 and P3. The tone map is method A of Report ITU-R BT.2446-1, from 1000 to 100 cd/m2; the gamut is
// mapped by a matrix and clipped in linear light (Report ITU-R BT.2407). Each curve of the mapping is a
// table. Immutable, any thread.
#pragma once
#include <gst/video/video.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>

#include "engine/frame/Frame.h"
#include "engine/kernels/WideColorKernels.h"

namespace korvia {

class ColorTable {
 public:
  /// Bits of an input sample.
  static constexpr int kDepth = 10;

  /// A planar 4:2:0 picture, 10 bit, limited range, with the matrix of BT.2020 (non-constant luminance).
  struct Picture {
    struct Plane {
      const std::uint16_t* data = nullptr;
      int strideBytes = 0;
    };
    Plane plane[3];
  };

  enum class Kind { Pq, Hlg, Bt2020, P3 };

  /// The kind of mapping that these colours need; none when they are close enough to BT.709.
  static std::optional<Kind> kindOf(const GstVideoColorimetry& colors);
  /// The tables of a kind. All holders share them, and the last one frees them.
  static std::shared_ptr<const ColorTable> of(Kind kind);
  /// Maps one colour by the formulas, without the tables: 10-bit codes in, unrounded 8-bit code values out.
  static std::array<double, 3> exact(Kind kind, const std::array<int, 3>& codes);

  /// Maps a picture of the size of `to`, with even width and height, into the planes Y, U and V of `to`.
  void apply(const Picture& from, Frame& to) const;

 private:
  explicit ColorTable(Kind kind);

  WideColorSteps steps_;
};

}  // namespace korvia
