// The numbers that console and engine name each other's objects and events by.
#include <QtTest>

#include "KorviaShowEvents.h"
#include "KorviaShowObjectID.h"

class ObjectIdTest : public QObject {
  Q_OBJECT

 private slots:
  void idsHaveTheirNumbers() {
    QCOMPARE(int{SourceObject}, 1);
    QCOMPARE(int{MediaChannel}, 0x10);
    QCOMPARE(int{StageChannel}, 0x100);
    QCOMPARE(int{KaraokeObject}, 0x1000);
    QCOMPARE(int{PVMObject}, 0x1001);
    QCOMPARE(int{PGMObject}, 0x1002);
  }

  void kindAndIndexOfAnId_data() {
    QTest::addColumn<int>("id");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("index");
    QTest::newRow("nothing") << 0 << 1 << 0;
    QTest::newRow("negative") << -1 << 1 << 0;
    QTest::newRow("source object") << 5 << 1 << 0;
    QTest::newRow("below the media channels") << 0xF << 1 << 0;
    QTest::newRow("first media channel") << 0x10 << 1 << 0;
    QTest::newRow("last media channel") << 0x17 << 1 << 7;
    QTest::newRow("one past the last media channel") << 0x18 << 1 << 8;
    QTest::newRow("two past the last media channel") << 0x19 << 1 << 0;
    QTest::newRow("below the stages") << 0xFF << 1 << 0;
    QTest::newRow("first stage") << 0x100 << 2 << 0;
    QTest::newRow("last stage") << 0x103 << 2 << 3;
    QTest::newRow("one past the last stage") << 0x104 << 2 << 4;
    QTest::newRow("two past the last stage") << 0x105 << 1 << 0;
    QTest::newRow("below the karaoke") << 0xFFF << 1 << 0;
    QTest::newRow("karaoke") << 0x1000 << 3 << 0;
    QTest::newRow("preview") << 0x1001 << 4 << 0;
    QTest::newRow("program") << 0x1002 << 4 << 0;
    QTest::newRow("everything above") << 0x7FFFFFFF << 4 << 0;
  }
  void kindAndIndexOfAnId() {
    QFETCH(int, id);
    int index = 99;
    QTEST(getObjectKind(id, index), "kind");
    QTEST(index, "index");
  }

  void bothFormsOfAMediaChannelShareASource() {
    QCOMPARE(korvia::sourceIndexOf(1), 0);
    QCOMPARE(korvia::sourceIndexOf(0x10), 0);
    QCOMPARE(korvia::sourceIndexOf(8), 7);
    QCOMPARE(korvia::sourceIndexOf(0x17), 7);
    QCOMPARE(korvia::sourceIndexOf(0x1000), 8);
    for (const int id : {-1, 0, 9, 0xF, 0x18, 0x100, 0x1001, 0x1002})
      QCOMPARE(korvia::sourceIndexOf(id), -1);
  }

  void eventsHaveTheirNumbers() {
    const QMap<int, QByteArray> expected{{0, "ShowEventOpen"},
                                         {1, "ShowEventClose"},
                                         {2, "ShowEventSnapshot"},
                                         {3, "ShowEventResizeWindow"},
                                         {5, "ShowEventSwitchPosition"},
                                         {6, "ShowEventTake"},
                                         {7, "ShowEventSelectChannel"},
                                         {10, "ShowEventChannelOption"},
                                         {12, "ShowEventAlphaMatting"},
                                         {13, "ShowEventChannelBackground"},
                                         {16, "ShowEventPlayTimeline"},
                                         {18, "ShowEventAddComponent"},
                                         {19, "ShowEventRemoveComponent"},
                                         {20, "ShowEventUpdateStage"},
                                         {25, "ShowEventPlacementChanged"},
                                         {26, "ShowEventPlacementCommit"},
                                         {27, "ShowEventKaraokeText"},
                                         {28, "ShowEventKaraokeVisible"},
                                         {29, "ShowEventKaraokeLyrics"},
                                         {32, "ShowEventAddLogo"},
                                         {33, "ShowEventRemoveLogo"},
                                         {34, "ShowEventUpdateLogo"},
                                         {35, "ShowEventAddOverlay"},
                                         {36, "ShowEventRemoveOverlay"},
                                         {37, "ShowEventUpdateOverlay"},
                                         {38, "ShowEventAddText"},
                                         {39, "ShowEventRemoveText"},
                                         {40, "ShowEventUpdateText"},
                                         {41, "ShowEventStartOutput"},
                                         {42, "ShowEventStopOutput"},
                                         {43, "ShowEventStartVirtualCamera"},
                                         {44, "ShowEventStopVirtualCamera"},
                                         {45, "ShowEventStartNDI"},
                                         {46, "ShowEventStopNDI"},
                                         {47, "ShowEventStartSDI"},
                                         {48, "ShowEventStopSDI"},
                                         {49, "ShowEventAudioMixMode"},
                                         {50, "ShowEventVolume"},
                                         {51, "ShowEventChannelMix"},
                                         {52, "ShowEventAudioEffect"}};
    for (int number = 0; number < 60; ++number)
      QCOMPARE(QByteArray(korviaShowEventName(static_cast<quint64>(number))), expected.value(number));
  }
};

QTEST_GUILESS_MAIN(ObjectIdTest)
#include "tst_object_id.moc"
