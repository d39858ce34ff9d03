// Items dragged on the monitors of a running engine: what the mouse does, what the console is told, and that
// nothing of it goes on air but the item's place.
#include <QApplication>
#include <QWidget>
#include <QtTest>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "KorviaShowObjectID.h"
#include "backend/IShowBackend.h"
#include "engine/items/ItemStage.h"
#include "engine/placing/ItemPlacing.h"
#include "engine/placing/MonitorMouse.h"

using namespace korvia;

namespace {

class Host final : public IShowBackendHost {
 public:
  void postResult(quint64 eventId, const QVariant& a1, const QVariant&, const QVariant&,
                  const QVariant&) override {
    QCOMPARE(eventId, quint64{ShowEventPlacementChanged});
    reports << fromVariant<tagKorviaShowPresentPlacement>(a1);
  }
  void setFrameRate(FrameRate) override {}
  IKorviaShowEngineSink* engineSink() override { return nullptr; }

  QList<tagKorviaShowPresentPlacement> reports;
};

}  // namespace

class ItemPlacingTest : public QObject {
  Q_OBJECT

  static constexpr FrameSize kSize{1280, 720};
  // Letterboxed: 20 pixels of black above and below.
  static constexpr QSize kMonitor{320, 220};

  Bus pvm_;
  Bus pgm_;
  std::unique_ptr<ItemStage> stage_;
  std::unique_ptr<ItemPlacing> placing_;
  std::unique_ptr<QWidget> monitor_;
  Host host_;
  tagKorviaShowTextInfo info_;

  void frame() {
    placing_->beginFrame();
    stage_->beginFrame();
    placing_->endFrame();
  }
  /// Where a place of the picture is on the monitor.
  static QPoint onMonitor(double x, double y) { return {qRound(x * 320), 20 + qRound(y * 180)}; }
  void press(const QPoint& at) { QTest::mousePress(monitor_.get(), Qt::LeftButton, {}, at); }
  void release(const QPoint& at) { QTest::mouseRelease(monitor_.get(), Qt::LeftButton, {}, at); }
  void moveTo(const QPoint& at, Qt::KeyboardModifiers modifiers = Qt::ControlModifier) {
    QMouseEvent event(QEvent::MouseMove, at, monitor_->mapToGlobal(at), Qt::NoButton, Qt::LeftButton,
                      modifiers);
    QApplication::sendEvent(monitor_.get(), &event);
  }
  tagKorviaShowPresentPlacement lastReport() {
    frame();
    return host_.reports.isEmpty() ? tagKorviaShowPresentPlacement() : host_.reports.last();
  }
  /// The centre of the title on a bus.
  QPointF shownAt(Bus& bus) {
    const LayerRef layer = bus.layers().layers().at(0).layer;
    return {layer->content.center().x() / kSize.width, layer->content.center().y() / kSize.height};
  }
  static bool isNear(const QPointF& a, const QPointF& b) { return QLineF(a, b).length() < 0.006; }

 private slots:
  void init() {
    host_ = Host();
    stage_ = std::make_unique<ItemStage>(pvm_, pgm_);
    stage_->open({kSize, {}});
    placing_ = std::make_unique<ItemPlacing>(stage_->texts());
    placing_->setHost(&host_);
    monitor_ = std::make_unique<QWidget>();
    monitor_->resize(kMonitor);
    monitor_->show();
    tagKorviaShowWindowPackInfo windows;
    windows.pgm.winId = monitor_->winId();
    placing_->open(kSize, windows);
    QTRY_COMPARE(monitor_->findChildren<MonitorMouse*>().size(), 1);
    info_ = {};
    info_.text = "Title";
    info_.style.fontSize = 120;
    stage_->texts().add(PGMObject, info_);
    stage_->texts().add(PVMObject, info_);
    QTRY_VERIFY((frame(), pgm_.layers().layers().size() == 1 && pgm_.layers().layers()[0].layer));
  }
  void cleanup() {
    placing_.reset();
    stage_.reset();
    monitor_.reset();
    pvm_ = {};
    pgm_ = {};
  }

