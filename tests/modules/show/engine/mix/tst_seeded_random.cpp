// Seeded random numbers and shuffles: repeatable, different for each seed, evenly distributed.
#include <QtTest>
#include <set>
#include <vector>

#include "engine/mix/SeededRandom.h"

using namespace korvia;

class SeededRandomTest : public QObject {
  Q_OBJECT

 private slots:
  void aShuffleHasEachPlaceOnce() {
    for (const std::uint32_t seed : {0U, 1U, 77U, 4294967295U})
      for (const int count : {1, 2, 3, 7, 48, 64, 65, 2304}) {
        const Shuffle shuffle(count, seed);
        std::set<int> places;
        for (int i = 0; i < count; ++i)
          places.insert(shuffle.place(i));
        QCOMPARE(int(places.size()), count);
        QCOMPARE(*places.begin(), 0);
        QCOMPARE(*places.rbegin(), count - 1);
      }
  }

  void seedsShuffleInTheirOwnWay() {
    std::set<std::vector<int>> orders;
    for (std::uint32_t seed = 0; seed < 200; ++seed) {
      const Shuffle shuffle(48, seed);
      std::vector<int> order(48);
      for (int i = 0; i < 48; ++i)
        order[static_cast<std::size_t>(i)] = shuffle.place(i);
      orders.insert(order);
    }
    QCOMPARE(int(orders.size()), 200);
  }

  void aShuffleKeepsNoNeighbours() {
    int together = 0;
    for (std::uint32_t seed = 0; seed < 100; ++seed) {
      const Shuffle shuffle(48, seed);
      for (int i = 1; i < 48; ++i)
        together += std::abs(shuffle.place(i) - shuffle.place(i - 1)) == 1;
    }
    // Of 4700 pairs two in 48 are neighbours in a random order: 196.
    QVERIFY2(together > 98 && together < 392, qPrintable(QString::number(together)));
  }

  void numbersAreSpreadEvenly() {
    for (const std::uint32_t seed : {0U, 1U, 12345U}) {
      int counts[10] = {};
      for (std::uint32_t i = 0; i < 10000; ++i) {
        const double number = seededRandom(seed, i);
        QVERIFY(number >= 0 && number < 1);
        ++counts[static_cast<int>(number * 10)];
      }
      for (const int count : counts)
        QVERIFY2(count > 850 && count < 1150, qPrintable(QString::number(count)));
    }
    QVERIFY(seededRandom(1, 0) != seededRandom(2, 0));
    QVERIFY(seededRandom(1, 0) != seededRandom(1, 1));
  }
};

QTEST_GUILESS_MAIN(SeededRandomTest)
#include "tst_seeded_random.moc"
