// Draws all presets of text styles over a dark, a bright and a busy picture on one sheet, to judge them by
// eye. Needs a QGuiApplication; main thread.
#pragma once
#include <QImage>
#include <QString>

namespace korvia {

/// @param textureFolder folder of the textures.
QImage drawPresetSheet(const QString& textureFolder);

}  // namespace korvia
