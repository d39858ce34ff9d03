#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QtTest>

#include "shell/GAppCaptionBar.h"
#include "shell/MainFrame.h"
#include "shell/tagKorviaProductInfo.h"

namespace {

constexpr int kCaptionHeight = 40;
constexpr QRect kPlace(100, 100, 1200, 800);

/// A frame with a caption bar and no console, for what needs none.
class BareFrame : public MainFrame {
 public:
  BareFrame() {
    _captionBar = new GAppCaptionBar(&_product, this, this);
    _captionBar->resize(1200, kCaptionHeight);
    setMinimumSize(1000, 600);
    setGeometry(kPlace);
  }

  void press(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton) {
    QMouseEvent event(QEvent::MouseButtonPress, pos, button, button, Qt::NoModifier);
    mousePressEvent(&event);
  }

  void letGo(const QPoint& pos, Qt::MouseButton button = Qt::LeftButton) {
    QMouseEvent event(QEvent::MouseButtonRelease, pos, button, Qt::NoButton, Qt::NoModifier);
    mouseReleaseEvent(&event);
  }

  /// Picks the edges at `pos` and takes hold of them.
  void grabAt(const QPoint& pos) {
    onHoverMove(pos, pos);
    press(pos);
  }

 private:
  tagKorviaProductInfo _product;
};

}  // namespace

class TestMainFrame : public QObject {
  Q_OBJECT

 private slots:
  void answersForItsInterfaces_data();
  void answersForItsInterfaces();
  void answersAlikeFromEachInterface();
  void nullStaysNull();
  void isValidFromTheStart();
  void releaseDeletesTheWholeObject();
  void hasNoFrameOfTheSystem();
  void withoutConsoleNothingHappens();
  void picksEdges_data();
  void picksEdges();
  void pressedFrameKeepsItsEdges();
  void onlyTheLeftButtonTakesHold();
  void dragsEdges_data();
  void dragsEdges();
  void dragsTheCorner();
  void releasedEdgeStays();
  void otherButtonsDoNotRelease();
  void menuStandsRightAlignedUnderItsButton();
};

void TestMainFrame::answersForItsInterfaces_data() {
  QTest::addColumn<quint64>("first");
  QTest::addColumn<quint64>("second");
  QTest::addColumn<unsigned>("version");
  QTest::addColumn<QString>("answer");

  const quint64 frame1 = 0x49D5A23642312429;
  const quint64 frame2 = 0x12A6A2480D1DA614;
  const quint64 console2 = 0x17A6A2480D1DA681;
  QTest::newRow("frame") << frame1 << frame2 << 0x01010100u << "IMainFrame";
  QTest::newRow("frame, 1.1.0") << frame1 << frame2 << 0x01010000u << "IMainFrame";
  QTest::newRow("frame, 1.1.2") << frame1 << frame2 << 0x01010200u << "";
  QTest::newRow("console") << frame1 << console2 << 0x01010100u << "IKorviaSarnhawk";
  QTest::newRow("console, low byte") << frame1 << console2 << 0x010101FFu << "IKorviaSarnhawk";
  QTest::newRow("console, 1.1.2") << frame1 << console2 << 0x01010200u << "";
  QTest::newRow("console, 1.0.1") << frame1 << console2 << 0x01000100u << "";
  QTest::newRow("console, 2.1.1") << frame1 << console2 << 0x02010100u << "";
  QTest::newRow("services") << frame1 << quint64(0x12A6A2480D1DA684) << 0x01010100u << "";
  QTest::newRow("root") << quint64(0x4A455A5B92D87E91) << quint64(0x0B2BB3E62F38FD8C) << 0x01010100u << "";
  QTest::newRow("nothing") << quint64(0) << quint64(0) << 0x01010100u << "";
}

void TestMainFrame::answersForItsInterfaces() {
  QFETCH(quint64, first);
  QFETCH(quint64, second);
  QFETCH(unsigned, version);
  QFETCH(QString, answer);
  MainFrame frame;
  void* expected = nullptr;
  if (answer == "IMainFrame")
    expected = static_cast<IMainFrame*>(&frame);
  else if (answer == "IKorviaSarnhawk")
    expected = static_cast<IKorviaSarnhawk*>(&frame);
  const Identifier id{first, second};
  QCOMPARE(frame.queryInterface(&id, version), expected);
}

void TestMainFrame::answersAlikeFromEachInterface() {
  MainFrame frame;
  IMainFrame* asFrame = &frame;
  IKorviaSarnhawk* asConsole = &frame;
  for (const Identifier* id : {&kIMainFrameId, &kIKorviaSarnhawkId, &kIUnknownExId})
    QCOMPARE(asFrame->queryInterface(id, kInterfaceVersion),
             asConsole->queryInterface(id, kInterfaceVersion));
}

