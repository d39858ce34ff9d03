// The format that a start of an output carries.
#include <QPushButton>
#include <QtTest>

#include "ConsoleDesk.h"
#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"

namespace {

/// Differs from every other seed's in each field.
tagKorviaVideoFormat videoFormat(int seed) {
  tagKorviaVideoFormat format;
  format.enable = static_cast<quint8>(seed + 1);
  format.width = 100 * seed + 2;
  format.height = 100 * seed + 3;
  format.secondEnable = static_cast<quint8>(seed + 4);
  format.secondWidth = 100 * seed + 5;
  format.secondHeight = 100 * seed + 6;
  format.fpsNumerator = 100 * seed + 7;
  format.fpsDenominator = 100 * seed + 8;
  format.reserved = 100 * seed + 9;
  format.formatFlag = 100 * seed + 10;
  return format;
}

}  // namespace

class OutputSwitchesTest : public QObject {
  Q_OBJECT

 private slots:
  void startCarriesTheFormatOfItsSlot_data() {
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("slot");
    QTest::newRow("stream") << QByteArray("_startStreamPushButton") << 0;
    QTest::newRow("record") << QByteArray("_startRecordPushButton") << 1;
  }
  void startCarriesTheFormatOfItsSlot() {
    QFETCH(QByteArray, button);
    QFETCH(int, slot);
    ConsoleDesk desk;
    QVERIFY(desk.start());
    tagKorviaShowEngineInfo& info = desk.console->getConfig()->engineInfo;
    info.format = videoFormat(1);
    info.outputFormat[0] = videoFormat(2);
    info.outputFormat[1] = videoFormat(3);
    info.audioFormat.enable = 0;
    info.audioFormat.channels = 6;
    info.audioFormat.sampleRate = 44100;
    info.audioFormat.bits = 24;
    info.audioFormat.sampleFormat = {'s', '2', '4', 'l'};
    desk.child<QPushButton>(button)->click();
    desk.settle();
    const auto posted = desk.show.eventsOf(ShowEventStartOutput);
    QCOMPARE(posted.size(), std::size_t{1});
    const auto format = fromVariant<tagKorviaFormatInfo>(posted[0].args[3]);
    QVERIFY(format.video == videoFormat(slot + 2));
    QVERIFY(format.audio == info.audioFormat);
  }

  void segmentsAreServedFromTheStartOfTheStream_data() {
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("hlsEnable");
    QTest::addColumn<QStringList>("log");
    QTest::newRow("off") << QByteArray("_startStreamPushButton") << 0 << QStringList("web segments /hls/0 ");
    QTest::newRow("on") << QByteArray("_startStreamPushButton") << 1
                        << QStringList("web segments /hls/0 /drive/records/hls/0/");
    QTest::newRow("record") << QByteArray("_startRecordPushButton") << 1 << QStringList();
  }
  void segmentsAreServedFromTheStartOfTheStream() {
    QFETCH(QByteArray, button);
    QFETCH(int, hlsEnable);
    QFETCH(QStringList, log);
    ConsoleDesk desk;
    QVERIFY(desk.start());
    qputenv("KORVIA_DRIVE_D", "/drive");
    desk.console->getConfig()->outputParam.items[0].hlsEnable = static_cast<quint8>(hlsEnable);
    desk.console->serverLog.clear();
    desk.child<QPushButton>(button)->click();
    qunsetenv("KORVIA_DRIVE_D");
    QCOMPARE(desk.console->serverLog, log);
    QCOMPARE(desk.show.calls.contains("setIncomeServer 1935 secret of the server"),
             button == "_startStreamPushButton");
  }
};

QTEST_MAIN(OutputSwitchesTest)
#include "tst_output_switches.moc"
