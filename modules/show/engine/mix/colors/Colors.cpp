#include "Colors.h"

#include <algorithm>
#include <cmath>

#include "LinenTexture.h"
#include "engine/frame/PlaneView.h"
#include "engine/kernels/ColorKernels.h"
#include "engine/kernels/RowKernels.h"
#include "engine/mix/Curves.h"

namespace korvia {

namespace {

constexpr int kBlackLuma = 16;
constexpr int kWhiteLuma = 235;
constexpr int kNoChroma = 128;

/// Places of the scratch.
enum Place { MaskRows, FromRows, ToRows, WorkRow };

/// 0 up to `begin`, 1 from `end` on, smooth between.
double ramp(double position, double begin, double end) {
  return smoothStep((position - begin) / (end - begin));
}

/// Progress that is fast at first: most pictures have few very bright samples, so a threshold that fell at a
/// constant speed would change nothing for a long time.
double easedShare(double position, double end) {
  const double t = std::clamp(position / end, 0.0, 1.0);
  return t * (3 - t) / 2;
}

int weightOf(double share, int full) {
  return static_cast<int>(std::lround(share * full));
}

/// Threshold of thresholdRow() that gives 0 everywhere at share 0 and 255 everywhere at share 1.
int thresholdAt(double share, int gain) {
  const int nothing = gain * kWhiteLuma;
  const int everything = gain * kBlackLuma - 255;
  return nothing - weightOf(share, nothing - everything);
}

/// Memory for `rows` rows of `width` samples without a gap.
std::uint8_t* rowsIn(TransitionScratch& scratch, Place place, int width, int rows = 1) {
  return scratch.buffer<std::uint8_t>(place,
                                      static_cast<std::size_t>(width) * static_cast<std::size_t>(rows));
}

/// Calls luma(y, place) for each luma row, where `place` is 0 or 1 in the pair that shares a chroma row, and
/// after each pair chroma(y, lower), where `lower` is the place of the pair's second row: 0 where the last
/// row of an odd height has no partner.
template <typename Luma, typename Chroma>
void forRowPairs(const Frame& frame, Luma luma, Chroma chroma) {
  for (int y = 0; y < frame.size().chromaHeight(); ++y) {
    const int lower = 2 * y + 1 < frame.height() ? 1 : 0;
    for (int place = 0; place <= lower; ++place)
      luma(2 * y + place, place);
    chroma(y, lower);
  }
}

/// Mixes by a mask that maskOf(y, mask) writes for each luma row; the mask of chroma is subsampled from it.
/// mixed(plane, y, mask) writes a row of a plane.
template <typename MaskOf, typename Mixed>
void mixByLumaMask(TransitionScratch& scratch, const Frame& out, MaskOf maskOf, Mixed mixed) {
  const int width = out.width();
  std::uint8_t* rows = rowsIn(scratch, MaskRows, width, 3);
  std::uint8_t* const masks[] = {rows, rows + width};
  std::uint8_t* chromaMask = rows + 2 * width;
  forRowPairs(
      out,
      [&](int y, int place) {
        maskOf(y, masks[place]);
        mixed(Frame::Y, y, masks[place]);
      },
      [&](int y, int lower) {
        chromaMeanRow(masks[0], masks[lower], chromaMask, width);
        mixed(Frame::U, y, chromaMask);
        mixed(Frame::V, y, chromaMask);
      });
}

/// One row of the two pictures and of the mix.
struct Rows {
  const std::uint8_t* from;
  const std::uint8_t* to;
  std::uint8_t* out;
  int count;
};

Rows rowsOf(const Frame& from, const Frame& to, Frame& out, int plane, int y) {
  const WritablePlane mixed = writablePlaneOf(out, plane);
  return {planeOf(from, plane).row(y), planeOf(to, plane).row(y), mixed.row(y), mixed.width};
}

void mixMasked(const Rows& rows, const std::uint8_t* mask) {
  mixMaskedRow(rows.from, rows.to, mask, rows.out, rows.count);
}

/// One of the two pictures, partly inverted, row by row. The brightest parts are inverted first and inverted
/// back last: if all were inverted at the same speed, the picture would be an even grey half-way.
class PartlyInvertedPicture {
 public:
  /// `share` of the picture is inverted, 0 to 1.
  PartlyInvertedPicture(const Frame& frame, double share, TransitionScratch& scratch, Place place)
      : frame_(frame),
        width_(frame.width()),
        threshold_(thresholdAt(share, kGain)),
        rows_(rowsIn(scratch, place, width_, 3)),
        masks_{rows_, rows_ + width_},
        chromaMask_(rows_ + 2 * width_) {}