void TestMainFrame::nullStaysNull() {
  MainFrame* none = nullptr;
  QVERIFY(static_cast<IMainFrame*>(none) == nullptr);
  QVERIFY(static_cast<IKorviaSarnhawk*>(none) == nullptr);
  QVERIFY(MainFrame().queryInterface(nullptr, kInterfaceVersion) == nullptr);
}

void TestMainFrame::isValidFromTheStart() {
  QVERIFY(MainFrame().isValid());
}

void TestMainFrame::releaseDeletesTheWholeObject() {
  auto* frame = new MainFrame;
  const QPointer<QWidget> watcher(frame);
  IKorviaSarnhawk* console = frame;
  QVERIFY(console->release());
  QVERIFY(watcher.isNull());
}

void TestMainFrame::hasNoFrameOfTheSystem() {
  MainFrame frame;
  QVERIFY(frame.windowFlags() & Qt::FramelessWindowHint);
  QVERIFY(frame.parent() == nullptr);
  QCOMPARE(frame.frameShape(), QFrame::Panel);
  QCOMPARE(frame.getWidget(), static_cast<QWidget*>(&frame));
}

void TestMainFrame::withoutConsoleNothingHappens() {
  MainFrame frame;
  QPushButton button;
  frame.showMainMenu(&button);
  frame.showOutputConfig();
  frame.showOutputStatistics();
  frame.showNavProgramList();
  frame.takeSnapshot();
  frame.pgmPlayback();
  frame.quitApp();
  static_cast<IKorviaSarnhawk*>(&frame)->close();
  static_cast<IKorviaSarnhawk*>(&frame)->close();
  frame.show();
  QVERIFY(static_cast<QWidget*>(&frame)->close());
  QVERIFY(!frame.isVisible());
}

void TestMainFrame::picksEdges_data() {
  QTest::addColumn<QPoint>("pos");
  QTest::addColumn<int>("shape");

  QTest::newRow("middle") << QPoint(600, 400) << int(Qt::ArrowCursor);
  QTest::newRow("left") << QPoint(5, 400) << int(Qt::SizeHorCursor);
  QTest::newRow("left, too far") << QPoint(6, 400) << int(Qt::ArrowCursor);
  QTest::newRow("left, outside") << QPoint(-5, 400) << int(Qt::SizeHorCursor);
  QTest::newRow("right") << QPoint(1195, 400) << int(Qt::SizeHorCursor);
  QTest::newRow("right, too far") << QPoint(1194, 400) << int(Qt::ArrowCursor);
  QTest::newRow("bottom") << QPoint(600, 795) << int(Qt::SizeVerCursor);
  QTest::newRow("bottom, too far") << QPoint(600, 794) << int(Qt::ArrowCursor);
  QTest::newRow("top") << QPoint(600, 0) << int(Qt::ArrowCursor);
  QTest::newRow("left beside the caption") << QPoint(0, 20) << int(Qt::ArrowCursor);
  QTest::newRow("left at the caption's edge") << QPoint(0, 40) << int(Qt::ArrowCursor);
  QTest::newRow("left under the caption") << QPoint(0, 41) << int(Qt::SizeHorCursor);
  QTest::newRow("right beside the caption") << QPoint(1199, 20) << int(Qt::ArrowCursor);
  QTest::newRow("left and bottom") << QPoint(2, 798) << int(Qt::SizeBDiagCursor);
  QTest::newRow("right and bottom") << QPoint(1198, 798) << int(Qt::SizeFDiagCursor);
}

void TestMainFrame::picksEdges() {
  QFETCH(QPoint, pos);
  QFETCH(int, shape);
  BareFrame frame;
  frame.setCursor(Qt::WaitCursor);
  frame.onHoverMove(pos, pos);
  QCOMPARE(int(frame.cursor().shape()), shape);
}

void TestMainFrame::pressedFrameKeepsItsEdges() {
  BareFrame frame;
  frame.grabAt(QPoint(2, 400));
  frame.onHoverMove(QPoint(2, 799), QPoint(2, 799));
  QCOMPARE(frame.cursor().shape(), Qt::SizeHorCursor);
  QCOMPARE(frame.geometry(), kPlace);
}

void TestMainFrame::onlyTheLeftButtonTakesHold() {
  BareFrame frame;
  frame.onHoverMove(QPoint(1198, 400), QPoint(1198, 400));
  frame.press(QPoint(1198, 400), Qt::RightButton);
  frame.onHoverMove(QPoint(1208, 400), QPoint(1198, 400));
  QCOMPARE(frame.geometry(), kPlace);
}

