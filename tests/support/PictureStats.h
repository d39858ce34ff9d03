// Brightness of a picture in two numbers, and how far two pictures are apart. Any thread.
#pragma once
#include <QImage>
#include <cmath>

namespace korvia::test {

struct PictureStats {
  double mean = 0;       ///< of the grey values, 0 to 255
  double deviation = 0;  ///< their standard deviation
};

inline PictureStats statsOf(const QImage& image) {
  double sum = 0;
  double squares = 0;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const double grey = qGray(image.pixel(x, y));
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
inline double differenceOf(const QImage& a, const QImage& b) {
  constexpr int kNoise = 12;
  if (a.size() != b.size() || a.isNull())
    return 1;
  qint64 different = 0;
  for (int y = 0; y < a.height(); ++y) {
    for (int x = 0; x < a.width(); ++x)
      different += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x, y))) > kNoise ? 1 : 0;
  }
  return static_cast<double>(different) / (static_cast<double>(a.width()) * a.height());
}

}  // namespace korvia::test
