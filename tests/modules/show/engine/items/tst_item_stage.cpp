// The paint pad's drawing on its way to program.
#include <QtTest>

#include "engine/items/ItemStage.h"

using namespace korvia;

namespace {

constexpr FrameSize kSize{8, 6};

QImage drawing(QColor color, QRect rect, QSize size = QSize(8, 6)) {
  QImage image(size, QImage::Format_ARGB32);
  image.fill(Qt::transparent);
  for (int y = rect.top(); y <= rect.bottom(); ++y)
    for (int x = rect.left(); x <= rect.right(); ++x)
      image.setPixelColor(x, y, color);
  return image;
}

}  // namespace

class ItemStageTest : public QObject {
  Q_OBJECT

 private:
  std::unique_ptr<Bus> preview_;
  std::unique_ptr<Bus> program_;
  std::unique_ptr<ItemStage> stage_;

  /// The one layer over program at the next frame; null when there is none.
  LayerRef shown() {
    stage_->beginFrame();
    const std::vector<StackedLayer>& layers = program_->layers().layers();
    return layers.empty() ? LayerRef() : layers.front().layer;
  }
  LayerRef shownAfter(const QImage& image) {
    const LayerRef before = shown();
    stage_->commitPaintPad(image);
    LayerRef now;
    return QTest::qWaitFor([&] { return (now = shown()) != before; }, 10000) ? now : LayerRef();
  }

 private slots:
  void init() {
    program_ = std::make_unique<Bus>();
    preview_ = std::make_unique<Bus>();
    stage_ = std::make_unique<ItemStage>(*preview_, *program_);
    stage_->open({kSize, {}});
  }
  void cleanup() {
    stage_.reset();
    preview_.reset();
    program_.reset();
  }

  void aDrawingLiesWhereItWasDrawn() {
    stage_->setPaintPadValid(true);
    const LayerRef layer = shownAfter(drawing(Qt::white, QRect(2, 2, 4, 2)));
    QVERIFY(layer);
    QVERIFY((layer->rect == FrameRect{2, 2, 4, 2}));
    QVERIFY(layer->busSize == kSize);
  }

  void aDrawingOfAnotherShapeIsNotStretched() {
    stage_->setPaintPadValid(true);
    const LayerRef layer = shownAfter(drawing(Qt::white, QRect(0, 0, 40, 10), QSize(40, 10)));
    QVERIFY(layer);
    QVERIFY((layer->rect == FrameRect{0, 2, 8, 2}));
  }

  void aDrawingIsNotShownBeforeItIsValid() {
    stage_->commitPaintPad(drawing(Qt::white, QRect(0, 0, 8, 6)));
    QVERIFY(!QTest::qWaitFor([&] { return shown() != nullptr; }, 100));
    stage_->setPaintPadValid(true);
    QTRY_VERIFY(shown());
  }

  void theEndForgetsTheDrawing() {
    stage_->setPaintPadValid(true);
    QVERIFY(shownAfter(drawing(Qt::white, QRect(0, 0, 8, 6))));
    stage_->setPaintPadValid(false);
    QVERIFY(!shown());
    stage_->setPaintPadValid(true);
    QVERIFY(!shown());
    QVERIFY(shownAfter(drawing(Qt::white, QRect(0, 0, 2, 2))));
  }

  void theEndCatchesADrawingThatIsStillBeingMade() {
    stage_->setPaintPadValid(true);
    stage_->commitPaintPad(drawing(Qt::white, QRect(0, 0, 1600, 900), QSize(1600, 900)));
    stage_->setPaintPadValid(false);
    stage_->setPaintPadValid(true);
    // A later drawing is done after the first would have been.
    const LayerRef layer = shownAfter(drawing(Qt::white, QRect(0, 0, 2, 2)));
    QVERIFY(layer);
    QVERIFY((layer->rect == FrameRect{0, 0, 2, 2}));
  }

  void anEmptyDrawingCoversNothing() {
    stage_->setPaintPadValid(true);
    QVERIFY(shownAfter(drawing(Qt::white, QRect(0, 0, 8, 6))));
    stage_->commitPaintPad(drawing(Qt::transparent, QRect(0, 0, 8, 6)));
    QTRY_VERIFY(!shown());
    QVERIFY(shownAfter(drawing(Qt::white, QRect(0, 0, 8, 6))));
    stage_->commitPaintPad(QImage());
    QTRY_VERIFY(!shown());
  }
};

QTEST_GUILESS_MAIN(ItemStageTest)
#include "tst_item_stage.moc"