  void aDragMovesTheItemOnBothBusesAndIsReported() {
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.75, 0.25));
    const tagKorviaShowPresentPlacement report = lastReport();
    QCOMPARE(host_.reports.size(), 1);
    QCOMPARE(report.kind, qint32{PresentKindSubtitle});
    QCOMPARE(report.key, info_.id);
    QVERIFY(isNear({report.x, report.y}, {0.75, 0.25}));
    QVERIFY(report.width > 0.05 && report.width < 0.5);
    QVERIFY(report.height > 0.02 && report.height < 0.4);
    QTRY_VERIFY((frame(), isNear(shownAt(pgm_), {0.75, 0.25})));
    QVERIFY(isNear(shownAt(pvm_), {0.75, 0.25}));
    release(onMonitor(0.75, 0.25));
    frame();
    QCOMPARE(host_.reports.size(), 1);
  }

  void aClickAndATrembleMoveNothing() {
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.5, 0.5) + QPoint(2, 1));
    release(onMonitor(0.5, 0.5) + QPoint(2, 1));
    frame();
    QVERIFY(host_.reports.isEmpty());
  }

  void theSecondPressOfADoubleClickTakesTheItemToo() {
    QTest::mouseDClick(monitor_.get(), Qt::LeftButton, {}, onMonitor(0.5, 0.5));
    QMouseEvent again(QEvent::MouseButtonDblClick, onMonitor(0.5, 0.5), Qt::LeftButton, Qt::LeftButton, {});
    QApplication::sendEvent(monitor_.get(), &again);
    moveTo(onMonitor(0.7, 0.3));
    QVERIFY(isNear({lastReport().x, lastReport().y}, {0.7, 0.3}));
  }

  void aMoveWithoutTheButtonLeavesTheItem() {
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.6, 0.5));
    frame();
    // The release went to another window.
    QMouseEvent hover(QEvent::MouseMove, onMonitor(0.8, 0.5), Qt::NoButton, Qt::NoButton, {});
    QApplication::sendEvent(monitor_.get(), &hover);
    moveTo(onMonitor(0.9, 0.5));
    frame();
    QCOMPARE(host_.reports.size(), 1);
    QVERIFY(!placing_->pgmGuides().isShown);
  }

  void aLostFocusLeavesTheItem() {
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.6, 0.5));
    frame();
    QFocusEvent lost(QEvent::FocusOut);
    QApplication::sendEvent(monitor_.get(), &lost);
    frame();
    QVERIFY(!placing_->pgmGuides().isShown);
  }

  void aPressBesideTheItemIsNobodys() {
    press(onMonitor(0.1, 0.9));
    moveTo(onMonitor(0.5, 0.5));
    release(onMonitor(0.5, 0.5));
    frame();
    QVERIFY(host_.reports.isEmpty());
    QVERIFY(!placing_->pgmGuides().isShown);
  }

  void guidesGoToTheMonitorAndNotToTheBus() {
    const std::size_t layers = pgm_.layers().layers().size();
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.7, 0.5) + QPoint(0, 3), Qt::NoModifier);
    frame();
    QVERIFY(placing_->pgmGuides().isShown);
    QVERIFY(!placing_->pvmGuides().isShown);
    QCOMPARE(placing_->pgmGuides().levelLine, std::optional<double>(0.5));
    QCOMPARE(pgm_.layers().layers().size(), layers);
    // The level centre line has attracted it.
    QVERIFY(qAbs(host_.reports.last().y - 0.5) < 0.003);
    release(onMonitor(0.7, 0.5));
    frame();
    QVERIFY(!placing_->pgmGuides().isShown);
  }

  void escapePutsItBack() {
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.8, 0.8));
    frame();
    QTest::keyClick(monitor_.get(), Qt::Key_Escape);
    const tagKorviaShowPresentPlacement report = lastReport();
    QCOMPARE(report.x, 0.5);
    QCOMPARE(report.y, 0.5);
    moveTo(onMonitor(0.2, 0.2));
    frame();
    QCOMPARE(host_.reports.size(), 2);
    QVERIFY(!placing_->pgmGuides().isShown);
  }

  void arrowKeysMoveByAPixelOfThePicture() {
    QTest::keyClick(monitor_.get(), Qt::Key_Right);
    frame();
    QVERIFY(host_.reports.isEmpty());
    press(onMonitor(0.5, 0.5));
    release(onMonitor(0.5, 0.5));
    QTest::keyClick(monitor_.get(), Qt::Key_Right);
    QCOMPARE(lastReport().x * kSize.width, 641.0);
    QCOMPARE(lastReport().y, 0.5);
    QTest::keyClick(monitor_.get(), Qt::Key_Up, Qt::ShiftModifier);
    QCOMPARE(lastReport().y * kSize.height, 350.0);
    QTest::keyClick(monitor_.get(), Qt::Key_Left);
    QTest::keyClick(monitor_.get(), Qt::Key_Down);
    QCOMPARE(lastReport().x * kSize.width, 640.0);
    QCOMPARE(lastReport().y * kSize.height, 351.0);
  }

  void anAnswerToAnEarlierReportDoesNotMoveTheItemBack() {
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.6, 0.5));
    frame();
    moveTo(onMonitor(0.7, 0.5));
    frame();
    QCOMPARE(host_.reports.size(), 2);
    placing_->commit(host_.reports[0]);
    QTRY_VERIFY((frame(), isNear(shownAt(pgm_), {0.7, 0.5})));
    // The last answer holds.
    tagKorviaShowPresentPlacement corrected = host_.reports[1];
    corrected.x = 0.25;
    placing_->commit(corrected);
    QTRY_VERIFY((frame(), isNear(shownAt(pgm_), {0.25, 0.5})));
    QCOMPARE(host_.reports.size(), 2);
  }

  void theItemShownLastIsOnTop() {
    tagKorviaShowTextInfo later = info_;
    later.id = "later";
    stage_->texts().add(PGMObject, later);
    QTRY_VERIFY((frame(), pgm_.layers().layers().size() == 2 && pgm_.layers().layers()[1].layer));
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.5, 0.7));
    QCOMPARE(lastReport().key, QString("later"));
    release(onMonitor(0.5, 0.7));
    moveTo(onMonitor(0.5, 0.5));
    stage_->texts().update(later);
    QTRY_VERIFY((frame(), isNear(QPointF(0.5, 0.5), shownAt(pgm_))));
    // An item that comes back comes on top.
    stage_->texts().remove(PGMObject, info_.id);
    for (int i = 0; i < 30; ++i)
      frame();
    stage_->texts().add(PGMObject, info_);
    frame();
    press(onMonitor(0.5, 0.5));
    moveTo(onMonitor(0.4, 0.5));
    QCOMPARE(lastReport().key, info_.id);
  }

  void aClosedShowLeavesTheMonitorAlone() {
    placing_->close();
    press(onMonitor(0.5, 0.5));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(monitor_->findChildren<MonitorMouse*>().isEmpty());
    moveTo(onMonitor(0.7, 0.5));
    release(onMonitor(0.7, 0.5));
    frame();
    QVERIFY(host_.reports.isEmpty());
  }

  void badPlacesAndUnknownItemsAreIgnored() {
    tagKorviaShowPresentPlacement placement;
    placement.kind = PresentKindSubtitle;
    placement.key = "nobody";
    placing_->commit(placement);
    placement.key = info_.id;
    placement.x = std::numeric_limits<double>::quiet_NaN();
    placing_->commit(placement);
    placement.kind = PresentKindLogo;
    placement.x = 0.1;
    placing_->commit(placement);
    frame();
    QVERIFY(isNear(shownAt(pgm_), {0.5, 0.5}));
    QVERIFY(host_.reports.isEmpty());
  }
};

QTEST_MAIN(ItemPlacingTest)
#include "tst_item_placing.moc"
