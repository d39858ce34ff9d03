#include "ColorTable.h"

#include <algorithm>
#include <cmath>

#include "ThreadSafety.h"

namespace korvia {

namespace {

// Chroma samples that are mapped at a time, so that what they need fits on the stack and in the cache.
constexpr int kChunk = 256;

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

/// HLG: from scene light to display light. The system gamma of a display of 1000 cd/m2 is 1.2.
double systemGain(double sceneLuma) {
  return std::pow(std::max(sceneLuma, 1e-9), 0.2);
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
  const double gain = systemGain(lumaOf(light, kLuma2020));
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

/// The factor that BT.2446-1 applies to colour differences. The smallest luma stands for 0, where it has a
/// limit.
double saturationOf(double y) {
  const double positive = std::max(y, 1e-6);
  return mapLuma(positive) / (1.1 * positive);
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
  const double saturation = saturationOf(y);
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

std::uint8_t chromaCode(float difference) {
  return static_cast<std::uint8_t>(std::lround(128 + difference));
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

ColorTable::ColorTable(Kind kind) {
  const auto root = [](double light) { return std::pow(light, 1 / 2.4); };
  if (kind == Kind::Pq)
    steps_.hdrCoded =
        UnitTable([&](double value) { return root(std::min(pqToLight(value) / kHdrPeak, 1.0)); });
  if (kind == Kind::Hlg) {
    steps_.hdrCoded = UnitTable([&](double value) { return root(hlgToScene(value)); });
    steps_.scene = UnitTable(hlgToScene);
    steps_.gain = UnitTable([&](double value) { return root(systemGain(value * value)); });
  }
  if (kind == Kind::Pq || kind == Kind::Hlg) {
    steps_.luma = UnitTable(mapLuma);
    steps_.saturation = UnitTable(saturationOf);
  }
  steps_.light = UnitTable([](double value) { return std::pow(value, 2.4); });
  steps_.coded = UnitTable([&](double value) { return root(value * value); });
  const Matrix& matrix = kind == Kind::P3 ? kFromP3 : kFrom2020;
  for (int i = 0; i < 9; ++i)
    steps_.toBt709[i] = static_cast<float>(matrix[i / 3][i % 3]);
}

void ColorTable::apply(const Picture& from, Frame& to) const {
  const auto rowOf = [&from](int plane, int y) {
    return reinterpret_cast<const std::uint16_t*>(
        reinterpret_cast<const std::uint8_t*>(from.plane[plane].data) +
        static_cast<std::ptrdiff_t>(y) * from.plane[plane].strideBytes);
  };
  const auto outRow = [&to](int plane, int row) {
    return to.writablePlane(plane) + static_cast<std::ptrdiff_t>(row) * to.stride(plane);
  };
  const int width = to.size().chromaWidth();
  for (int row = 0; row < to.size().chromaHeight(); ++row) {
    const std::uint16_t* u = rowOf(1, row);
    const std::uint16_t* v = rowOf(2, row);
    for (int begin = 0; begin < width; begin += kChunk) {
      const int count = std::min(kChunk, width - begin);
      float cb[2 * kChunk];
      float cr[2 * kChunk];
      for (int x = 0; x < count; ++x) {
        cb[2 * x] = cb[2 * x + 1] = static_cast<float>(u[begin + x] - 512) / 896;
        cr[2 * x] = cr[2 * x + 1] = static_cast<float>(v[begin + x] - 512) / 896;
      }
      float sumCb[2 * kChunk] = {};
      float sumCr[2 * kChunk] = {};
      for (int y = 2 * row; y < 2 * row + 2; ++y)
        mapWideColors(steps_, rowOf(0, y) + 2 * begin, cb, cr, 2 * count, outRow(Frame::Y, y) + 2 * begin,
                      sumCb, sumCr);
      // The chroma of four pixels is their mean.
      for (int x = 0; x < count; ++x) {
        outRow(Frame::U, row)[begin + x] = chromaCode((sumCb[2 * x] + sumCb[2 * x + 1]) / 4);
        outRow(Frame::V, row)[begin + x] = chromaCode((sumCr[2 * x] + sumCr[2 * x + 1]) / 4);
      }
    }
  }
}

}  // namespace korvia
