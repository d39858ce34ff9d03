// What the reports of the paint pad ask of the engine.
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaShowEvents.h"

class PaintPadTest : public QObject {
  Q_OBJECT

 private slots:
  void chosenChannelIsPostedForPreview_data() {
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("channelId");
    QTest::newRow("first media channel") << 0 << 0x10;
    QTest::newRow("last media channel") << 3 << 0x13;
    QTest::newRow("first stage channel") << 4 << 0x100;
    QTest::newRow("last stage channel") << 7 << 0x103;
  }
  void chosenChannelIsPostedForPreview() {
    QFETCH(int, index);
    QFETCH(int, channelId);
    ConsoleDesk desk;
    QVERIFY(desk.start());
    desk.show.clearEvents();
    desk.console->onSelectWhitePadChannel(index);
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventSelectChannel);
    QCOMPARE(posted.size(), std::size_t{1});
    QCOMPARE(posted[0].args[0], QVariant(0x1001));
    QCOMPARE(posted[0].args[1], QVariant(channelId));
    QVERIFY(!posted[0].args[2].isValid());
    QVERIFY(!posted[0].args[3].isValid());
  }

  void drawingReachesTheEngineAsItIs() {
    ConsoleDesk desk;
    QVERIFY(desk.start());
    QImage drawing(4, 3, QImage::Format_ARGB32);
    drawing.fill(QColor(10, 20, 30, 40));
    drawing.setPixelColor(0, 0, QColor(50, 60, 70, 80));
    desk.console->onCommitWhitePadImage(drawing);
    QCOMPARE(desk.show.paintPadImage, drawing);
  }
};

QTEST_MAIN(PaintPadTest)
#include "tst_paint_pad.moc"
