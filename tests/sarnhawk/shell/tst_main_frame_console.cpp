// The frame around the real console, on the engine that shows nothing.
#include <QApplication>
#include <QMainWindow>
#include <QMenu>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>
#include <algorithm>

#include "ConsoleDesk.h"
#include "console/GFloatWidgetToolButton.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "output/GDialogOutputConfig.h"
#include "output/GWidgetOutputStatistics.h"
#include "shell/GAppCaptionBar.h"
#include "shell/MainFrame.h"
#include "shell/tagKorviaProductInfo.h"
#include "support/Holdings.h"

class TestMainFrameConsole : public QObject {
  Q_OBJECT

 private slots:
  void init();
  void cleanup();

  void captionBarStandsOverTheConsole();
  void consoleIsAPlainChild();
  void windowHasTitleAndFitsTheScreen();
  void menuPopsUpUnderItsButton();
  void captionButtonsOpenTheWindowsOfTheOutputs();
  void closingTheWindowEndsTheEventLoop();
  void closeMayComeTwice();
  void consolesOneAfterAnotherLeaveNothing();
  void windowManagersCloseAsksAndNoChangesNothing();
  void windowManagersCloseAndYesClosesAfterOneQuestion();
  void closeThatComesTwiceAsksOnce();
  void signalClosesWhileTheQuestionIsOpen();

 private:
  /// What Qt makes of the close that a window manager asks for. False when it was refused.
  bool closeAsTheWindowManager();

  QTemporaryDir _root;
  MainFrame* _frame = nullptr;
};

void TestMainFrameConsole::init() {
  tagKorviaProductInfo product;
  std::copy_n(u"Desk", 5, product.title);
  _frame = new MainFrame;
  QVERIFY(_frame->create(nullptr, nullptr, nullptr, &product, _root.path() + "/"));
}

void TestMainFrameConsole::cleanup() {
  static_cast<IKorviaSarnhawk*>(_frame)->close();
  _frame->release();
}

void TestMainFrameConsole::captionBarStandsOverTheConsole() {
  auto* outer = qobject_cast<QVBoxLayout*>(_frame->layout());
  QVERIFY(outer);
  QCOMPARE(outer->contentsMargins(), QMargins());
  QCOMPARE(outer->spacing(), 0);
  QCOMPARE(outer->count(), 2);
  QVERIFY(qobject_cast<GAppCaptionBar*>(outer->itemAt(0)->widget()));
  auto* inner = qobject_cast<QVBoxLayout*>(outer->itemAt(1)->layout());
  QVERIFY(inner);
  QCOMPARE(inner->contentsMargins(), QMargins(5, 5, 5, 5));
  QCOMPARE(inner->spacing(), 0);
  QCOMPARE(inner->count(), 1);
  QVERIFY(qobject_cast<QMainWindow*>(inner->itemAt(0)->widget()));
  QCOMPARE(_frame->lineWidth(), 0);
  QVERIFY(_frame->testAttribute(Qt::WA_Hover));
  QVERIFY(_frame->hasMouseTracking());
}

void TestMainFrameConsole::consoleIsAPlainChild() {
  auto* console = _frame->findChild<QMainWindow*>();
  QVERIFY(console);
  QVERIFY(!console->isWindow());
  QCOMPARE(console->window(), static_cast<QWidget*>(_frame));
  QVERIFY(console->isVisible());
}

void TestMainFrameConsole::windowHasTitleAndFitsTheScreen() {
  QCOMPARE(_frame->windowTitle(), QStringLiteral("Desk"));
  QVERIFY(_frame->isVisible());
  QVERIFY(QGuiApplication::primaryScreen()->availableGeometry().contains(_frame->geometry()));
}

void TestMainFrameConsole::menuPopsUpUnderItsButton() {
  auto* button = _frame->findChild<QToolButton*>("_mainMenuToolButton");
  QPoint place;
  QPoint expected;
  QStringList texts;
  QTimer poll;
  // The menu runs an event loop of its own until it is closed here.
  connect(&poll, &QTimer::timeout, [&] {
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu)
      return;
    place = menu->pos();
    expected = MainFrame::mainMenuPosition(button, menu);
    for (const QAction* action : menu->actions())
      texts << action->text();
    menu->close();
  });
  poll.start(10);
  button->click();
  QCOMPARE(place, expected);
  QCOMPARE(texts, QStringList({"System Config", "", "Environment Check", "About", "Quit"}));
}