  /// `place` is 0 or 1 in the pair that shares a chroma row.
  PartlyInvertedRow lumaRow(int y, int place) const {
    const std::uint8_t* luma = planeOf(frame_, Frame::Y).row(y);
    thresholdRow(luma, kGain, threshold_, masks_[place], width_);
    return {luma, masks_[place]};
  }
  /// Called after the luma rows of a pair and before its chroma rows. `lower` is the place of the second
  /// row.
  void halveMask(int lower) const { chromaMeanRow(masks_[0], masks_[lower], chromaMask_, width_); }
  PartlyInvertedRow chromaRow(int plane, int y) const { return {planeOf(frame_, plane).row(y), chromaMask_}; }

 private:
  static constexpr int kGain = 2;

  const Frame& frame_;
  int width_;
  int threshold_;
  std::uint8_t* rows_;
  std::uint8_t* masks_[2];
  std::uint8_t* chromaMask_;
};

/// The side of a cell or band. It is even, so that edges lie between chroma samples.
int evenPart(int length, int parts, int halfMin) {
  return 2 * std::max(halfMin, (length + parts) / (2 * parts));
}

/// The two kinds of rows of a checkerboard: `evenRow` begins with a cell of the value `even`, `oddRow` with
/// a cell of the value `odd`.
void fillChecker(int cell, int even, int odd, std::uint8_t* evenRow, std::uint8_t* oddRow, int width) {
  for (int x = 0; x < width; ++x) {
    const bool isEven = x / cell % 2 == 0;
    evenRow[x] = static_cast<std::uint8_t>(isEven ? even : odd);
    oddRow[x] = static_cast<std::uint8_t>(isEven ? odd : even);
  }
}

/// Progress of the line at height `y`: every other band starts later, and each band starts in its middle.
double lineShare(double position, double y, int band) {
  constexpr double kBandDelay = 0.4;
  constexpr double kEdgeDelay = 0.15;
  const double place = y / band;
  const int number = static_cast<int>(place);
  const double edge = std::abs(2 * (place - number) - 1);
  const double begin = kBandDelay * (number % 2) + kEdgeDelay * edge;
  return ramp(position, begin, begin + 1 - kBandDelay - kEdgeDelay);
}

}  // namespace

void MostBright::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                     Frame& out) const {
  const int rise = weightOf(ramp(point.position, 0, 0.6), 256);
  const int fall = weightOf(ramp(point.position, 0.4, 1), 256);
  const PlaneView lumaFrom = planeOf(from, Frame::Y);
  const PlaneView lumaTo = planeOf(to, Frame::Y);
  mixByLumaMask(
      scratch, out,
      [&](int y, std::uint8_t* mask) {
        brighterRow(lumaFrom.row(y), lumaTo.row(y), mask, out.width());
        fadeKeyRow(rise, fall, mask, out.width());
      },
      [&](int plane, int y, const std::uint8_t* mask) { mixMasked(rowsOf(from, to, out, plane, y), mask); });
}

void BrightExtract::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                        Frame& out) const {
  constexpr int kGain = 2;
  const int threshold = thresholdAt(easedShare(point.position, 1), kGain);
  const PlaneView luma = planeOf(from, Frame::Y);
  std::uint8_t* rim = rowsIn(scratch, WorkRow, out.width());
  mixByLumaMask(
      scratch, out,
      [&](int y, std::uint8_t* mask) { thresholdRow(luma.row(y), kGain, threshold, mask, out.width()); },
      [&](int plane, int y, const std::uint8_t* mask) {
        const Rows rows = rowsOf(from, to, out, plane, y);
        edgeRow(mask, rim, rows.count);
        mixTowardsRow(rows.from, rows.to, mask, plane == Frame::Y ? kWhiteLuma : kNoChroma, rim, rows.out,
                      rows.count);
      });
}

void InvertColor::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                      Frame& out) const {
  const double p = point.position;
  const PartlyInvertedPicture invertedFrom(from, easedShare(p, 0.55), scratch, FromRows);
  const PartlyInvertedPicture invertedTo(to, easedShare(1 - p, 0.55), scratch, ToRows);
  const int weight = weightOf(ramp(p, 0.3, 0.7), 256);
  forRowPairs(
      out,
      [&](int y, int place) {
        mixPartlyInvertedRow(invertedFrom.lumaRow(y, place), invertedTo.lumaRow(y, place),
                             kBlackLuma + kWhiteLuma, weight, writablePlaneOf(out, Frame::Y).row(y),
                             out.width());
      },
      [&](int y, int lower) {
        invertedFrom.halveMask(lower);
        invertedTo.halveMask(lower);
        for (const int plane : {Frame::U, Frame::V}) {
          const WritablePlane mixed = writablePlaneOf(out, plane);
          mixPartlyInvertedRow(invertedFrom.chromaRow(plane, y), invertedTo.chromaRow(plane, y),
                               2 * kNoChroma, weight, mixed.row(y), mixed.width);
        }
      });
}

