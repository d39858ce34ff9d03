#include "ColorTable.h"

#include <algorithm>
#include <cmath>

#include "ThreadSafety.h"

namespace korvia {

namespace {

// The table has a node every 16 codes of 1024.
constexpr int kLumaShift = 4;
constexpr int kChromaShift = 4;
constexpr int kLumaNodes = (1024 >> kLumaShift) + 1;
constexpr int kChromaNodes = (1024 >> kChromaShift) + 1;
// Fraction bits of a value in the table.
constexpr int kFraction = 6;

constexpr double kHdrPeak = 1000;  // cd/m2
constexpr double kSdrPeak = 100;

using Rgb = std::array<double, 3>;

// Luma weights and chroma divisors of BT.2020.
constexpr Rgb kLuma2020{0.2627, 0.6780, 0.0593};
constexpr double kCb2020 = 1.8814;
constexpr double kCr2020 = 1.4746;

double lumaOf(const Rgb& rgb, const Rgb& weights) {
  return rgb[0] * weights[0] + rgb[1] * weights[1] + rgb[2] * weights[2];
}

Rgb rgb2020(double y, double cb, double cr) {
  const double r = y + kCr2020 * cr;
  const double b = y + kCb2020 * cb;
  return {r, (y - kLuma2020[0] * r - kLuma2020[2] * b) / kLuma2020[1], b};
}

/// SMPTE ST 2084: code value 0..1 to cd/m2.
double pqToLight(double value) {
  constexpr double m1 = 2610.0 / 16384, m2 = 2523.0 / 4096 * 128;
  constexpr double c1 = 3424.0 / 4096, c2 = 2413.0 / 4096 * 32, c3 = 2392.0 / 4096 * 32;
  const double power = std::pow(value, 1 / m2);
  return 10000 * std::pow(std::max(power - c1, 0.0) / (c2 - c3 * power), 1 / m1);
}

/// BT.2100 HLG: code value 0..1 to scene light 0..1.
double hlgToScene(double value) {
  constexpr double a = 0.17883277, b = 1 - 4 * a;
  const double c = 0.5 - a * std::log(4 * a);
  return value <= 0.5 ? value * value / 3 : (std::exp((value - c) / a) + b) / 12;
}

/// Code values to display light, which is 1 at the HDR peak.
Rgb toLight(ColorTable::Kind kind, const Rgb& coded) {
  Rgb light;
  if (kind == ColorTable::Kind::Pq) {
    for (std::size_t i = 0; i < 3; ++i)
      light[i] = std::min(pqToLight(coded[i]) / kHdrPeak, 1.0);
    return light;
  }
  for (std::size_t i = 0; i < 3; ++i)
    light[i] = hlgToScene(coded[i]);
  // The system gamma of a display of 1000 cd/m2 is 1.2.
  const double gain = std::pow(std::max(lumaOf(light, kLuma2020), 1e-9), 0.2);
  for (double& value : light)
    value *= gain;
  return light;
}

/// The tone map of BT.2446-1, method A, for luma with gamma 2.4.
double mapLuma(double y) {
  const double rhoHdr = 1 + 32 * std::pow(kHdrPeak / 10000, 1 / 2.4);
  const double rhoSdr = 1 + 32 * std::pow(kSdrPeak / 10000, 1 / 2.4);
  const double perceived = std::log(1 + (rhoHdr - 1) * y) / std::log(rhoHdr);
  double mapped = 0;
  if (perceived <= 0.7399)
    mapped = 1.0770 * perceived;
  else if (perceived < 0.9909)
    mapped = -1.1510 * perceived * perceived + 2.7811 * perceived - 0.6302;
  else
    mapped = 0.5 * perceived + 0.5;
  return (std::pow(rhoSdr, mapped) - 1) / (rhoSdr - 1);
}

/// Display light of HDR to code values of SDR with gamma 2.4, both with the primaries of BT.2020.
Rgb mapTone(const Rgb& light) {
  Rgb coded;
  for (std::size_t i = 0; i < 3; ++i)
    coded[i] = std::pow(light[i], 1 / 2.4);
  const double y = lumaOf(coded, kLuma2020);
  if (y <= 0)
    return {};
  const double mapped = mapLuma(y);
  const double saturation = mapped / (1.1 * y);
  const double cb = saturation * (coded[2] - y) / kCb2020;
  const double cr = saturation * (coded[0] - y) / kCr2020;
  return rgb2020(mapped - std::max(0.1 * cr, 0.0), cb, cr);
}

using Matrix = double[3][3];
// Matrices to the primaries of BT.709 in linear light: from BT.2020 as in BT.2407, and from P3 with a white
// of D65.
constexpr Matrix kFrom2020 = {
    {1.660491, -0.587641, -0.072850}, {-0.124550, 1.132900, -0.008349}, {-0.018151, -0.100579, 1.118730}};
constexpr Matrix kFromP3 = {
    {1.224940, -0.224940, 0.0}, {-0.042057, 1.042057, 0.0}, {-0.019638, -0.078636, 1.098274}};

/// Input and output have gamma 2.4.
Rgb mapGamut(const Rgb& coded, const Matrix& matrix) {
  Rgb light;
  for (std::size_t i = 0; i < 3; ++i)
    light[i] = std::pow(std::clamp(coded[i], 0.0, 1.0), 2.4);
  Rgb result;
  for (std::size_t i = 0; i < 3; ++i) {
    const double* row = matrix[i];
    result[i] =
        std::pow(std::clamp(row[0] * light[0] + row[1] * light[1] + row[2] * light[2], 0.0, 1.0), 1 / 2.4);
  }
  return result;
}

std::int16_t tableValue(double code) {
  return static_cast<std::int16_t>(std::lround(code * (1 << kFraction)));
}

std::size_t nodeIndex(int u, int v) {
  return static_cast<std::size_t>(v * kChromaNodes + u) * kLumaNodes;
}

}  // namespace

std::optional<ColorTable::Kind> ColorTable::kindOf(const GstVideoColorimetry& colors) {
  if (colors.transfer == GST_VIDEO_TRANSFER_SMPTE2084)
    return Kind::Pq;
  if (colors.transfer == GST_VIDEO_TRANSFER_ARIB_STD_B67)
    return Kind::Hlg;
  if (colors.primaries == GST_VIDEO_COLOR_PRIMARIES_BT2020)
    return Kind::Bt2020;
  if (colors.primaries == GST_VIDEO_COLOR_PRIMARIES_SMPTERP431 ||
      colors.primaries == GST_VIDEO_COLOR_PRIMARIES_SMPTEEG432)
    return Kind::P3;
  return std::nullopt;
}

std::shared_ptr<const ColorTable> ColorTable::of(Kind kind) {
  static Mutex mutex;
  static std::array<std::weak_ptr<const ColorTable>, 4> tables;
  MutexLock lock(mutex);
  std::weak_ptr<const ColorTable>& held = tables[static_cast<std::size_t>(kind)];
  std::shared_ptr<const ColorTable> table = held.lock();
  if (!table) {
    table.reset(new ColorTable(kind));
    held = table;
  }
  return table;
}

std::array<double, 3> ColorTable::exact(Kind kind, const std::array<int, 3>& codes) {
  Rgb coded = rgb2020((codes[0] - 64) / 876.0, (codes[1] - 512) / 896.0, (codes[2] - 512) / 896.0);
  for (double& value : coded)
    value = std::clamp(value, 0.0, 1.0);
  if (kind == Kind::Pq || kind == Kind::Hlg)
    coded = mapTone(toLight(kind, coded));
  const Rgb sdr = mapGamut(coded, kind == Kind::P3 ? kFromP3 : kFrom2020);
  constexpr Rgb kLuma709{0.2126, 0.7152, 0.0722};
  const double y = lumaOf(sdr, kLuma709);
  return {16 + 219 * y, 128 + 224 * (sdr[2] - y) / 1.8556, 128 + 224 * (sdr[0] - y) / 1.5748};
}

ColorTable::ColorTable(Kind kind)
    : luma_(nodeIndex(0, kChromaNodes)), chroma_(nodeIndex(0, kChromaNodes) * 2) {
  std::size_t node = 0;
  for (int v = 0; v < kChromaNodes; ++v) {
    for (int u = 0; u < kChromaNodes; ++u) {
      for (int y = 0; y < kLumaNodes; ++y, ++node) {
        const auto codes = exact(kind, {y << kLumaShift, u << kChromaShift, v << kChromaShift});
        luma_[node] = tableValue(codes[0]);
        chroma_[node * 2] = tableValue(codes[1]);
        chroma_[node * 2 + 1] = tableValue(codes[2]);
      }
    }
  }
}

struct ColorTable::ChromaPlace {
  std::size_t column[4];
  int weight[4];  // add up to 1 << 2 * kChromaShift
};

ColorTable::ChromaPlace ColorTable::chromaPlace(int u, int v) const {
  constexpr int kOne = 1 << kChromaShift;
  const int cellU = u >> kChromaShift;
  const int cellV = v >> kChromaShift;
  const int partU = u & (kOne - 1);
  const int partV = v & (kOne - 1);
  return {{nodeIndex(cellU, cellV), nodeIndex(cellU + 1, cellV), nodeIndex(cellU, cellV + 1),
           nodeIndex(cellU + 1, cellV + 1)},
          {(kOne - partU) * (kOne - partV), partU * (kOne - partV), (kOne - partU) * partV, partU * partV}};
}

namespace {

constexpr int kLumaOne = 1 << kLumaShift;
constexpr int kCodeMask = (1 << ColorTable::kDepth) - 1;

/// Interpolates between two nodes along luma; `low` and `high` are weighted sums over four columns. The
/// result fits 32 bits: 14 of a table's value, 8 of the weights, 4 of `part`.
std::uint8_t between(int low, int high, int part) {
  constexpr int kShift = kLumaShift + 2 * kChromaShift + kFraction;
  return static_cast<std::uint8_t>((low * (kLumaOne - part) + high * part + (1 << (kShift - 1))) >> kShift);
}

}  // namespace

void ColorTable::apply(const Picture& from, Frame& to) const {
  const auto rowOf = [&from](int plane, int y) {
    return reinterpret_cast<const std::uint16_t*>(
        reinterpret_cast<const std::uint8_t*>(from.plane[plane].data) +
        static_cast<std::ptrdiff_t>(y) * from.plane[plane].strideBytes);
  };
  for (int cy = 0; cy < to.size().chromaHeight(); ++cy) {
    const std::uint16_t* u = rowOf(1, cy);
    const std::uint16_t* v = rowOf(2, cy);
    const std::uint16_t* y[2] = {rowOf(0, 2 * cy), rowOf(0, 2 * cy + 1)};
    const auto outRow = [&to](int plane, int row) {
      return to.writablePlane(plane) + static_cast<std::ptrdiff_t>(row) * to.stride(plane);
    };
    std::uint8_t* outY[2] = {outRow(Frame::Y, 2 * cy), outRow(Frame::Y, 2 * cy + 1)};
    std::uint8_t* outU = outRow(Frame::U, cy);
    std::uint8_t* outV = outRow(Frame::V, cy);
    for (int cx = 0; cx < to.size().chromaWidth(); ++cx) {
      const ChromaPlace place = chromaPlace(u[cx] & kCodeMask, v[cx] & kCodeMask);
      const auto lumaNode = [&](int node) {
        const auto index = static_cast<std::size_t>(node);
        int sum = 0;
        for (int i = 0; i < 4; ++i)
          sum += luma_[place.column[i] + index] * place.weight[i];
        return sum;
      };
      const auto chromaNode = [&](int node, std::size_t which) {
        int sum = 0;
        for (int i = 0; i < 4; ++i)
          sum += chroma_[(place.column[i] + static_cast<std::size_t>(node)) * 2 + which] * place.weight[i];
        return sum;
      };
      int cell = -1;
      int low = 0;
      int high = 0;
      int total = 0;
      for (int row = 0; row < 2; ++row) {
        for (int x = 2 * cx; x < 2 * cx + 2; ++x) {
          const int code = y[row][x] & kCodeMask;
          total += code;
          // Neighbouring samples nearly always lie between the same two nodes, so the sums are reused.
          if (code >> kLumaShift != cell) {
            cell = code >> kLumaShift;
            low = lumaNode(cell);
            high = lumaNode(cell + 1);
          }
          outY[row][x] = between(low, high, code & (kLumaOne - 1));
        }
      }
      const int mean = (total + 2) / 4;
      const int part = mean & (kLumaOne - 1);
      cell = mean >> kLumaShift;
      outU[cx] = between(chromaNode(cell, 0), chromaNode(cell + 1, 0), part);
      outV[cx] = between(chromaNode(cell, 1), chromaNode(cell + 1, 1), part);
    }
  }
}

}  // namespace korvia
