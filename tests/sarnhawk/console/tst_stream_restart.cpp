// Streams that deliver nothing are opened again.
#include <QtTest>

#include "StripDesk.h"
#include "console/GWidgetDisplayObject.h"

class StreamRestartTest : public QObject {
  Q_OBJECT

 private slots:
  void silentStreamRestartsAfterTheTimeout() {
    StripDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindUrl));
    source->rate = 0;
    desk.strip(0x11)->onFrameTick();
    desk.passTime(3200);
    desk.strip(0x11)->onFrameTick();
    QVERIFY(source->calls.isEmpty());
    desk.passTime(1);
    QTest::ignoreMessage(QtDebugMsg, "media stream restart : 1");
    desk.strip(0x11)->onFrameTick();
    QCOMPARE(source->calls, (QStringList{"stop", "play"}));
  }

  void streamThatNeverDeliversRestartsForEver() {
    StripDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindKrmp));
    source->rate = 0;
    for (int ms = 0; ms < 10000; ms += 100) {
      desk.strip(0x11)->onFrameTick();
      desk.passTime(100);
    }
    // Every 3200 ms and a tick, counted from the first silent tick.
    QCOMPARE(source->calls.count("play"), 2);
  }

  void streamThatRecoversIsLeftAlone() {
    StripDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindUrl));
    source->rate = 0;
    desk.strip(0x11)->onFrameTick();
    desk.passTime(3000);
    source->rate = 0.1F;
    desk.strip(0x11)->onFrameTick();
    source->rate = 0;
    desk.passTime(3000);
    desk.strip(0x11)->onFrameTick();
    desk.passTime(3000);
    desk.strip(0x11)->onFrameTick();
    QVERIFY(source->calls.isEmpty());
  }

  void incomeStreamNeedsMoreThanTen_data() {
    QTest::addColumn<float>("rate");
    QTest::addColumn<int>("realtime");
    QTest::addColumn<bool>("restarts");
    QTest::newRow("ten is silent") << 10.0F << 0 << true;
    QTest::newRow("above ten is alive") << 10.1F << 0 << false;
    QTest::newRow("real time is not watched") << 0.0F << 1 << false;
  }
  void incomeStreamNeedsMoreThanTen() {
    QFETCH(float, rate);
    QFETCH(int, realtime);
    QFETCH(bool, restarts);
    StripDesk desk;
    tagKorviaShowSourceInfo info = sourceOf(SourceKindIncome);
    info.incomeRealtime = static_cast<quint8>(realtime);
    ScriptedSource* source = desk.put(1, info);
    source->rate = rate;
    desk.strip(0x11)->onFrameTick();
    desk.passTime(3201);
    desk.strip(0x11)->onFrameTick();
    QCOMPARE(!source->calls.isEmpty(), restarts);
  }

  void filmsAreNotWatched() {
    StripDesk desk;
    ScriptedSource* source = desk.put(1, sourceOf(SourceKindMovie));
    source->rate = 0;
    desk.strip(0x11)->onFrameTick();
    desk.passTime(60000);
    desk.strip(0x11)->onFrameTick();
    QVERIFY(source->calls.isEmpty());
  }
};

QTEST_MAIN(StreamRestartTest)
#include "tst_stream_restart.moc"
