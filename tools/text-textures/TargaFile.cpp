#include "TargaFile.h"

#include <QSaveFile>

namespace korvia {

bool writeTarga(const QString& path, const QImage& image) {
  constexpr int kHeaderBytes = 18;
  constexpr char kTrueColor = 2;
  constexpr char kBitsOfPixel = 24;
  constexpr char kTopFirst = 0x20;
  QByteArray bytes(kHeaderBytes, 0);
  bytes[2] = kTrueColor;
  bytes[12] = static_cast<char>(image.width() & 255);
  bytes[13] = static_cast<char>(image.width() >> 8);
  bytes[14] = static_cast<char>(image.height() & 255);
  bytes[15] = static_cast<char>(image.height() >> 8);
  bytes[16] = kBitsOfPixel;
  bytes[17] = kTopFirst;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) {
      const QRgb pixel = image.pixel(x, y);
      bytes += static_cast<char>(qBlue(pixel));
      bytes += static_cast<char>(qGreen(pixel));
      bytes += static_cast<char>(qRed(pixel));
    }
  QSaveFile file(path);
  return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}

}  // namespace korvia
