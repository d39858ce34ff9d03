// The input of an SDI card: its signal, its loss, and what it is asked for.
#include <QtTest>

#include "CaptureRig.h"
#include "engine/source/live/CardInput.h"

using namespace korvia;
using namespace korvia::test;

namespace {

LiveInputMaker cardOf(const CaptureRig& rig) {
  return [settings = rig.settings](LiveReceiver& receiver) {
    return std::make_unique<CardInput>(settings, receiver);
  };
}

QString textOf(GstElement* element, const char* property) {
  GValue value = G_VALUE_INIT;
  g_object_get_property(G_OBJECT(element), property, &value);
  QString text;
  if (G_VALUE_HOLDS_ENUM(&value)) {
    auto* type = static_cast<GEnumClass*>(g_type_class_ref(G_VALUE_TYPE(&value)));
    const GEnumValue* found = g_enum_get_value(type, g_value_get_enum(&value));
    text = QString::fromUtf8(found ? found->value_nick : "");
    g_type_class_unref(type);
  } else {
    text = QString::number(g_value_get_int(&value));
  }
  g_value_unset(&value);
  return text;
}

}  // namespace

class CardInputTest : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QVERIFY(startGStreamer()); }

  void lossOfTheSignalKeepsThePicture() {
    WarningKeeper log;
    StandIn card(cameraOf());
    StandIn sound(microphone());
    CaptureRig rig(&card, &sound);
    rig.live.silenceNs = rig.live.openingNs = 0;
    rig.open(cardOf(rig));
    QVERIFY2(rig.tickUntil([&] { return rig.fresh > 3 && rig.peak(rig.left) > 0.4F; }),
             qPrintable(rig.reason()));
    card.setGap(true);
    QVERIFY(rig.tickUntil([&] { return !log.lines().isEmpty(); }));
    // What had come before the loss is still shown.
    for (int i = 0; i < 10; ++i)
      rig.tick();
    const int before = rig.fresh;
    for (int i = 0; i < 10; ++i)
      QVERIFY(rig.tick() == rig.last);
    QCOMPARE(rig.fresh, before);
    QCOMPARE(rig->getPlayState(), int(Playing));
    card.setGap(false);
    QVERIFY(rig.tickUntil([&] { return rig.fresh > before + 3; }));
    QCOMPARE(log.lines(), QStringList{"stand-in has no signal"});
    QCOMPARE(card.tries(), 1);
  }

  void failureIsTriedAgain() {
    StandIn card(cameraOf());
    StandIn sound(microphone());
    CaptureRig rig(&card, &sound);
    rig.open(cardOf(rig));
    QVERIFY(rig.tickUntilState(Playing));
    card.unplug();
    QVERIFY(rig.tickUntilState(Error));
    card.setPlugged(true);
    QVERIFY(rig.tickUntilState(Playing));
    QVERIFY(card.tries() >= 2);
  }

  void whatTheCardIsAskedFor_data() {
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("video");
    QTest::addColumn<QString>("audio");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("defaults") << "1080p25"
                              << "SDI"
                              << "embedded" << QStringList{"1080p25", "sdi", "embedded"};
    QTest::newRow("optical") << "1080i50"
                             << "OpticalSDI"
                             << "aesebu" << QStringList{"1080i50", "optical-sdi", "aes"};
    QTest::newRow("hdmi") << "720p59.94"
                          << "HDMI"
                          << "analog" << QStringList{"720p5994", "hdmi", "analog"};
    QTest::newRow("analog") << "PAL"
                            << "Composite"
                            << "AesEbu" << QStringList{"pal", "composite", "aes"};
    QTest::newRow("svideo") << "ntsc"
                            << "SVideo"
                            << "" << QStringList{"ntsc", "svideo", "auto"};
    QTest::newRow("component") << "1080p30"
                               << "Component"
                               << "?" << QStringList{"1080p30", "component", "auto"};
  }

  void whatTheCardIsAskedFor() {
    QFETCH(QStringList, expected);
    tagKorviaShowSourceInfo info;
    info.sdiCardIndex = 2;
    QFETCH(QString, format);
    QFETCH(QString, video);
    QFETCH(QString, audio);
    info.sdiFormat = format;
    info.sdiVideoSignal = video;
    info.sdiAudioSignal = audio;
    const std::optional<CaptureSettings> settings = cardSettings({}, info);
    QVERIFY(settings);
    QString reason;
    GstElement* pictures = settings->makePictures(reason);
    GstElement* sound = settings->makeSound(reason);
    if (!pictures || !sound) {
      gst_clear_object(&pictures);
      gst_clear_object(&sound);
      QSKIP("the elements of DeckLink cards are not installed");
    }
    const QStringList asked{textOf(pictures, "mode"), textOf(pictures, "connection"),
                            textOf(sound, "connection")};
    const QStringList cards{textOf(pictures, "device-number"), textOf(sound, "device-number")};
    gst_object_unref(pictures);
    gst_object_unref(sound);
    QCOMPARE(asked, expected);
    QCOMPARE(cards, (QStringList{"2", "2"}));
  }

  void absentCard() {
    WarningKeeper log;
    SourceRig rig(kCaptureSize);
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindDevice3D;
    info.sdiCardIndex = 7;
    rig.open(info);
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QVERIFY(!rig.failureReason().isEmpty());
    QTRY_COMPARE(log.lines().filter("live source is lost : sdi card 7 : ").size(), 1);
  }

  void unknownFormat() {
    WarningKeeper log;
    SourceRig rig(kCaptureSize);
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindDevice3D;
    info.sdiFormat = QStringLiteral("8 mm");
    rig.open(info);
    QTRY_COMPARE(rig->getPlayState(), int(Error));
    QCOMPARE(rig.failureReason(), QString("format is unknown"));
  }
};

QTEST_GUILESS_MAIN(CardInputTest)
#include "tst_card_input.moc"
