// Maps pictures of a wide gamut or a high dynamic range to the working format: PQ, HLG, and the primaries of
// BT.2020 and P3. The tone map is method A of Report ITU-R BT.2446-1, from 1000 to 100 cd/m2; the gamut is
// mapped by matrix and clip in linear light (Report ITU-R BT.2407). All of it stands in one table over luma
// and chroma codes, which is interpolated. Immutable, any thread.
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
  /// Bits of a sample that goes in.
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

  /// What the colours need; none when they are near enough to BT.709's.
  static std::optional<Kind> kindOf(const GstVideoColorimetry& colors);
  /// The table, made once while somebody holds it.
  static std::shared_ptr<const ColorTable> of(Kind kind);
  /// One colour by the formulas themselves: 10-bit codes in, 8-bit code values out, not rounded.
  static std::array<double, 3> exact(Kind kind, const std::array<int, 3>& codes);

  /// Maps a picture of the frame's size, which is even. Planes Y, U and V of `to` are written.
  void apply(const Picture& from, Frame& to) const;

 private:
  explicit ColorTable(Kind kind);
  /// Of a chroma cell: the first of its four columns, and their weights.
  struct ChromaPlace;
  ChromaPlace chromaPlace(int u, int v) const;

  std::vector<std::int16_t> luma_;    // [v][u][y]
  std::vector<std::int16_t> chroma_;  // [v][u][y][2]
};

}  // namespace korvia
