// What the operator's hand does to the items of a monitor.
#include <QtTest>

#include "KorviaShowObjectID.h"
#include "engine/placing/ItemDrag.h"

using namespace korvia;

class ItemDragTest : public QObject {
  Q_OBJECT

  static constexpr FrameSize kSize{1000, 500};

  std::shared_ptr<ItemBoard> board_;
  std::unique_ptr<ItemDrag> drag_;

  /// An item of 100 x 50 pixels around a place.
  static PlacedItem item(const QString& key, double x, double y, int bus = PGMObject) {
    PlacedItem placed;
    placed.key = key;
    placed.bus = bus;
    placed.x = x;
    placed.y = y;
    placed.content = {x * kSize.width - 50, y * kSize.height - 25, 100, 50};
    return placed;
  }
  void publish(std::vector<PlacedItem> items) { board_->publish(items); }
  struct Taken {
    std::vector<ItemMove> moves;
    MonitorGuides pvm;
    MonitorGuides pgm;
  };
  Taken take() {
    Taken taken;
    board_->take(taken.moves, taken.pvm, taken.pgm);
    return taken;
  }
  /// The only move since the last call, in pixels.
  QPointF moved() {
    const Taken taken = take();
    return taken.moves.size() == 1 ? QPointF(taken.moves[0].x * kSize.width, taken.moves[0].y * kSize.height)
                                   : QPointF(-1, -1);
  }

 private slots:
  void init() {
    board_ = std::make_shared<ItemBoard>(kSize);
    drag_ = std::make_unique<ItemDrag>(board_, PGMObject);
  }

  void takesTheTopmostItemOfItsBus() {
    publish({item("below", 0.3, 0.3), item("above", 0.32, 0.3), item("other", 0.3, 0.3, PVMObject)});
    QVERIFY(!drag_->take({600, 400}));
    QVERIFY(!drag_->isHeld());
    QVERIFY(drag_->take({310, 150}));
    drag_->moveTo({320, 150}, {});
    QCOMPARE(take().moves.at(0).key, QString("above"));
    QVERIFY(drag_->take({255, 150}));
    drag_->moveTo({265, 150}, {});
    QCOMPARE(take().moves.at(0).key, QString("below"));
  }

  void theItemFollowsTheHand() {
    publish({item("a", 0.3, 0.3)});
    drag_->take({310, 150});
    drag_->moveTo({410, 110}, {});
    QCOMPARE(moved(), QPointF(400, 110));
    // Several moves before the engine takes them are one.
    drag_->moveTo({420, 110}, {});
    drag_->moveTo({430, 111}, {});
    QCOMPARE(moved(), QPointF(420, 111));
    drag_->moveTo({-2000, 5000}, {});
    QCOMPARE(moved(), QPointF(-2010, 5000));
  }

  void guidesAreShownOnThisMonitorWhileItIsHeld() {
    publish({item("a", 0.3, 0.3)});
    drag_->take({310, 150});
    QVERIFY(!take().pgm.isShown);
    drag_->moveTo({410, 160}, {});
    const Taken taken = take();
    QVERIFY(taken.pgm.isShown);
    QVERIFY(!taken.pvm.isShown);
    QCOMPARE(taken.pgm.item, QRectF(0.35, 0.27, 0.1, 0.1));
    drag_->release();
    QVERIFY(!take().pgm.isShown);
    QVERIFY(!drag_->isHeld());
    drag_->moveTo({500, 500}, {});
    QVERIFY(take().moves.empty());
  }

  void aStraightDragKeepsTheAxisOfTheGreaterMovement() {
    publish({item("a", 0.3, 0.3)});
    drag_->take({300, 150});
    ItemDrag::Rules straight;
    straight.isStraight = true;
    drag_->moveTo({340, 170}, straight);
    QCOMPARE(moved(), QPointF(340, 150));
    drag_->moveTo({340, 250}, straight);
    QCOMPARE(moved(), QPointF(300, 250));
    drag_->moveTo({340, 250}, {});
    QCOMPARE(moved(), QPointF(340, 250));
  }

