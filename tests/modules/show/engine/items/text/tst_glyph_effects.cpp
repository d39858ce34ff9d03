// Dilation and blur against slow formulas.
#include <QtTest>
#include <cmath>

#include "engine/items/text/GlyphEffects.h"

using namespace korvia;

namespace {

/// Some pixels covered wholly, some in part, most not.
Coverage speckled(int width, int height, quint32 seed, int everyNth) {
  Coverage coverage(width, height);
  for (std::uint8_t& sample : coverage.samples) {
    seed = seed * 1664525 + 1013904223;
    const quint32 number = seed >> 8;
    if (number % static_cast<quint32>(everyNth) == 0)
      sample = static_cast<std::uint8_t>(number / 64 % 2 == 0 ? 255 : 1 + number / 128 % 255);
  }
  return coverage;
}

int sampleOf(const Coverage& coverage, int x, int y) {
  return x < 0 || y < 0 || x >= coverage.width || y >= coverage.height ? 0 : coverage.row(y)[x];
}

int slowlyDilated(const Coverage& from, double radius, int x, int y) {
  double most = 0;
  for (int sourceY = 0; sourceY < from.height; ++sourceY)
    for (int sourceX = 0; sourceX < from.width; ++sourceX)
      if (const int sample = sampleOf(from, sourceX, sourceY); sample != 0)
        most = std::max(most, sample + 255 * (radius - std::hypot(sourceX - x, sourceY - y)));
  return static_cast<int>(std::lround(std::min(most, 255.0)));
}

double gaussian(const Coverage& from, double deviation, int x, int y) {
  double sum = 0;
  for (int sourceY = 0; sourceY < from.height; ++sourceY)
    for (int sourceX = 0; sourceX < from.width; ++sourceX) {
      const double dx = sourceX - x;
      const double dy = sourceY - y;
      sum += sampleOf(from, sourceX, sourceY) * std::exp(-(dx * dx + dy * dy) / (2 * deviation * deviation));
    }
  return sum / (2 * M_PI * deviation * deviation);
}

double totalOf(const Coverage& coverage) {
  double total = 0;
  for (const std::uint8_t sample : coverage.samples)
    total += sample;
  return total;
}

}  // namespace

class GlyphEffectsTest : public QObject {
  Q_OBJECT

 private slots:
  void dilationIsThatOfARoundPen_data() {
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("radius");
    for (const QSize size : {QSize(1, 1), QSize(7, 5), QSize(33, 17), QSize(19, 41)})
      for (const double radius : {0.4, 1.0, 1.33, 2.0, 3.5, 9.0})
        QTest::addRow("%dx%d by %g", size.width(), size.height(), radius) << size << radius;
  }
  void dilationIsThatOfARoundPen() {
    QFETCH(QSize, size);
    QFETCH(double, radius);
    Coverage from = speckled(size.width(), size.height(), 7, 23);
    from.samples.front() = 200;
    const Coverage out = dilated(from, radius);
    const int margin = dilationMargin(radius);
    QCOMPARE(out.width, size.width() + 2 * margin);
    QCOMPARE(out.height, size.height() + 2 * margin);
    for (int y = 0; y < out.height; ++y)
      for (int x = 0; x < out.width; ++x) {
        const int expected = slowlyDilated(from, radius, x - margin, y - margin);
        if (qAbs(sampleOf(out, x, y) - expected) > 1)
          QFAIL(qPrintable(QStringLiteral("%1 instead of %2 at %3, %4")
                               .arg(sampleOf(out, x, y))
                               .arg(expected)
                               .arg(x)
                               .arg(y)));
      }
  }
  void noPenLeavesTheCoverage() {
    const Coverage from = speckled(9, 9, 3, 4);
    QCOMPARE(dilated(from, 0).samples, from.samples);
    QCOMPARE(dilated(from, -5).samples, from.samples);
  }
  void blurIsNearlyGaussian_data() {
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("radius");
    for (const QSize size : {QSize(21, 13), QSize(17, 35)})
      for (const double radius : {3.0, 4.7, 8.0, 16.0})
        QTest::addRow("%dx%d by %g", size.width(), size.height(), radius) << size << radius;
  }
  void blurIsNearlyGaussian() {
    QFETCH(QSize, size);
    QFETCH(double, radius);
    // Three windows are no exact Gaussian.
    const Coverage from = speckled(size.width(), size.height(), 11, 3);
    const Coverage out = blurred(from, radius);
    const int margin = blurMargin(radius);
    QCOMPARE(out.width, size.width() + 2 * margin);
    QCOMPARE(out.height, size.height() + 2 * margin);
    for (int y = 0; y < out.height; ++y)
      for (int x = 0; x < out.width; ++x) {
        const double expected = gaussian(from, radius / 2, x - margin, y - margin);
        if (qAbs(sampleOf(out, x, y) - expected) > 6)
          QFAIL(qPrintable(QStringLiteral("%1 instead of %2 at %3, %4")
                               .arg(sampleOf(out, x, y))
                               .arg(expected)
                               .arg(x)
                               .arg(y)));
      }
  }
  void blurKeepsTheAmount_data() {
    QTest::addColumn<double>("radius");
    for (const double radius : {0.5, 1.0, 1.5, 2.0, 5.0, 40.0})
      QTest::addRow("by %g", radius) << radius;
  }
  void blurKeepsTheAmount() {
    QFETCH(double, radius);
    Coverage from(61, 61);
    std::fill(from.samples.begin(), from.samples.end(), std::uint8_t{255});
    const double total = totalOf(blurred(from, radius));
    QVERIFY2(qAbs(total / totalOf(from) - 1) < 0.01, qPrintable(QString::number(total / totalOf(from))));
  }
  void blurGrowsSteadily() {
    Coverage dot(1, 1);
    dot.samples[0] = 255;
    int before = 256;
    for (double radius = 0.25; radius < 6; radius += 0.25) {
      const Coverage out = blurred(dot, radius);
      const int centre = out.row(out.height / 2)[out.width / 2];
      QVERIFY2(centre <= before, qPrintable(QString::number(radius)));
      before = centre;
    }
    QVERIFY(before < 30);
  }
  void noRadiusDoesNotBlur() {
    const Coverage from = speckled(9, 9, 3, 2);
    QCOMPARE(blurred(from, 0).samples, from.samples);
    QCOMPARE(blurred(from, std::nan("")).samples, from.samples);
    QCOMPARE(dilated(from, std::nan("")).samples, from.samples);
  }
  void radiiAreLimited() {
    Coverage dot(1, 1);
    dot.samples[0] = 255;
    QCOMPARE(dilated(dot, 1e9).width, 1 + 2 * static_cast<int>(kMostEffectRadius));
    QVERIFY(blurred(dot, 1e9).width < 2000);
  }
  void nothingStaysNothing() {
    QCOMPARE(dilated(Coverage(), 3).height, 2 * dilationMargin(3));
    QCOMPARE(totalOf(dilated(Coverage(5, 5), 3)), 0.0);
    QCOMPARE(totalOf(blurred(Coverage(5, 5), 3)), 0.0);
  }
};

QTEST_GUILESS_MAIN(GlyphEffectsTest)
#include "tst_glyph_effects.moc"
