#include "TextTextures.h"

#include <QDir>
#include <QtMath>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "PeriodicNoise.h"
#include "TargaFile.h"

namespace korvia {

namespace {

constexpr int kSide = 256;

double wave(double periods) {
  return 0.5 + 0.5 * std::sin(2 * M_PI * periods);
}

/// The colour at a place of a row of colours at equal distances.
template <std::size_t Count>
QRgb blend(const std::array<QRgb, Count>& colors, double place) {
  const double scaled = std::clamp(place, 0.0, 1.0) * (Count - 1);
  const auto index = std::min(static_cast<std::size_t>(scaled), Count - 2);
  const double share = scaled - static_cast<double>(index);
  const QRgb from = colors[index];
  const QRgb to = colors[index + 1];
  const auto mix = [share](int a, int b) { return static_cast<int>(std::lround(a + (b - a) * share)); };
  return qRgb(mix(qRed(from), qRed(to)), mix(qGreen(from), qGreen(to)), mix(qBlue(from), qBlue(to)));
}

QRgb gold(double u, double v) {
  static constexpr std::array<QRgb, 5> kColors{0xFFB5801C, 0xFFDBA52E, 0xFFF5CE56, 0xFFFFE69A, 0xFFFFF8DC};
  const double sheen = wave(4 * v + u + 0.35 * layeredNoise(u, v, 2, 2, 3, 11));
  const double grain = layeredNoise(u, v, 4, 64, 2, 12);
  return blend(kColors, 0.12 + 0.62 * sheen + 0.3 * (grain - 0.5));
}

QRgb steel(double u, double v) {
  static constexpr std::array<QRgb, 4> kColors{0xFF7C8894, 0xFFA9B4BF, 0xFFD3DAE1, 0xFFF6F9FC};
  const double brushed = layeredNoise(u, v, 2, 64, 2, 21);
  return blend(kColors, 0.5 * wave(2 * v + 0.15 * smoothNoise(u, v, 3, 3, 22)) + 0.62 * brushed);
}

QRgb marble(double u, double v) {
  static constexpr std::array<QRgb, 5> kColors{0xFF7F8794, 0xFFB9BEC6, 0xFFDDDEE0, 0xFFF0EFEC, 0xFFFBFAF7};
  const double warp = layeredNoise(u, v, 3, 3, 5, 31);
  const double vein = std::abs(std::sin(M_PI * (2 * u + 2 * v + 3 * warp)));
  return blend(kColors, std::pow(vein, 0.45) * 0.9 + 0.16 * (layeredNoise(u, v, 6, 6, 3, 37) - 0.4));
}

QRgb wood(double u, double v) {
  static constexpr std::array<QRgb, 4> kColors{0xFF4E2A12, 0xFF7C4620, 0xFFA5652F, 0xFFC68A4C};
  const double rings = wave(6 * v + 1.6 * layeredNoise(u, v, 1, 4, 3, 41));
  const double grain = layeredNoise(u, v, 4, 96, 2, 42);
  return blend(kColors, 0.6 * rings + 0.5 * grain - 0.05);
}

QRgb paper(double u, double v) {
  static constexpr std::array<QRgb, 3> kColors{0xFFD2C6A8, 0xFFEDE5CF, 0xFFFCF8EC};
  const double fibres = layeredNoise(u, v, 24, 48, 2, 51);
  const double spots = layeredNoise(u, v, 4, 4, 3, 52);
  return blend(kColors, 0.25 + 0.45 * fibres + 0.5 * (spots - 0.3));
}

QRgb stars(double u, double v) {
  static constexpr std::array<QRgb, 4> kColors{0xFF060A24, 0xFF14205A, 0xFF4A2F8C, 0xFF8C4FB0};
  const QRgb sky = blend(kColors, 1.3 * layeredNoise(u, v, 3, 3, 4, 61) - 0.25);
  double light = 0;
  for (int layer = 0; layer < 2; ++layer) {
    const int cells = layer == 0 ? 8 : 20;
    const double pixels =
        pointDistances(u, v, cells, 64U + 4U * static_cast<unsigned>(layer)).nearest * kSide / cells;
    const double size = layer == 0 ? 1.9 : 1.0;
    light += std::exp(-pixels * pixels / (2 * size * size)) + 0.16 * std::exp(-pixels / (2.5 * size));
  }
  const auto lit = [light](int part) {
    return static_cast<int>(std::lround(part + (255 - part) * std::min(light, 1.0)));
  };
  return qRgb(lit(qRed(sky)), lit(qGreen(sky)), lit(qBlue(sky)));
}

/// Threads of four cells length that cross over and under each other, each row one cell further.
QRgb carbon(double u, double v) {
  static constexpr std::array<QRgb, 3> kColors{0xFF16181B, 0xFF3A3F45, 0xFF7E868F};
  constexpr int kThreads = 32;
  const double x = u * kThreads;
  const double y = v * kThreads;
  const int column = static_cast<int>(x);
  const int row = static_cast<int>(y);
  const bool isAcross = (column + row) % 4 < 2;
  const double across = isAcross ? y - row : x - column;
  const double along = isAcross ? (x - row % 4 + 4) / 2 : (y - column % 4 + 4) / 2;
  const double bulge = std::sin(M_PI * across);
  const double gloss = 0.5 + 0.5 * std::cos(2 * M_PI * (along - std::floor(along) - 0.5));
  return blend(kColors, (isAcross ? 0.2 : 0.05) + 0.45 * bulge * (0.35 + 0.65 * gloss));
}

QRgb water(double u, double v) {
  static constexpr std::array<QRgb, 4> kColors{0xFF0B4F8A, 0xFF1789C2, 0xFF5CC6E4, 0xFFE8FBFF};
  const double bentU = u + 0.05 * (layeredNoise(u, v, 3, 3, 3, 71) - 0.5);
  const double bentV = v + 0.05 * (layeredNoise(u, v, 3, 3, 3, 75) - 0.5);
  const PointDistances distances = pointDistances(bentU, bentV, 7, 79);
  const double edge = std::exp(-6 * (distances.second - distances.nearest));
  return blend(kColors, 0.1 + 0.75 * edge + 0.3 * layeredNoise(u, v, 3, 3, 3, 83) - 0.05);
}

struct Texture {
  const char* name;
  QRgb (*color)(double u, double v);
};
constexpr Texture kTextures[] = {{"gold", gold},   {"steel", steel}, {"marble", marble}, {"wood", wood},
                                 {"paper", paper}, {"stars", stars}, {"carbon", carbon}, {"water", water}};

}  // namespace

QStringList textTextureNames() {
  QStringList names;
  for (const Texture& texture : kTextures)
    names += QString::fromLatin1(texture.name);
  return names;
}

QImage drawTextTexture(const QString& name) {
  const auto* texture =
      std::find_if(std::begin(kTextures), std::end(kTextures),
                   [&name](const Texture& entry) { return name == QLatin1String(entry.name); });
  if (texture == std::end(kTextures))
    return {};
  QImage image(kSide, kSide, QImage::Format_RGB32);
  for (int y = 0; y < kSide; ++y) {
    auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
    for (int x = 0; x < kSide; ++x)
      row[x] = texture->color((x + 0.5) / kSide, (y + 0.5) / kSide);
  }
  return image;
}

bool writeTextTextures(const QString& folder) {
  if (!QDir().mkpath(folder)) {
    std::fprintf(stderr, "failed to make %s\n", qPrintable(folder));
    return false;
  }
  for (const QString& name : textTextureNames()) {
    const QString path = QDir(folder).filePath(name + QStringLiteral(".tga"));
    if (!writeTarga(path, drawTextTexture(name))) {
      std::fprintf(stderr, "failed to write %s\n", qPrintable(path));
      return false;
    }
  }
  return true;
}

}  // namespace korvia
