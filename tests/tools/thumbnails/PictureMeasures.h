// Measures by which tests judge pictures. Pure functions, any thread.
#pragma once
#include <QImage>
#include <cstdlib>

/// How far the channels of two pictures of one size are apart, as a mean, 0 to 255.
inline double meanDifference(const QImage& a, const QImage& b) {
  qint64 sum = 0;
  for (int y = 0; y < a.height(); ++y)
    for (int x = 0; x < a.width(); ++x) {
      const QRgb p = a.pixel(x, y);
      const QRgb q = b.pixel(x, y);
      sum += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) + std::abs(qBlue(p) - qBlue(q));
    }
  return static_cast<double>(sum) / (3.0 * a.width() * a.height());
}

/// The mean distance of a picture's pixels from its average colour.
inline double structure(const QImage& image) {
  const QImage average = image.scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  return meanDifference(image, average.scaled(image.size()));
}
