// Noise: evenly distributed, repeatable, and smooth where it has to be.
#include <QtTest>
#include <cmath>

#include "engine/mix/SeededRandom.h"
#include "engine/mix/distortions/Noise.h"

using namespace korvia;

class NoiseTest : public QObject {
  Q_OBJECT

 private slots:
  void numbersAreSpreadEvenly() {
    std::array<int, 10> bins{};
    for (int y = -50; y < 50; ++y)
      for (int x = -50; x < 50; ++x) {
        const double random = seededRandom(42, x, y);
        QVERIFY(random >= 0 && random < 1);
        ++bins[static_cast<std::size_t>(random * 10)];
      }
    for (const int bin : bins)
      QVERIFY2(bin > 850 && bin < 1150, qPrintable(QString::number(bin)));
  }

  void neighboursHaveNothingInCommon() {
    // Correlation of places and seeds next to each other; 0.03 is three standard deviations of random
    // numbers.
    double right = 0;
    double below = 0;
    double seed = 0;
    for (std::uint32_t i = 0; i < 10000; ++i) {
      const int x = static_cast<int>(i % 100);
      const int y = static_cast<int>(i / 100);
      const double here = seededRandom(i % 7, x, y) - 0.5;
      right += here * (seededRandom(i % 7, x + 1, y) - 0.5);
      below += here * (seededRandom(i % 7, x, y + 1) - 0.5);
      seed += here * (seededRandom(i % 7 + 1, x, y) - 0.5);
    }
    for (const double sum : {right, below, seed})
      QVERIFY2(std::abs(sum * 12 / 10000) < 0.03, qPrintable(QString::number(sum)));
  }

  void cloudsAreTheSameFromAllSides() {
    CloudNoise walked(9);
    for (int i = 0; i < 400; ++i) {
      const double x = i * 0.013;
      const double y = 3 - i * 0.007;
      QCOMPARE(walked.at(x, y), CloudNoise(9).at(x, y));
    }
  }

  void cloudsAreSmooth() {
    CloudNoise clouds(4);
    double least = 1;
    double most = 0;
    double last = clouds.at(0, 0.3);
    for (int i = 1; i < 20000; ++i) {
      const double now = clouds.at(i * 0.001, 0.3);
      QVERIFY(now >= 0 && now <= 1);
      QVERIFY2(std::abs(now - last) < 0.006, qPrintable(QString("%1 at %2").arg(now - last).arg(i)));
      least = std::min(least, now);
      most = std::max(most, now);
      last = now;
    }
    QVERIFY2(most - least > 0.4, qPrintable(QString::number(most - least)));
  }

  void anotherSeedMakesOtherClouds() {
    double sum = 0;
    for (int i = 0; i < 100; ++i)
      sum += std::abs(CloudNoise(1).at(i * 0.37, 1) - CloudNoise(2).at(i * 0.37, 1));
    QVERIFY2(sum / 100 > 0.05, qPrintable(QString::number(sum)));
  }

  void aRingIsClosed() {
    const DirectionNoise ring(3, 7);
    QCOMPARE(ring.linearAt(1), ring.linearAt(0));
    QCOMPARE(ring.smoothAt(1), ring.smoothAt(0));
    QCOMPARE(ring.linearAt(0), seededRandom(3, 0, 7));
    QVERIFY(qAbs(ring.smoothAt(2.0 / 7) - seededRandom(3, 2, 7)) < 1e-9);
    // A quarter of the way: in a straight line, and on a soft one.
    const double a = seededRandom(3, 4, 7);
    const double b = seededRandom(3, 5, 7);
    QVERIFY(qAbs(ring.linearAt(4.25 / 7) - (a + (b - a) * 0.25)) < 1e-9);
    QVERIFY(qAbs(ring.smoothAt(4.25 / 7) - (a + (b - a) * 0.15625)) < 1e-9);
  }
};

QTEST_GUILESS_MAIN(NoiseTest)
#include "tst_noise.moc"
