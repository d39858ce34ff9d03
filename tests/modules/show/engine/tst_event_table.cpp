// Events reach the part that takes them, with typed arguments; others are logged once.
#include <QtTest>

#include "KorviaShowObjectID.h"
#include "engine/EventTable.h"
#include "tagKorviaWindowInfo.h"

using namespace korvia;

namespace {

struct Part {
  QStringList calls;

  void plain() { calls << "plain"; }
  void numbers(int a, float b, double c) { calls << QString("%1 %2 %3").arg(a).arg(double(b)).arg(c); }
  void text(int id, const QString& value) { calls << QString("%1 '%2'").arg(id).arg(value); }
  void record(int id, const tagKorviaWindowInfo& info) { calls << QString("%1 %2").arg(id).arg(info.right); }
};

}  // namespace

class EventTableTest : public QObject {
  Q_OBJECT

 private slots:
  void eachEventFindsItsPart() {
    EventTable table;
    Part first;
    Part second;
    table.on(ShowEventClose, first, &Part::plain);
    table.on(ShowEventTake, second, &Part::numbers);
    table.dispatch({ShowEventClose, {}});
    table.dispatch({ShowEventTake, {16, 0.5F, 0.25, 7}});
    QCOMPARE(first.calls, QStringList{"plain"});
    QCOMPARE(second.calls, QStringList{"16 0.5 0.25"});
  }

  void argumentsAreConverted() {
    EventTable table;
    Part part;
    table.on(ShowEventTake, part, &Part::numbers);
    table.on(ShowEventSnapshot, part, &Part::text);
    table.on(ShowEventResizeWindow, part, &Part::record);
    tagKorviaWindowInfo info;
    info.right = 99;
    table.dispatch({ShowEventTake, {1U, 0.5, 1.5F}});
    table.dispatch({ShowEventSnapshot, {PGMObject, QString("a.png")}});
    table.dispatch({ShowEventResizeWindow, {PVMObject, toVariant(info)}});
    QCOMPARE(part.calls, (QStringList{"1 0.5 1.5", "4098 'a.png'", "4097 99"}));
  }

  void uselessArgumentsAreEmpty() {
    EventTable table;
    Part part;
    table.on(ShowEventTake, part, &Part::numbers);
    table.on(ShowEventSnapshot, part, &Part::text);
    table.on(ShowEventResizeWindow, part, &Part::record);
    table.dispatch({ShowEventTake, {}});
    table.dispatch({ShowEventSnapshot, {QString("no number")}});
    table.dispatch({ShowEventResizeWindow, {PVMObject, QString("no record")}});
    QCOMPARE(part.calls, (QStringList{"0 0 0", "0 ''", "4097 -1"}));
  }

  void anEventThatNobodyTakesIsLoggedOnce() {
    EventTable table;
    QTest::ignoreMessage(QtInfoMsg, "no part of the engine takes event 38 ShowEventAddText");
    table.dispatch({ShowEventAddText, {}});
    QTest::ignoreMessage(QtInfoMsg, "no part of the engine takes event 4711 ");
    table.dispatch({4711, {}});
    static int further = 0;
    const QtMessageHandler before =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) { ++further; });
    table.dispatch({ShowEventAddText, {}});
    table.dispatch({4711, {}});
    qInstallMessageHandler(before);
    QCOMPARE(further, 0);
  }
};

QTEST_GUILESS_MAIN(EventTableTest)
#include "tst_event_table.moc"
