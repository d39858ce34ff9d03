// What the black box writes of values and records.
#include <QImage>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>
#include <limits>

#include "KorviaMetaType.h"
#include "trace/RecordFields.h"
#include "trace/RecordJson.h"

struct UnknownRecord {};
Q_DECLARE_METATYPE(UnknownRecord)

namespace {

QByteArray textOf(const QJsonValue& value) {
  QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
  return text.mid(1, text.size() - 2);
}

template <class Record>
QJsonObject objectOf(const Record& record) {
  return korvia::toJson(toVariant(record)).toObject();
}

}  // namespace

class RecordJsonTest : public QObject {
  Q_OBJECT
 private slots:
  void plainValues_data() {
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("json");
    QTest::newRow("invalid") << QVariant() << QByteArray("null");
    QTest::newRow("int") << QVariant(-16) << QByteArray("-16");
    QTest::newRow("unsigned") << QVariant(4294967295U) << QByteArray("4294967295");
    QTest::newRow("long") << QVariant(qint64{1} << 40) << QByteArray("1099511627776");
    QTest::newRow("unsigned long") << QVariant(quint64{4098}) << QByteArray("4098");
    QTest::newRow("true") << QVariant(true) << QByteArray("true");
    QTest::newRow("float") << QVariant(0.1F) << QByteArray("0.1");
    QTest::newRow("one") << QVariant(1.0F) << QByteArray("1");
    QTest::newRow("double") << QVariant(0.25) << QByteArray("0.25");
    QTest::newRow("infinite") << QVariant(std::numeric_limits<double>::infinity()) << QByteArray("null");
    QTest::newRow("not a number") << QVariant(std::numeric_limits<float>::quiet_NaN()) << QByteArray("null");
    QTest::newRow("text") << QVariant(QStringLiteral("a\"b")) << QByteArray("\"a\\\"b\"");
    QTest::newRow("masked text") << QVariant(QStringLiteral("rtmp://h/live/k"))
                                 << QByteArray("\"rtmp://h/live/***\"");
    QTest::newRow("texts") << QVariant(QStringList{"a", "rtmp://h/k"})
                           << QByteArray("[\"a\",\"rtmp://h/***\"]");
    QTest::newRow("list") << QVariant(QVariantList{1, QVariant(), "x"}) << QByteArray("[1,null,\"x\"]");
    QTest::newRow("bytes") << QVariant(QByteArray("secret")) << QByteArray("{\"bytes\":6}");
    QTest::newRow("colour") << QVariant::fromValue(QColor(1, 2, 255, 128)) << QByteArray("\"#0102FF80\"");
    QTest::newRow("no colour") << QVariant::fromValue(QColor()) << QByteArray("null");
    QTest::newRow("picture") << QVariant(QImage(7, 5, QImage::Format_RGB32))
                             << QByteArray("{\"height\":5,\"width\":7}");
    QTest::newRow("no picture") << QVariant(QImage()) << QByteArray("{\"height\":0,\"width\":0}");
    QTest::newRow("unknown") << QVariant::fromValue(UnknownRecord{})
                             << QByteArray("{\"type\":\"UnknownRecord\"}");
  }

  void plainValues() {
    QFETCH(QVariant, value);
    QFETCH(QByteArray, json);
    QCOMPARE(textOf(korvia::toJson(value)), json);
  }

  void packedFormat() {
    tagKorviaFormatInfo format;
    format.video.height = 720;
    QCOMPARE(textOf(korvia::toJson(toVariant(format))),
             QByteArray("{\"audio\":{\"bits\":16,\"channels\":2,\"enable\":1,\"sampleFormat\":\"s16l\","
                        "\"sampleRate\":48000},"
                        "\"video\":{\"enable\":1,\"formatFlag\":1,\"fpsDenominator\":1,\"fpsNumerator\":25,"
                        "\"height\":720,\"reserved\":0,\"secondEnable\":1,\"secondHeight\":1080,"
                        "\"secondWidth\":1920,\"width\":1920}}"));
  }

  void engineInfo() {
    const QJsonObject json = objectOf(tagKorviaShowEngineInfo{});
    QCOMPARE(json.size(), 20);
    QCOMPARE(json["renderDevice"].toInt(), -1);
    QCOMPARE(json["outputFormat"].toArray().size(), 4);
    QCOMPARE(json["format"].toObject()["width"].toInt(), 1920);
    QCOMPARE(json["audioFormat"].toObject()["sampleFormat"].toString(), QStringLiteral("s16l"));
  }

  void windows() {
    tagKorviaShowWindowPackInfo pack;
    pack.pgm.winId = 0x1234;
    const QJsonObject json = objectOf(pack);
    QCOMPARE(json["media"].toArray().size(), 8);
    QCOMPARE(json["stage"].toArray().size(), 4);
    QCOMPARE(json["pgm"].toObject()["winId"].toInt(), 0x1234);
    QCOMPARE(json["karaoke"].toObject()["right"].toInt(0), -1);
    QCOMPARE(objectOf(tagKorviaWindowInfo{}).size(), 6);
  }

