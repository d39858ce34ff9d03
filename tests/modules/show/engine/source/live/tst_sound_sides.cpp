// What each number of the record does with the two sides.
#include <QtTest>

#include "engine/source/live/SoundSides.h"

using namespace korvia;

class SoundSidesTest : public QObject {
  Q_OBJECT

 private slots:
  void sides_data() {
    QTest::addColumn<int>("filter");
    QTest::addColumn<float>("left");
    QTest::addColumn<float>("right");
    QTest::newRow("none") << 0 << 1.0F << 2.0F;
    QTest::newRow("left to both") << 1 << 1.0F << 1.0F;
    QTest::newRow("right to both") << 2 << 2.0F << 2.0F;
    QTest::newRow("swapped") << 3 << 2.0F << 1.0F;
    QTest::newRow("unknown") << 4 << 1.0F << 2.0F;
    QTest::newRow("negative") << -1 << 1.0F << 2.0F;
  }

  void sides() {
    QFETCH(int, filter);
    float left[] = {1, 1, 1};
    float right[] = {2, 2, 2};
    applySides(soundSidesOf(filter), {left, right, 3});
    for (int i = 0; i < 3; ++i) {
      QTEST(left[i], "left");
      QTEST(right[i], "right");
    }
  }
};

QTEST_GUILESS_MAIN(SoundSidesTest)
#include "tst_sound_sides.moc"
