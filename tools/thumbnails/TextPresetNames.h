// The names of the presets of text styles, which are also those of the files of their pictures. Any thread.
#pragma once
#include <array>

namespace korvia {

/// By the number of the preset, KorviaShowTextStylePreset.
inline constexpr std::array kTextPresetNames{
    "default",
    "solid_white",
    "solid_black",
    "solid_red",
    "solid_green",
    "solid_blue",
    "solid_shadow_white",
    "solid_shadow_black",
    "solid_shadow_red",
    "solid_shadow_green",
    "solid_shadow_blue",
    "solid_outline_white",
    "solid_outline_black",
    "solid_outline_red",
    "solid_outline_green",
    "solid_outline_blue",
    "outline_white",
    "outline_black",
    "outline_red",
    "outline_green",
    "outline_blue",
    "gradient_white",
    "gradient_black",
    "gradient_red",
    "gradient_green",
    "gradient_blue",
    "gradient_yellow",
    "texture_0001",
    "texture_0002",
    "texture_0003",
    "texture_0004",
};
inline constexpr int kTextPresetCount = static_cast<int>(kTextPresetNames.size());

}  // namespace korvia
