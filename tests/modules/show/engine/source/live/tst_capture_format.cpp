// Which of the formats that a device offers is taken.
#include <QtTest>

#include "engine/source/GstInit.h"
#include "engine/source/live/CaptureFormat.h"

using namespace korvia;

class CaptureFormatTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QVERIFY(startGStreamer()); }

  void nearestIsTaken_data() {
    QTest::addColumn<QString>("offered");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<double>("rate");
    QTest::addColumn<bool>("jpeg");
    const QString raw = QStringLiteral("video/x-raw,format=YUY2,width=%1,height=%2,framerate=%3");
    const QString jpeg = QStringLiteral("image/jpeg,width=%1,height=%2,framerate=%3");
    const auto formats = [](const QStringList& all) { return all.join(';'); };
    QTest::newRow("exact") << formats(
                                  {raw.arg(640).arg(480).arg("25/1"), raw.arg(1920).arg(1080).arg("25/1")})
                           << 1920 << 1080 << 25.0 << false;
    QTest::newRow("jpeg is fast enough")
        << formats({raw.arg(1920).arg(1080).arg("5/1"), jpeg.arg(1920).arg(1080).arg("30/1")}) << 1920 << 1080
        << 30.0 << true;
    QTest::newRow("raw before jpeg") << formats({jpeg.arg(1920).arg(1080).arg("25/1"),
                                                 raw.arg(1920).arg(1080).arg("25/1")})
                                     << 1920 << 1080 << 25.0 << false;
    QTest::newRow("smaller before slow")
        << formats({raw.arg(1920).arg(1080).arg("5/1"), raw.arg(1280).arg(720).arg("25/1")}) << 1280 << 720
        << 25.0 << false;
    QTest::newRow("larger before much smaller")
        << formats({raw.arg(2560).arg(1440).arg("25/1"), raw.arg(320).arg(240).arg("25/1")}) << 2560 << 1440
        << 25.0 << false;
    QTest::newRow("of a list of rates")
        << raw.arg(1920).arg(1080).arg("{ 60/1, 30/1, 24/1 }") << 1920 << 1080 << 24.0 << false;
    QTest::newRow("of ranges") << raw.arg("[ 16, 4096 ]").arg("[ 16, 2160 ]").arg("[ 1/1, 60/1 ]") << 1920
                               << 1080 << 25.0 << false;
    QTest::newRow("changing rate") << formats({raw.arg(1920).arg(1080).arg("0/1")}) << 1920 << 1080 << 0.0
                                   << false;
    QTest::newRow("other things left out")
        << formats({"video/x-h264,width=1920,height=1080,framerate=25/1",
                    "video/x-raw(memory:DMABuf),format=YUY2,width=1920,height=1080,framerate=25/1",
                    raw.arg(640).arg(480).arg("15/1")})
        << 640 << 480 << 15.0 << false;
  }

  void nearestIsTaken() {
    QFETCH(QString, offered);
    GstCaps* caps = gst_caps_from_string(offered.toUtf8().constData());
    QVERIFY(caps);
    const CaptureChoice choice = chooseCaptureFormat(caps, {{1920, 1080}, {25, 1}});
    gst_caps_unref(caps);
    QVERIFY(choice.caps);
    QVERIFY(gst_caps_is_fixed(choice.caps));
    gst_caps_unref(choice.caps);
    QTEST(choice.format.size.width, "width");
    QTEST(choice.format.size.height, "height");
    QTEST(choice.format.rate.framesPerSecond(), "rate");
    QTEST(choice.isJpeg, "jpeg");
  }

  void nothingThatCanBeShown() {
    for (const char* offered : {"video/x-h264", "EMPTY", "audio/x-raw,rate=48000"}) {
      GstCaps* caps = gst_caps_from_string(offered);
      QVERIFY(!chooseCaptureFormat(caps, {{1920, 1080}, {25, 1}}).caps);
      gst_caps_unref(caps);
    }
  }
};

QTEST_GUILESS_MAIN(CaptureFormatTest)
#include "tst_capture_format.moc"
