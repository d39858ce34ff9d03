// The order of what a take does.
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaShowEvents.h"

class TakePanelTest : public QObject {
  Q_OBJECT

 private slots:
  void onAirRuleRunsBeforeTheTakeIsPosted() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    desk.console->getConfig()->channels[0].source.moviePGMAction = PGMActionPauseResume;
    const ScriptedSource* film = desk.show.source(0);
    int takes = 0;
    QStringList callsBeforeTake;
    desk.console->beforePost = [&](quint64 eventId) {
      if (eventId != ShowEventTake)
        return;
      ++takes;
      callsBeforeTake = film->calls;
    };
    desk.console->takeChannel(MediaChannel, 0);
    QCOMPARE(takes, 1);
    QCOMPARE(callsBeforeTake, QStringList{"release"});
  }
};

QTEST_MAIN(TakePanelTest)
#include "tst_take_panel.moc"
