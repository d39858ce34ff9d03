// Maps pictures with a wide gamut or a high dynamic range to the working format: PQ, HLG, and the primaries
// of BT.2020 and P3. The tone map is method A of Report ITU-R BT.2446-1, from 1000 to 100 cd/m2; the gamut is
// mapped by a matrix and clipped in linear light (Report ITU-R BT.2407). One table over luma and chroma codes
// holds the whole mapping, and values between its nodes are interpolated. Immutable, any thread.
#pragma once
#include <gst/video/video.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "engine/frame/Frame.h"

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

  /// The kind of table that maps these colours; none when they are close enough to BT.709.
  static std::optional<Kind> kindOf(const GstVideoColorimetry& colors);
  /// The table of a kind. All holders share it, and the last one frees it.
  static std::shared_ptr<const ColorTable> of(Kind kind);
  /// Maps one colour by the formulas, without the table: 10-bit codes in, unrounded 8-bit code values out.
  static std::array<double, 3> exact(Kind kind, const std::array<int, 3>& codes);

  /// Maps a picture of the size of `to`, with even width and height, into the planes Y, U and V of `to`.
  void apply(const Picture& from, Frame& to) const;

 private:
  explicit ColorTable(Kind kind);
  /// The four columns of nodes around a pair of chroma values, and their weights.
  struct ChromaPlace;
  ChromaPlace chromaPlace(int u, int v) const;

  std::vector<std::int16_t> luma_;    // [v][u][y]
  std::vector<std::int16_t> chroma_;  // [v][u][y][2]
};

}  // namespace korvia
