// Each entrance and exit of texts: exact ends, and the direction that its name tells.
#include <QtTest>
#include <cmath>

#include "engine/items/ItemAnimation.h"

using namespace korvia;

class ItemAnimationTest : public QObject {
  Q_OBJECT

  static constexpr FrameSize kBus{1920, 1080};
  const QRectF item_{800, 900, 320, 60};

  /// The rectangle around the item in a pose.
  QRectF shown(const LayerPose& pose) const {
    QTransform transform;
    transform.translate(pose.anchorX + pose.moveX, pose.anchorY + pose.moveY);
    transform.rotate(pose.rotationDegrees);
    transform.scale(pose.scaleX, pose.scaleY);
    transform.translate(-pose.anchorX, -pose.anchorY);
    return transform.mapRect(item_);
  }
  static bool isSeen(const QRectF& rect) {
    return rect.intersects(QRectF(4, 4, kBus.width - 8, kBus.height - 8));
  }

 private slots:
  void endsAreExact() {
    for (int effect = 0; effect < kFirstExit; ++effect) {
      QVERIFY(entrancePose(effect, 1, item_, kBus).isPlain());
      QVERIFY(exitPose(effect + kFirstExit, 0, item_, kBus).isPlain());
      QCOMPARE(entrancePose(effect, 0, item_, kBus).opacity, 0.0);
      QCOMPARE(exitPose(effect + kFirstExit, 1, item_, kBus).opacity, 0.0);
    }
  }

  void nothingJumpsAtTheEnds() {
    for (int effect = 1; effect <= 16; ++effect) {
      for (const LayerPose& pose :
           {entrancePose(effect, 0.9999, item_, kBus), exitPose(effect + kFirstExit, 0.0001, item_, kBus)}) {
        const QRectF rect = shown(pose);
        QVERIFY2(std::abs(rect.left() - item_.left()) < 2 && std::abs(rect.bottom() - item_.bottom()) < 2,
                 QByteArray::number(effect));
        QVERIFY(pose.opacity > 0.999);
      }
      // Hidden means outside, without size, or transparent.
      const LayerPose hidden = entrancePose(effect, 0.0005, item_, kBus);
      const QRectF rect = shown(hidden);
      QVERIFY2(!isSeen(rect) || hidden.opacity < 0.01 || rect.width() * rect.height() < 30,
               QByteArray::number(effect));
    }
  }

  void motionIsSmooth() {
    for (int effect = 1; effect <= 16; ++effect) {
      QRectF before = shown(entrancePose(effect, 0.001, item_, kBus));
      for (int part = 2; part <= 1000; ++part) {
        const QRectF now = shown(entrancePose(effect, part / 1000.0, item_, kBus));
        QVERIFY2(QLineF(now.center(), before.center()).length() < 12, QByteArray::number(effect));
        before = now;
      }
    }
  }

  void namesTellTheDirection_data() {
    QTest::addColumn<int>("effect");
    QTest::addColumn<int>("right");
    QTest::addColumn<int>("down");
    // Where the item is before it has come.
    QTest::newRow("FlyInFromTop") << 1 << 0 << -1;
    QTest::newRow("FlyInFromBottom") << 2 << 0 << 1;
    QTest::newRow("FlyInFromLeft") << 3 << -1 << 0;
    QTest::newRow("FlyInFromRight") << 4 << 1 << 0;
    QTest::newRow("FlyInFromTopLeft") << 5 << -1 << -1;
    QTest::newRow("FlyInFromTopRight") << 6 << 1 << -1;
    QTest::newRow("FloatFromTopLeft") << 7 << -1 << -1;
    QTest::newRow("FloatFromTopRight") << 8 << 1 << -1;
    QTest::newRow("Ascend") << 15 << 0 << 1;
    QTest::newRow("Descend") << 16 << 0 << -1;
    QTest::newRow("FlyOutToLeft") << 29 << -1 << 0;
    QTest::newRow("FlyOutToTopRight") << 32 << 1 << -1;
    // What ascends leaves upwards.
    QTest::newRow("Ascend, exit") << 41 << 0 << -1;
    QTest::newRow("Descend, exit") << 42 << 0 << 1;
  }
  void namesTellTheDirection() {
    QFETCH(int, effect);
    QFETCH(int, right);
    QFETCH(int, down);
    const LayerPose pose =
        effect < kFirstExit ? entrancePose(effect, 0.5, item_, kBus) : exitPose(effect, 0.5, item_, kBus);
    const auto sign = [](double value) { return value > 1e-9 ? 1 : value < -1e-9 ? -1 : 0; };
    QCOMPARE(sign(pose.moveX), right);
    QCOMPARE(sign(pose.moveY), down);
  }

  void sizesTellTheRest() {
    QVERIFY(entrancePose(10, 0.5, item_, kBus).scaleX < 1);            // Magnify
    QVERIFY(entrancePose(14, 0.5, item_, kBus).scaleX > 1);            // Zoom
    QVERIFY(entrancePose(11, 0.4, item_, kBus).rotationDegrees != 0);  // Pinwheel
    QVERIFY(entrancePose(12, 0.4, item_, kBus).rotationDegrees != 0);  // Sling
    const LayerPose thread = entrancePose(13, 0.3, item_, kBus);
    QVERIFY(thread.scaleY < 0.1 && thread.scaleX > 1);
  }

  void unknownEffectsAppearAtOnce() {
    for (const int effect : {-1, 0, 17, 25, 999}) {
      QVERIFY(entrancePose(effect, 0.01, item_, kBus).isPlain());
      QVERIFY(exitPose(effect + kFirstExit, 0.99, item_, kBus).isPlain());
    }
  }
};

QTEST_APPLESS_MAIN(ItemAnimationTest)
#include "tst_item_animation.moc"