void TestMainFrameConsole::captionButtonsOpenTheWindowsOfTheOutputs() {
  const auto* statistics = _frame->findChild<GWidgetOutputStatistics*>();
  QVERIFY(statistics);
  QVERIFY(!statistics->isVisible());
  _frame->findChild<QToolButton*>("_streamStatusToolButton")->click();
  QVERIFY(statistics->isVisible());

  const auto dialogs = [] {
    const QWidgetList windows = QApplication::topLevelWidgets();
    return std::count_if(windows.begin(), windows.end(), [](QWidget* window) {
      return window->isVisible() && qobject_cast<GDialogOutputConfig*>(window);
    });
  };
  QCOMPARE(int(dialogs()), 0);
  auto* button = _frame->findChild<QToolButton*>("_outputConfigToolButton");
  button->click();
  QCOMPARE(int(dialogs()), 1);
  button->click();
  QCOMPARE(int(dialogs()), 1);
}

void TestMainFrameConsole::closingTheWindowEndsTheEventLoop() {
  constexpr int kGaveUp = 9;
  QTimer::singleShot(0, _frame, [this] { static_cast<QWidget*>(_frame)->close(); });
  QTimer giveUp;
  connect(&giveUp, &QTimer::timeout, [] { QApplication::exit(kGaveUp); });
  giveUp.start(10000);
  QCOMPARE(QApplication::exec(), 0);
  QVERIFY(!_frame->isVisible());
}

void TestMainFrameConsole::closeMayComeTwice() {
  static_cast<IKorviaSarnhawk*>(_frame)->close();
  QVERIFY(!_frame->findChild<QMainWindow*>());
  static_cast<IKorviaSarnhawk*>(_frame)->close();
  _frame->takeSnapshot();
  _frame->quitApp();
}

void TestMainFrameConsole::consolesOneAfterAnotherLeaveNothing() {
  const auto cycle = [this] {
    cleanup();
    init();
  };
  const auto threads = [] { return holdingsNow().threads; };
  cycle();
  cycle();
  const Holdings afterTwo = holdingsNow();
  for (int n = 0; n < 3; ++n)
    cycle();
  // The listing of sound devices ends its thread after it has answered.
  QTRY_VERIFY(threads() <= afterTwo.threads);
  QCOMPARE(holdingsNow().descriptors, afterTwo.descriptors);
}

bool TestMainFrameConsole::closeAsTheWindowManager() {
  QCloseEvent event;
  QSpontaneKeyEvent::setSpontaneous(&event);
  // sendEvent would make it an event of the program again.
  qApp->notify(_frame, &event);
  return event.isAccepted();
}

void TestMainFrameConsole::windowManagersCloseAsksAndNoChangesNothing() {
  auto* config = _frame->findChild<GWidgetDisplayObjectConfig*>();
  config->show();
  const QList<GFloatWidgetToolButton*> floats = _frame->findChildren<GFloatWidgetToolButton*>();
  floats.first()->showInFull();
  const QuestionAnswer answer(QMessageBox::No);
  QVERIFY(!closeAsTheWindowManager());
  QTRY_VERIFY(answer.wasAsked);
  QCOMPARE(answer.title, QString("Message"));
  QCOMPARE(answer.text, QString("Are you sure to quit ?"));
  QCOMPARE(answer.buttons, QMessageBox::Yes | QMessageBox::No);
  QVERIFY(_frame->isVisible());
  QVERIFY(config->isVisible());
  QVERIFY(floats.first()->isVisible());
}

void TestMainFrameConsole::windowManagersCloseAndYesClosesAfterOneQuestion() {
  const QuestionAnswer yes(QMessageBox::Yes);
  QVERIFY(!closeAsTheWindowManager());
  QTRY_VERIFY(!_frame->isVisible());
  QVERIFY(yes.wasAsked);
  QCoreApplication::processEvents();
  QVERIFY(!QApplication::activeModalWidget());
}

void TestMainFrameConsole::closeThatComesTwiceAsksOnce() {
  const QuestionAnswer no(QMessageBox::No);
  closeAsTheWindowManager();
  closeAsTheWindowManager();
  QTRY_VERIFY(no.wasAsked);
  QCoreApplication::processEvents();
  QVERIFY(!QApplication::activeModalWidget());
}

void TestMainFrameConsole::signalClosesWhileTheQuestionIsOpen() {
  bool closed = false;
  const QuestionAnswer signal([this, &closed](QDialog* question) {
    closed = static_cast<QWidget*>(_frame)->close() && !_frame->isVisible();
    question->reject();
  });
  closeAsTheWindowManager();
  QTRY_VERIFY(signal.wasAsked);
  QVERIFY(closed);
}

QTEST_MAIN(TestMainFrameConsole)
#include "tst_main_frame_console.moc"
