// Draws the seamless textures that texts can be filled with. Pure functions, any thread.
#pragma once
#include <QImage>
#include <QString>
#include <QStringList>

namespace korvia {

/// The names, which are the names of the files without suffix.
QStringList textTextureNames();

/// 256 x 256 pixels, opaque; its edges continue on the opposite side. Null for a name that is not listed.
QImage drawTextTexture(const QString& name);

/// Writes all of them as TGA files into the folder; false, with a line on standard error, when one cannot be
/// written.
bool writeTextTextures(const QString& folder);

}  // namespace korvia