void TestMainFrame::dragsEdges_data() {
  QTest::addColumn<QPoint>("grab");
  QTest::addColumn<QPoint>("oldPos");
  QTest::addColumn<QPoint>("pos");
  QTest::addColumn<QRect>("result");

  const QPoint left(2, 400);
  QTest::newRow("left edge outwards")
      << left << QPoint(2, 400) << QPoint(-8, 400) << QRect(90, 100, 1210, 800);
  QTest::newRow("left edge inwards") << left << QPoint(2, 400) << QPoint(12, 400)
                                     << QRect(110, 100, 1190, 800);
  QTest::newRow("left edge stops at the minimum width")
      << left << QPoint(2, 400) << QPoint(302, 400) << QRect(300, 100, 1000, 800);
  QTest::newRow("left edge waits for the mouse to come back")
      << left << QPoint(52, 400) << QPoint(42, 400) << kPlace;
  QTest::newRow("left edge follows once the mouse is past it")
      << left << QPoint(7, 400) << QPoint(-3, 400) << QRect(95, 100, 1205, 800);
  QTest::newRow("left edge ignores the height") << left << QPoint(2, 400) << QPoint(2, 300) << kPlace;

  const QPoint right(1198, 400);
  QTest::newRow("right edge outwards")
      << right << QPoint(1198, 400) << QPoint(1208, 400) << QRect(100, 100, 1210, 800);
  QTest::newRow("right edge inwards")
      << right << QPoint(1198, 400) << QPoint(1188, 400) << QRect(100, 100, 1190, 800);
  QTest::newRow("right edge stops at the minimum width")
      << right << QPoint(1198, 400) << QPoint(898, 400) << QRect(100, 100, 1000, 800);
  QTest::newRow("right edge waits for the mouse to come back")
      << right << QPoint(1100, 400) << QPoint(1110, 400) << kPlace;
  QTest::newRow("right edge gives up the gap")
      << right << QPoint(1185, 400) << QPoint(1195, 400) << QRect(100, 100, 1207, 800);

  const QPoint bottom(600, 797);
  QTest::newRow("bottom edge outwards")
      << bottom << QPoint(600, 797) << QPoint(600, 807) << QRect(100, 100, 1200, 810);
  QTest::newRow("bottom edge inwards")
      << bottom << QPoint(600, 797) << QPoint(600, 787) << QRect(100, 100, 1200, 790);
  QTest::newRow("bottom edge stops at the minimum height")
      << bottom << QPoint(600, 797) << QPoint(600, 497) << QRect(100, 100, 1200, 600);
  QTest::newRow("bottom edge waits for the mouse to come back")
      << bottom << QPoint(600, 700) << QPoint(600, 710) << kPlace;
  QTest::newRow("bottom edge gives up the gap")
      << bottom << QPoint(600, 785) << QPoint(600, 795) << QRect(100, 100, 1200, 808);
  QTest::newRow("no edge") << QPoint(600, 400) << QPoint(600, 400) << QPoint(650, 450) << kPlace;
}

void TestMainFrame::dragsEdges() {
  QFETCH(QPoint, grab);
  QFETCH(QPoint, oldPos);
  QFETCH(QPoint, pos);
  QFETCH(QRect, result);
  BareFrame frame;
  frame.grabAt(grab);
  frame.onHoverMove(pos, oldPos);
  QCOMPARE(frame.geometry(), result);
}

void TestMainFrame::dragsTheCorner() {
  BareFrame frame;
  frame.grabAt(QPoint(1198, 798));
  frame.onHoverMove(QPoint(1218, 808), QPoint(1198, 798));
  QCOMPARE(frame.geometry(), QRect(100, 100, 1220, 810));
}

void TestMainFrame::releasedEdgeStays() {
  BareFrame frame;
  frame.grabAt(QPoint(1198, 400));
  frame.letGo(QPoint(1198, 400));
  frame.onHoverMove(QPoint(1208, 400), QPoint(1198, 400));
  QCOMPARE(frame.geometry(), kPlace);
}

void TestMainFrame::otherButtonsDoNotRelease() {
  BareFrame frame;
  frame.grabAt(QPoint(1198, 400));
  frame.letGo(QPoint(1198, 400), Qt::RightButton);
  frame.onHoverMove(QPoint(1208, 400), QPoint(1198, 400));
  QCOMPARE(frame.geometry(), QRect(100, 100, 1210, 800));
}

void TestMainFrame::menuStandsRightAlignedUnderItsButton() {
  QWidget window;
  window.setGeometry(200, 150, 600, 300);
  QPushButton button(&window);
  button.setGeometry(500, 20, 32, 30);
  QMenu menu;
  menu.resize(180, 90);
  QCOMPARE(MainFrame::mainMenuPosition(&button, &menu), QPoint(200 + 500 + 32 - 180, 150 + 20 + 30 + 4));
}

QTEST_MAIN(TestMainFrame)
#include "tst_main_frame.moc"