  void linesAttract_data() {
    QTest::addColumn<QPointF>("at");
    QTest::addColumn<QPointF>("expected");
    QTest::newRow("out of reach") << QPointF(480, 230) << QPointF(480, 230);
    QTest::newRow("upright centre") << QPointF(492, 150) << QPointF(500, 150);
    QTest::newRow("level centre") << QPointF(300, 258) << QPointF(300, 250);
    QTest::newRow("left margin") << QPointF(95, 150) << QPointF(100, 150);
    QTest::newRow("right margin") << QPointF(908, 150) << QPointF(900, 150);
    QTest::newRow("top margin") << QPointF(300, 46) << QPointF(300, 50);
    QTest::newRow("corner") << QPointF(905, 446) << QPointF(900, 450);
  }
  void linesAttract() {
    QFETCH(QPointF, at);
    QFETCH(QPointF, expected);
    publish({item("a", 0.3, 0.3)});
    drag_->take({300, 150});
    drag_->moveTo(at, {false, {8, 8}});
    const Taken taken = take();
    QCOMPARE(taken.moves.at(0).x * kSize.width, expected.x());
    QCOMPARE(taken.moves.at(0).y * kSize.height, expected.y());
    QCOMPARE(taken.pgm.uprightLine.has_value(), at.x() != expected.x());
    QCOMPARE(taken.pgm.levelLine.has_value(), at.y() != expected.y());
    drag_->moveTo(at, {});
    QCOMPARE(moved(), at);
  }

  void aCrawlMovesUpAndDownOnly() {
    PlacedItem crawl = item("a", 1, 0.3);
    crawl.isCrawl = true;
    crawl.content = {0, 125, 1000, 50};
    publish({crawl});
    QVERIFY(drag_->take({700, 150}));
    drag_->moveTo({400, 160}, {});
    QCOMPARE(moved(), QPointF(1000, 160));
    ItemDrag::Rules straight;
    straight.isStraight = true;
    drag_->moveTo({400, 165}, straight);
    QCOMPARE(moved(), QPointF(1000, 165));
    publish({crawl});
    drag_->release();
    QVERIFY(drag_->step({1, 1}));
    QCOMPARE(moved(), QPointF(1000, 151));
  }

  void cancelPutsTheItemBack() {
    publish({item("a", 0.3, 0.3)});
    drag_->take({300, 150});
    drag_->moveTo({400, 400}, {});
    publish({item("a", 0.4, 0.8)});
    drag_->cancel();
    QCOMPARE(moved(), QPointF(300, 150));
    QVERIFY(!drag_->isHeld());
    QVERIFY(!take().pgm.isShown);
  }

  void aStepBetweenTakingAndPublishingIsNotLost() {
    publish({item("a", 0.3, 0.3)});
    drag_->take({300, 150});
    drag_->release();
    drag_->step({1, 0});
    QCOMPARE(moved(), QPointF(301, 150));
    // The engine has the move and has not told the new place yet.
    drag_->step({1, 0});
    publish({item("a", 0.301, 0.3)});
    QCOMPARE(moved(), QPointF(302, 150));
  }

  void aPressBesideEndsADragWhoseReleaseWasLost() {
    publish({item("a", 0.3, 0.3)});
    drag_->take({300, 150});
    drag_->moveTo({400, 150}, {});
    QVERIFY(take().pgm.isShown);
    QVERIFY(!drag_->take({900, 450}));
    QVERIFY(!take().pgm.isShown);
    QVERIFY(!drag_->isHeld());
  }

  void stepsMoveTheItemHeldLast() {
    QVERIFY(!drag_->step({1, 0}));
    publish({item("a", 0.3, 0.3), item("b", 0.6, 0.3)});
    drag_->take({300, 150});
    drag_->release();
    QVERIFY(drag_->step({1, 0}));
    // The engine has not moved it yet; the next step begins at the new place.
    QVERIFY(drag_->step({10, -1}));
    QCOMPARE(moved(), QPointF(311, 149));
    publish({item("b", 0.6, 0.3)});
    QVERIFY(!drag_->step({1, 0}));
  }
};

QTEST_GUILESS_MAIN(ItemDragTest)
#include "tst_item_drag.moc"