  void placement() {
    tagKorviaShowPresentPlacement placement;
    placement.kind = 2;
    placement.key = QStringLiteral("item");
    placement.x = 0.5;
    QCOMPARE(textOf(korvia::toJson(toVariant(placement))),
             QByteArray("{\"height\":0,\"key\":\"item\",\"kind\":2,\"width\":0,\"x\":0.5,\"y\":0}"));
  }

  void outputParamMasksItsTargets() {
    tagKorviaShowOutputParam param;
    param.items[0].rtmp1Url = QStringLiteral("rtmp://live.example/app/abc-def-123");
    const QJsonObject json = objectOf(param);
    QCOMPARE(json["active"].toArray().size(), 12);
    QCOMPARE(json["active"].toArray()[0].toInt(), 1);
    QCOMPARE(json["encode"].toArray()[11].toObject()["videoBitrate"].toInt(), 4096);
    QCOMPARE(json["encode"].toArray()[0].toObject()["reserved8"].toDouble(), 1.2);
    QCOMPARE(json["encode"].toArray()[0].toObject().size(), 20);
    const QJsonObject item = json["items"].toArray()[0].toObject();
    QCOMPARE(item["recordPath"].toString(), QStringLiteral("d:\\records\\vod\\0\\"));
    QCOMPARE(item["rtmp0Url"].toString(), QStringLiteral("rtmp://192.168.0.1/live/***"));
    QCOMPARE(item["rtmp1Url"].toString(), QStringLiteral("rtmp://live.example/app/***"));
    QCOMPARE(item["httpPort"].toInt(), 8080);
    QVERIFY(!QJsonDocument(json).toJson().contains("abc-def-123"));
  }

  void sourceInfoMasksItsAddress() {
    tagKorviaShowSourceInfo info;
    info.kind = SourceKindUrl;
    info.url = QStringLiteral("rtsp://me:pw@10.0.0.1/cam");
    info.color = 0x80112233;
    const QJsonObject json = objectOf(info);
    QCOMPARE(json["kind"].toInt(), 3);
    QCOMPARE(json["url"].toString(), QStringLiteral("rtsp://***@10.0.0.1/cam"));
    QCOMPARE(json["color"].toString(), QStringLiteral("#11223380"));
    QCOMPARE(json["textParam"].toObject()["text"].toString(), QStringLiteral("Sample Text"));
    QCOMPARE(json["windowInfo"].toObject().size(), 3);
    QCOMPARE(json.size(), 45);
  }

  void channelSlot() {
    tagKorviaShowChannelSlot slot;
    slot.id = QUuid("{00112233-4455-6677-8899-aabbccddeeff}");
    const QJsonObject json = objectOf(slot);
    QCOMPARE(json["id"].toString(), QStringLiteral("{00112233-4455-6677-8899-aabbccddeeff}"));
    QCOMPARE(json["format"].toObject()["video"].toObject()["fpsNumerator"].toInt(), 25);
  }

  void looks() {
    const QJsonObject matting = objectOf(tagKorviaShowAlphaMattingParam{});
    QCOMPARE(matting.size(), 26);
    QCOMPARE(matting["keyColor"].toString(), QStringLiteral("#00FF00FF"));
    QCOMPARE(matting["edgeTolerance"].toDouble(), 0.1);
    QCOMPARE(objectOf(tagKorviaShowChannelBackgroundInfo{})["color"].toString(), QStringLiteral("#000000FF"));
    const QJsonObject karaoke = objectOf(tagGShowKaroakeTextParam{});
    QCOMPARE(karaoke["colorPreset"].toInt(), 5);
    QCOMPARE(karaoke["borderColor"].toString(), QStringLiteral("#FFAC00FF"));
  }

  void mixer() {
    tagKorviaShowAudioMixerParam param;
    param.channelEffect[2].vocalCut.preset = 3;
    const QJsonObject json = objectOf(param);
    QCOMPARE(json["channelVolume"].toArray().size(), 8);
    QCOMPARE(json["channelEffect"].toArray()[2].toObject()["vocalCut"].toObject()["preset"].toInt(), 3);
    QCOMPARE(objectOf(tagKorviaAudioEffectParam{})["equalizerDb"].toArray().size(), 10);
  }

