#include <algorithm>
#include <iterator>

#include "KorviaShowUtil.h"
#include "tagKorviaShowTextStyle.h"

namespace {

/// The colour fields of a mode that a preset does not use are those of a new record.
constexpr quint32 kWhite = 0xFFFFFFFF;
constexpr quint32 kUnusedBegin = 0xFF0000FF;
constexpr quint32 kUnusedEnd = 0xFFFF0000;
constexpr quint32 kHollow = 0x00FFFFFF;
constexpr quint32 kNoShadow = 0x00000000;

constexpr quint32 kPaper = 0xFFFFFFFF;
constexpr quint32 kInk = 0xFF0A0A0A;
constexpr quint32 kRed = 0xFFD81E28;
constexpr quint32 kGreen = 0xFF1FC94B;
constexpr quint32 kBlue = 0xFF1F4FE0;

struct PresetRow {
  KorviaShowTextStylePreset preset;
  KorviaShowTextColorMode mode;
  quint32 solid;
  quint32 gradientBegin;
  quint32 gradientEnd;
  const char* texture;  // null keeps the file that the style has
  quint32 shadow;
  qint32 shadowX;
  qint32 shadowY;
  float shadowBlur;
  quint32 outline;
  qint32 outlineSize;
  float outlineBlur;
};

constexpr PresetRow solid(KorviaShowTextStylePreset preset, quint32 color, quint32 shadow, qint32 shadowX,
                          qint32 shadowY, float shadowBlur, quint32 outline, qint32 outlineSize,
                          float outlineBlur) {
  return {preset,  TextColorSolid, color,      kUnusedBegin, kUnusedEnd,  nullptr,    shadow,
          shadowX, shadowY,        shadowBlur, outline,      outlineSize, outlineBlur};
}

constexpr PresetRow gradient(KorviaShowTextStylePreset preset, quint32 begin, quint32 end, quint32 shadow,
                             quint32 outline) {
  return {preset, TextColorGradient, begin, begin, end, nullptr, shadow, 2, -3, 5, outline, 2, 0.5F};
}

constexpr PresetRow texture(KorviaShowTextStylePreset preset, const char* file, quint32 solidColor,
                            quint32 shadow, quint32 outline) {
  return {preset, TextColorTexture, solidColor, kUnusedBegin, kUnusedEnd, file, shadow, 2, -3,
          5,      outline,          2,          0.5F};
}

// Each look has a light and a dark part side by side, so that it can be read over any picture.
constexpr PresetRow kPresets[] = {
    solid(TextStyleDefault, kWhite, 0xFFA0A0A4, 2, -2, 2, 0xFFFFFF00, 2, 2),

    solid(TextStyleSolidWhite, kPaper, 0x90000000, 0, 0, 8, 0xE0101010, 2, 3),
    solid(TextStyleSolidBlack, kInk, 0x90FFFFFF, 0, 0, 8, 0xF0FFFFFF, 2, 2),
    solid(TextStyleSolidRed, kRed, 0x90FFFFFF, 0, 0, 8, 0xF0FFFFFF, 2, 2),
    solid(TextStyleSolidGreen, kGreen, 0x90000000, 0, 0, 8, 0xE0041A0A, 2, 3),
    solid(TextStyleSolidBlue, kBlue, 0x90FFFFFF, 0, 0, 8, 0xF0FFFFFF, 2, 2),

    solid(TextStyleSolidShadowWhite, kPaper, 0xD0000000, 3, -3, 4, 0xE0101010, 2, 1),
    solid(TextStyleSolidShadowBlack, kInk, 0xE0F4F4F4, 3, -3, 4, 0xF0FFFFFF, 2, 2),
    solid(TextStyleSolidShadowRed, kRed, 0xD0200406, 4, -4, 4, 0xF0FFFFFF, 2, 2),
    solid(TextStyleSolidShadowGreen, kGreen, 0xE0021206, 3, -3, 4, 0xF0041A0A, 2, 1),
    solid(TextStyleSolidShadowBlue, kBlue, 0xD0040818, 4, -4, 4, 0xF0FFFFFF, 2, 2),

    solid(TextStyleSolidOutlineWhite, kPaper, kNoShadow, 2, -2, 2, 0xFF101010, 3, 0),
    solid(TextStyleSolidOutlineBlack, kInk, kNoShadow, 2, -2, 2, 0xFFFFFFFF, 3, 0),
    solid(TextStyleSolidOutlineRed, kRed, kNoShadow, 2, -2, 2, 0xFFFFFFFF, 3, 0),
    solid(TextStyleSolidOutlineGreen, kGreen, kNoShadow, 2, -2, 2, 0xFF062A10, 3, 0),
    solid(TextStyleSolidOutlineBlue, kBlue, kNoShadow, 2, -2, 2, 0xFFFFFFFF, 3, 0),

    solid(TextStyleOutlineWhite, kHollow, 0xC8000000, 0, 0, 6, 0xFFFFFFFF, 2, 0),
    solid(TextStyleOutlineBlack, kHollow, 0xD8FFFFFF, 0, 0, 6, 0xFF0A0A0A, 2, 0),
    solid(TextStyleOutlineRed, kHollow, 0xE0FFFFFF, 0, 0, 6, 0xFFD81E28, 2, 0),
    solid(TextStyleOutlineGreen, kHollow, 0xD0021206, 0, 0, 6, 0xFF27DA56, 2, 0),
    solid(TextStyleOutlineBlue, kHollow, 0xE0FFFFFF, 0, 0, 6, 0xFF1F4FE0, 2, 0),

    gradient(TextStyleGradientWhite, 0xFFFFFFFF, 0xFFB4C2D2, 0xC0000000, 0xFF182430),
    gradient(TextStyleGradientBlack, 0xFF4A4F57, 0xFF050506, 0xB0000000, 0xFFFFFFFF),
    gradient(TextStyleGradientRed, 0xFFFF4A3C, 0xFF9C0412, 0xB0000000, 0xFFFFFFFF),
    gradient(TextStyleGradientGreen, 0xFFA6FF8E, 0xFF12A63C, 0xC0000000, 0xFF052410),
    gradient(TextStyleGradientBlue, 0xFF3F7CFF, 0xFF0A1E96, 0xB0000000, 0xFFFFFFFF),
    gradient(TextStyleGradientYellow, 0xFFFFF59A, 0xFFFFA412, 0xC0000000, 0xFF3A1E00),

    texture(TextStyleTexture0001, "gold.tga", 0xFFE8B93C, 0xC0000000, 0xFF2E1C00),
    texture(TextStyleTexture0002, "steel.tga", 0xFFB9C2CC, 0xC0000000, 0xFF121A22),
    texture(TextStyleTexture0003, "marble.tga", 0xFFE6E4E0, 0xC0000000, 0xFF20242C),
    texture(TextStyleTexture0004, "wood.tga", 0xFF8A5228, 0xB0000000, 0xFFFFF4E0),
};

/// The name without folders, of paths of either system.
QString bareName(const QString& path) {
  return path.mid(std::max(path.lastIndexOf(QLatin1Char('/')), path.lastIndexOf(QLatin1Char('\\'))) + 1);
}

}  // namespace

bool KorviaShowUtil::loadTextStylePreset(KorviaShowTextStylePreset preset, tagKorviaShowTextStyle& style) {
  const auto* row = std::find_if(std::begin(kPresets), std::end(kPresets),
                                 [preset](const PresetRow& entry) { return entry.preset == preset; });
  if (row == std::end(kPresets))
    return false;
  style.preset = preset;
  style.colorMode = row->mode;
  style.solidColor = row->solid;
  style.gradientBeginColor = row->gradientBegin;
  style.gradientEndColor = row->gradientEnd;
  style.texturePath = row->texture ? QString::fromLatin1(row->texture) : bareName(style.texturePath);
  style.shadowColor = row->shadow;
  style.shadowDistanceX = row->shadowX;
  style.shadowDistanceY = row->shadowY;
  style.shadowBlur = row->shadowBlur;
  style.outlineColor = row->outline;
  style.outlineSize = row->outlineSize;
  style.outlineBlur = row->outlineBlur;
  return true;
}
