// Writes pictures as uncompressed TGA files with 24 bits a pixel, which is what the style editor lists. Any
// thread.
#pragma once
#include <QImage>
#include <QString>

namespace korvia {

/// False when the file cannot be written. Alpha is left out.
bool writeTarga(const QString& path, const QImage& image);

}  // namespace korvia
