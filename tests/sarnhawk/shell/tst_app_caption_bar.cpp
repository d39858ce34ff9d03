#include <QLabel>
#include <QToolButton>
#include <QtTest>
#include <algorithm>

#include "ConsoleLook.h"
#include "shell/GAppCaptionBar.h"
#include "shell/IMainFrame.h"
#include "shell/tagKorviaProductInfo.h"

namespace {

class FakeFrame : public QWidget, public IMainFrame {
 public:
  FakeFrame() : QWidget(nullptr, Qt::FramelessWindowHint) {}

  bool isValid() override { return true; }
  bool release() override { return true; }
  void* queryInterface(const Identifier*, unsigned) override { return nullptr; }
  QWidget* getWidget() override { return this; }
  void showMainMenu(QWidget* button) override { calls << "showMainMenu " + button->objectName(); }
  void showOutputConfig() override { calls << "showOutputConfig"; }
  void showOutputStatistics() override { calls << "showOutputStatistics"; }
  void showNavProgramList() override { calls << "showNavProgramList"; }
  void takeSnapshot() override { calls << "takeSnapshot"; }
  void pgmPlayback() override { calls << "pgmPlayback"; }
  void quitApp() override { calls << "quitApp"; }

  QStringList calls;
};

}  // namespace

class TestAppCaptionBar : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { initSarnhawkResources(); }
  void init();
  void cleanup();

  void showsIconAndTitle();
  void isFortyPixelsHigh();
  void buttonsHaveIcons();
  void buttonsCallTheFrame_data();
  void buttonsCallTheFrame();
  void missingWindowsHaveDisabledButtons();
  void playbackSlotHasNoButton();
  void maxTogglesTheFrame();
  void maxLeavesFullScreen();
  void minimizes();
  void dragsTheFrame();
  void maximizedFrameIsNotDragged();
  void otherButtonsDoNotDrag();
  void doubleClickIsTheMaxButton();

 private:
  QToolButton* button(const char* name) const { return _bar->findChild<QToolButton*>(name); }
  void send(QEvent::Type type, const QPoint& pos, Qt::MouseButton button = Qt::LeftButton) {
    QMouseEvent event(type, pos, _bar->mapToGlobal(pos), button, button, Qt::NoModifier);
    QCoreApplication::sendEvent(_bar, &event);
  }

  tagKorviaProductInfo _product;
  FakeFrame* _frame = nullptr;
  GAppCaptionBar* _bar = nullptr;
};

void TestAppCaptionBar::init() {
  std::copy_n(u"Desk \u03a9", 7, _product.title);
  _frame = new FakeFrame;
  _frame->setGeometry(100, 100, 800, 600);
  _bar = new GAppCaptionBar(&_product, _frame, _frame);
  _bar->setGeometry(0, 0, 800, 40);
  _frame->show();
}

void TestAppCaptionBar::cleanup() {
  delete _frame;
}

void TestAppCaptionBar::showsIconAndTitle() {
  auto* title = _bar->findChild<QLabel*>("_appTitleLabel");
  QCOMPARE(title->text(), QString::fromUtf8("Desk \xce\xa9"));
  QVERIFY(title->minimumWidth() >= 140);
  auto* icon = _bar->findChild<QLabel*>("_appIconLabel");
  QCOMPARE(icon->size(), QSize(32, 32));
  QVERIFY(!icon->pixmap(Qt::ReturnByValue).isNull());
}

void TestAppCaptionBar::isFortyPixelsHigh() {
  QCOMPARE(_bar->minimumHeight(), 40);
  QCOMPARE(_bar->maximumHeight(), 40);
}

void TestAppCaptionBar::buttonsHaveIcons() {
  const auto buttons = _bar->findChildren<QToolButton*>();
  QCOMPARE(buttons.size(), 8);
  for (const QToolButton* each : buttons)
    QVERIFY2(!each->icon().pixmap(20, 20).isNull(), qPrintable(each->objectName()));
  QCOMPARE(_bar->mainMenuToolButton(), button("_mainMenuToolButton"));
  QCOMPARE(_bar->mainMenuToolButton()->toolTip(), QStringLiteral("Main Menu"));
}

