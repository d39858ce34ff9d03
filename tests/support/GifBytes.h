// Small animated GIF files, each picture of one colour. Pure function.
#pragma once
#include <QByteArray>
#include <QSize>
#include <QVector>
#include <algorithm>

namespace korvia::test {

struct GifPicture {
  enum Color { Black, White, Red, Transparent };
  Color color = Black;
  int delayCs = 10;  ///< hundredths of a second
};

/// Writes no loop count when `repeats` is negative; 0 means for ever.
inline QByteArray gifBytes(const QVector<GifPicture>& pictures, QSize size, int repeats = -1) {
  const auto word = [](int value) {
    return QByteArray(1, static_cast<char>(value & 0xFF)) +
           QByteArray(1, static_cast<char>(value >> 8 & 0xFF));
  };
  QByteArray file = "GIF89a" + word(size.width()) + word(size.height());
  // A table of four colours.
  file += QByteArray::fromHex(
      "910000"
      "000000"
      "ffffff"
      "ff0000"
      "00ff00");
  if (repeats >= 0)
    file +=
        QByteArray::fromHex("21ff0b") + "NETSCAPE2.0" + QByteArray::fromHex("0301") + word(repeats) + '\0';
  // A reader may decide by the first picture whether there is transparency.
  const bool transparent = std::any_of(pictures.begin(), pictures.end(), [](const GifPicture& picture) {
    return picture.color == GifPicture::Transparent;
  });
  for (const GifPicture& picture : pictures) {
    // The picture is taken away before the next one.
    file += QByteArray::fromHex("21f904") + (transparent ? '\x09' : '\x08') + word(picture.delayCs) +
            (transparent ? '\x03' : '\0') + '\0';
    file += ',' + word(0) + word(0) + word(size.width()) + word(size.height()) + '\0';
    // LZW without repetitions: the table is cleared after each second sample, so that codes stay 3 bits long.
    QByteArray codes;
    unsigned bits = 0;
    int count = 0;
    const auto put = [&](int code) {
      bits |= static_cast<unsigned>(code) << count;
      for (count += 3; count >= 8; count -= 8, bits >>= 8)
        codes += static_cast<char>(bits & 0xFF);
    };
    constexpr int kClear = 4;
    constexpr int kEnd = 5;
    for (int i = 0; i < size.width() * size.height(); ++i) {
      if (i % 2 == 0)
        put(kClear);
      put(picture.color);
    }
    put(kEnd);
    codes += static_cast<char>(bits & 0xFF);
    file += '\x02';
    for (int i = 0; i < codes.size(); i += 255) {
      const QByteArray block = codes.mid(i, 255);
      file += static_cast<char>(block.size()) + block;
    }
    file += '\0';
  }
  return file + ';';
}

}  // namespace korvia::test