  void component() {
    tagKorviaShowComponentInfo info;
    info.texts.append(tagKorviaComponentItemParam{});
    info.texts[0].values = QStringList{"a", "b"};
    info.actions.append(tagKorviaShowPresentTimelineInfo{});
    const QJsonObject json = objectOf(info);
    QCOMPARE(json["scene"].toObject().size(), 20);
    QCOMPARE(json["scene"].toObject()["reserved8"].toDouble(), 1.0);
    QCOMPARE(json["texts"].toArray()[0].toObject()["values"].toArray().size(), 2);
    QCOMPARE(json["texts"]
                 .toArray()[0]
                 .toObject()["textInfo"]
                 .toObject()["style"]
                 .toObject()["solidColor"]
                 .toString(),
             QStringLiteral("#FFFFFFFF"));
    QCOMPARE(json["actions"].toArray()[0].toObject()["lastIndex"].toInt(0), -1);
    QCOMPARE(objectOf(tagKorviaShowPresentTimelineInfo{}).size(), 6);
  }

  void lyrics() {
    tagZRCFileInfo info;
    info.timeDiff = -40;
    tagZRCLineInfo line{.index = 0, .text = "la la", .start = 10, .duration = 20, .words = {}};
    line.words.append({.text = "la", .start = 10, .duration = 8});
    info.lines.append(line);
    QCOMPARE(textOf(korvia::toJson(toVariant(info))),
             QByteArray("{\"artist\":\"\",\"lines\":[{\"duration\":20,\"index\":0,\"reserved\":0,"
                        "\"start\":10,\"text\":\"la la\",\"words\":[{\"duration\":8,\"reserved\":0,"
                        "\"start\":10,\"text\":\"la\"}]}],\"timeDiff\":-40,\"title\":\"\"}"));
  }

  void items() {
    QCOMPARE(objectOf(tagKorviaShowTextInfo{}).size(), 15);
    QCOMPARE(objectOf(tagKorviaShowTextInfo{})["exit"].toObject()["effect"].toInt(), 26);
    QCOMPARE(objectOf(tagKorviaShowLogoInfo{}).size(), 10);
  }

  void figuresAndStates() {
    tagKorviaShowEngineFigures figures;
    figures.frames = 1500;
    figures.tick.p99Ms = 12.5;
    figures.recording = true;
    figures.loudness.integratedLufs = -23.5;
    figures.outputs[1].state = KorviaShowOutputState::Failed;
    figures.outputs[1].targets = {{"Record", KorviaShowTargetState::Lost, "the disk is full", 0, 3, 0}};
    figures.deviceOutputs = {{"NDI", KorviaShowTargetState::Up, {}, 7, 0, 0}};
    figures.programDevice.driftPpm = -41.5;
    figures.liveSources[7].driftPpm = 12.25;
    const QJsonObject json = objectOf(figures);
    QCOMPARE(json["frames"].toInt(), 1500);
    QCOMPARE(json["tick"].toObject()["p99Ms"].toDouble(), 12.5);
    QCOMPARE(json["recording"], QJsonValue(true));
    QCOMPARE(json["handOver"].toObject().size(), 4);
    QCOMPARE(json["loudness"].toObject()["integratedLufs"].toDouble(), -23.5);
    QCOMPARE(json["loudness"].toObject().size(), 4);
    QCOMPARE(json["outputs"].toArray().size(), 2);
    QCOMPARE(json["outputs"].toArray()[1].toObject()["state"].toInt(), 3);
    QCOMPARE(json["outputs"].toArray()[1].toObject().size(), 10);
    const QJsonObject target = json["outputs"].toArray()[1].toObject()["targets"].toArray()[0].toObject();
    QCOMPARE(target.size(), 6);
    QCOMPARE(target["name"].toString(), QString("Record"));
    QCOMPARE(target["retrySeconds"].toInt(), 3);
    QCOMPARE(json["deviceOutputs"].toArray()[0].toObject()["upSeconds"].toInt(), 7);
    QCOMPARE(json["programDevice"].toObject()["driftPpm"].toDouble(), -41.5);
    QCOMPARE(json["liveSources"].toArray()[7].toObject()["driftPpm"].toDouble(), 12.25);

    QCOMPARE(objectOf(tagKorviaShowAudioLevel{})["values"].toArray().size(), 96);
    QCOMPARE(objectOf(tagKorviaSourceLinkState{}).size(), 4);
    QCOMPARE(objectOf(tagKorviaSourceState{}).size(), 5);
    QCOMPARE(objectOf(tagKorviaShowSourceStatisticsItem{}).size(), 5);
  }

  void statisticsReadTheFrameTypeToItsEnd() {
    tagKorviaOutputStatistics statistics;
    statistics.blocks[1].frameType[0] = 'I';
    statistics.blocks[0].frameType.fill('P');
    const QJsonArray blocks = objectOf(statistics)["blocks"].toArray();
    QCOMPARE(blocks.size(), 4);
    QCOMPARE(blocks[1].toObject()["frameType"].toString(), QStringLiteral("I"));
    QCOMPARE(blocks[0].toObject()["frameType"].toString().size(), 91);
    QCOMPARE(blocks[0].toObject()["rtmp"].toArray().size(), 3);
  }
};

QTEST_APPLESS_MAIN(RecordJsonTest)
#include "tst_record_json.moc"
