// All pictures that the console's pickers look for beside the application. Needs a QGuiApplication; main
// thread.
#pragma once
#include <QSize>
#include <QString>

namespace korvia {

/// The pictures of transitions. A tile is 100 x 84, or 100 x 100 with a caption strip at its foot, and
/// stretches what it shows; in this shape the picture goes into either as it is.
inline constexpr QSize kEffectPictureSize{100, 84};

/// Writes the pictures under `programFolder`, where the catalogue says that they lie beside the application.
/// The first failure ends it, with a line in the log.
bool writeThumbnails(const QString& programFolder);

}  // namespace korvia
