// Writes all pictures that the console's pickers look for beside the application. Needs a QGuiApplication;
// main thread.
#pragma once
#include <QSize>
#include <QString>

namespace korvia {

/// Size of a transition's picture. A tile stretches its picture and is 100 x 84, or 100 x 100 with a caption
/// at its foot. A picture of this size fits both without being distorted.
inline constexpr QSize kEffectPictureSize{100, 84};
/// Size of the picture of a preset of text styles, twice that of its tile.
inline constexpr QSize kPresetPictureSize{128, 128};
/// Size of the picture of an entrance or exit, twice that of its tile.
inline constexpr QSize kAnimationPictureSize{120, 120};

/// The program whose pickers these are, which some paths contain.
inline constexpr const char* kPicturedProgram = "korvia";

/// Writes the pictures below `programFolder` under the paths that the catalogue gives them beside the
/// application. False at the first failure, which is logged.
bool writeThumbnails(const QString& programFolder);

}  // namespace korvia
