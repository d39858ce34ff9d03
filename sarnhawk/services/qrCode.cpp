#include "services/qrCode.h"

#include <qrencode.h>

#include <memory>

namespace {
// Of the standard, in modules.
constexpr int kQuietZone = 4;
}  // namespace

QImage qrCode(const QString& text, int modulePixels) {
  const QByteArray utf8 = text.toUtf8();
  const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
      QRcode_encodeString8bit(utf8.constData(), 0, QR_ECLEVEL_M), &QRcode_free);
  if (!code)
    return {};
  const int side = code->width + 2 * kQuietZone;
  QImage image(side, side, QImage::Format_RGB32);
  image.fill(Qt::white);
  for (int y = 0; y < code->width; ++y) {
    for (int x = 0; x < code->width; ++x) {
      if ((code->data[y * code->width + x] & 1) != 0)
        image.setPixel(x + kQuietZone, y + kQuietZone, qRgb(0, 0, 0));
    }
  }
  return image.scaled(side * modulePixels, side * modulePixels);
}
