// Brightness of a picture in two numbers, and how far two pictures are apart. Any thread.
#pragma once
#include <QImage>
#include <cmath>

namespace korvia::test {

struct PictureStats {
  double mean = 0;       ///< of the grey values, 0 to 255
  double deviation = 0;  ///< their standard deviation
};

inline PictureStats statsOf(const QImage& picture) {
  const QImage image = picture.convertToFormat(QImage::Format_Grayscale8);
  double sum = 0;
  double squares = 0;
  for (int y = 0; y < image.height(); ++y) {
    const uchar* row = image.constScanLine(y);
    for (int x = 0; x < image.width(); ++x) {
      const double grey = row[x];
      sum += grey;
      squares += grey * grey;
    }
  }
  const double count = static_cast<double>(image.width()) * image.height();
  if (count == 0)
    return {};
  const double mean = sum / count;
  return {mean, std::sqrt(std::max(0.0, squares / count - mean * mean))};
}

/// Share of pixels whose grey values differ by more than noise; 1 for pictures of different sizes.
inline double differenceOf(const QImage& first, const QImage& second) {
  constexpr int kNoise = 12;
  if (first.size() != second.size() || first.isNull())
    return 1;
  const QImage a = first.convertToFormat(QImage::Format_Grayscale8);
  const QImage b = second.convertToFormat(QImage::Format_Grayscale8);
  qint64 different = 0;
  for (int y = 0; y < a.height(); ++y) {
    const uchar* rowA = a.constScanLine(y);
    const uchar* rowB = b.constScanLine(y);
    for (int x = 0; x < a.width(); ++x)
      different += std::abs(rowA[x] - rowB[x]) > kNoise ? 1 : 0;
  }
  return static_cast<double>(different) / (static_cast<double>(a.width()) * a.height());
}

}  // namespace korvia::test