void TestAppCaptionBar::buttonsCallTheFrame_data() {
  QTest::addColumn<QByteArray>("name");
  QTest::addColumn<QString>("call");
  QTest::newRow("close") << QByteArray("_closeAppToolButton") << "quitApp";
  QTest::newRow("menu") << QByteArray("_mainMenuToolButton") << "showMainMenu _mainMenuToolButton";
  QTest::newRow("output") << QByteArray("_outputConfigToolButton") << "showOutputConfig";
  QTest::newRow("stream") << QByteArray("_streamStatusToolButton") << "showOutputStatistics";
  QTest::newRow("snapshot") << QByteArray("_takeSnapshotToolButton") << "takeSnapshot";
  QTest::newRow("program list") << QByteArray("_showNavProgramListToolButton") << "showNavProgramList";
}

void TestAppCaptionBar::buttonsCallTheFrame() {
  QFETCH(QByteArray, name);
  QFETCH(QString, call);
  QToolButton* pushed = button(name.constData());
  QVERIFY(pushed);
  pushed->setEnabled(true);
  pushed->click();
  QCOMPARE(_frame->calls, QStringList(call));
}

void TestAppCaptionBar::missingWindowsHaveDisabledButtons() {
  QVERIFY(button("_outputConfigToolButton")->isEnabled());
  QVERIFY(button("_streamStatusToolButton")->isEnabled());
  QVERIFY(!button("_showNavProgramListToolButton")->isEnabled());
  QVERIFY(button("_takeSnapshotToolButton")->isEnabled());
  QVERIFY(button("_mainMenuToolButton")->isEnabled());
}

void TestAppCaptionBar::playbackSlotHasNoButton() {
  _bar->onClicked_pgmPlaybackToolButton();
  QCOMPARE(_frame->calls, QStringList("pgmPlayback"));
  QVERIFY(!button("_pgmPlaybackToolButton"));
}

void TestAppCaptionBar::maxTogglesTheFrame() {
  button("_maxAppToolButton")->click();
  QVERIFY(_frame->isMaximized());
  button("_maxAppToolButton")->click();
  QVERIFY(!_frame->isMaximized());
}

void TestAppCaptionBar::maxLeavesFullScreen() {
  _frame->showFullScreen();
  _bar->onClicked_maxAppToolButton();
  QVERIFY(!_frame->isFullScreen());
  QVERIFY(!_frame->isMaximized());
}

void TestAppCaptionBar::minimizes() {
  button("_minAppToolButton")->click();
  QVERIFY(_frame->isMinimized());
}

void TestAppCaptionBar::dragsTheFrame() {
  send(QEvent::MouseButtonPress, QPoint(300, 20));
  send(QEvent::MouseMove, QPoint(330, 35));
  QCOMPARE(_frame->pos(), QPoint(130, 115));
  send(QEvent::MouseButtonRelease, QPoint(300, 20));
  send(QEvent::MouseMove, QPoint(400, 35));
  QCOMPARE(_frame->pos(), QPoint(130, 115));
}

void TestAppCaptionBar::maximizedFrameIsNotDragged() {
  _frame->showMaximized();
  const QPoint before = _frame->pos();
  send(QEvent::MouseButtonPress, QPoint(300, 20));
  send(QEvent::MouseMove, QPoint(330, 35));
  QCOMPARE(_frame->pos(), before);
}

void TestAppCaptionBar::otherButtonsDoNotDrag() {
  send(QEvent::MouseButtonPress, QPoint(300, 20), Qt::RightButton);
  send(QEvent::MouseMove, QPoint(330, 35), Qt::RightButton);
  QCOMPARE(_frame->pos(), QPoint(100, 100));
}

void TestAppCaptionBar::doubleClickIsTheMaxButton() {
  send(QEvent::MouseButtonPress, QPoint(300, 20));
  send(QEvent::MouseButtonRelease, QPoint(300, 20));
  send(QEvent::MouseButtonDblClick, QPoint(300, 20));
  QVERIFY(_frame->isMaximized());
  send(QEvent::MouseButtonDblClick, QPoint(300, 20));
  QVERIFY(!_frame->isMaximized());
}

QTEST_MAIN(TestAppCaptionBar)
#include "tst_app_caption_bar.moc"