void PixelsMultiplied::mix(const Frame& from, const Frame& to, const MixPoint& point,
                           TransitionScratch& scratch, Frame& out) const {
  const int even = weightOf(ramp(point.position, 0, 0.6), 255);
  const int odd = weightOf(ramp(point.position, 0.4, 1), 255);
  const int width = out.width();
  const int cell = evenPart(std::min(width, out.height()), 120, 2);
  std::uint8_t* ways = rowsIn(scratch, MaskRows, width, 4);
  std::uint8_t* const lumaWays[] = {ways, ways + width};
  std::uint8_t* const chromaWays[] = {ways + 2 * width, ways + 3 * width};
  fillChecker(cell, even, odd, lumaWays[0], lumaWays[1], width);
  fillChecker(cell / 2, even, odd, chromaWays[0], chromaWays[1], out.size().chromaWidth());

  std::uint8_t* product = rowsIn(scratch, WorkRow, width);
  std::uint8_t* lumaFrom = rowsIn(scratch, FromRows, width);
  std::uint8_t* lumaTo = rowsIn(scratch, ToRows, width);
  const PlaneView fullFrom = planeOf(from, Frame::Y);
  const PlaneView fullTo = planeOf(to, Frame::Y);
  forRowPairs(
      out,
      [&](int y, int) {
        const std::uint8_t* way = lumaWays[y / cell % 2];
        const Rows rows = rowsOf(from, to, out, Frame::Y, y);
        multiplyLumaRow(rows.from, rows.to, product, width);
        mixOverRow(rows.from, product, rows.to, way, rows.out, width);
      },
      [&](int y, int lower) {
        chromaMeanRow(fullFrom.row(2 * y), fullFrom.row(2 * y + lower), lumaFrom, width);
        chromaMeanRow(fullTo.row(2 * y), fullTo.row(2 * y + lower), lumaTo, width);
        for (const int plane : {Frame::U, Frame::V}) {
          const Rows rows = rowsOf(from, to, out, plane, y);
          multiplyChromaRow(rows.from, rows.to, lumaFrom, lumaTo, product, rows.count);
          mixOverRow(rows.from, product, rows.to, chromaWays[2 * y / cell % 2], rows.out, rows.count);
        }
      });
}

void Scanlines::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& /*scratch*/,
                    Frame& out) const {
  const int band = evenPart(out.height(), 120, 2);
  for (const int plane : kOpaquePlanes) {
    for (int y = 0; y < out.planeHeight(plane); ++y) {
      const double middle = (y + 0.5) * stepOf(plane);
      const Rows rows = rowsOf(from, to, out, plane, y);
      mixRow(rows.from, rows.to, weightOf(lineShare(point.position, middle, band), 256), rows.out,
             rows.count);
    }
  }
}

void LinenFade::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                    Frame& out) const {
  constexpr int kGain = 2;
  constexpr double kDepth = 200;
  const double p = point.position;
  const int threshold = thresholdAt(p, kGain);
  const int depth = static_cast<int>(std::lround(kDepth * 4 * p * (1 - p)));
  const int width = out.width();
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(out.height());
  const auto* relief = scratch.table<std::uint8_t>(
      this, out.size(), 0, count, [&](std::uint8_t* table) { weaveLinen(out.size(), table); });
  const auto reliefRow = [&](int y) { return relief + static_cast<std::ptrdiff_t>(y) * width; };
  std::uint8_t* shade = rowsIn(scratch, WorkRow, width);
  mixByLumaMask(
      scratch, out,
      [&](int y, std::uint8_t* mask) { thresholdRow(reliefRow(y), kGain, threshold, mask, width); },
      [&](int plane, int y, const std::uint8_t* mask) {
        const Rows rows = rowsOf(from, to, out, plane, y);
        if (plane != Frame::Y) {
          mixMasked(rows, mask);
          return;
        }
        shadeRow(reliefRow(y), depth, shade, width);
        mixTowardsRow(rows.from, rows.to, mask, kBlackLuma, shade, rows.out, width);
      });
}

}  // namespace korvia
