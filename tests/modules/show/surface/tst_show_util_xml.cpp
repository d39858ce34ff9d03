// Mixer settings and component descriptions as XML.
#include <QDomDocument>
#include <QXmlStreamWriter>
#include <QtTest>

#include "KorviaShowUtil.h"
#include "tagKorviaShowAudioMixerParam.h"
#include "tagKorviaShowComponentInfo.h"

namespace {

template <class Record>
QByteArray documentOf(const Record& record, const QString& name) {
  QByteArray xml;
  QXmlStreamWriter writer(&xml);
  writer.setCodec("utf-8");
  writer.setAutoFormatting(true);
  writer.writeStartDocument();
  KorviaShowUtil::writeXmlWriter(writer, name, record);
  writer.writeEndDocument();
  return xml;
}

template <class Record>
bool read(const QByteArray& xml, Record& record) {
  QDomDocument document;
  return document.setContent(xml) && KorviaShowUtil::readDomElement(document.documentElement(), record);
}

tagKorviaShowComponentInfo twoViews() {
  tagKorviaShowComponentInfo info;
  info.name = QStringLiteral("TwoViewHD");
  info.category = QStringLiteral("MultiView");
  info.scene.reserved8 = 0.1F;
  info.scene.reserved17 = 0x123456789ABCDE;
  info.enterTimeline.firstIndex = -1;
  tagKorviaComponentItemParam text;
  text.caption = QStringLiteral("Title");
  text.node = QStringLiteral("TitleText");
  text.value = QString::fromUtf8("<\"Zwei\" & 'drei'>\n\t  字幕 😀 ");
  text.textInfo.hAlign = 0x84;
  text.textInfo.style.solidColor = 0x80FF0102;
  info.texts = {text, tagKorviaComponentItemParam{}};
  tagKorviaComponentItemParam image;
  image.node = QStringLiteral("BGImage");
  image.values = QStringList{QStringLiteral("MultiViewHD.png"), QStringLiteral("MultiViewHD2.png")};
  info.images = {image};
  info.actions = {{.name = QStringLiteral("in"), .caption = QStringLiteral("In")}};
  return info;
}

}  // namespace

class ShowUtilXmlTest : public QObject {
  Q_OBJECT
 private slots:
  void mixerComesBackAsItWas() {
    tagKorviaShowAudioMixerParam param;
    param.mixMode = AudioMixModeManual;
    param.channelEnable = {1, 0, 1, 0, 1, 0, 1, 0};
    param.channelVolume[3] = 0.1;
    param.karaokeVolume = 1.0 / 3.0;
    param.channelEffect[5].preset = 7;
    param.channelEffect[5].equalizerDb[9] = -11.7F;
    param.karaokeEffect.vocalCut.filterFreq = 440;
    param.karaokeEffect.vocalCut.pan = -0.25F;
    param.pgmVolume = 0.5;
    param.pvmVolume = 0;
    tagKorviaShowAudioMixerParam back;
    QVERIFY(read(documentOf(param, QStringLiteral("mixerParam")), back));
    QVERIFY(back == param);
  }

  void mixerHasOneElementAField() {
    tagKorviaShowAudioMixerParam param;
    param.mixMode = 2;
    param.channelEnable[1] = 1;
    QDomDocument document;
    QVERIFY(document.setContent(documentOf(param, QStringLiteral("mixerParam"))));
    const QDomElement root = document.documentElement();
    QCOMPARE(root.tagName(), QStringLiteral("mixerParam"));
    QCOMPARE(root.firstChildElement().tagName(), QStringLiteral("mixMode"));
    QCOMPARE(root.firstChildElement().attribute(QStringLiteral("value")), QStringLiteral("2"));
    const QDomElement enable = root.firstChildElement(QStringLiteral("channelEnable"));
    QCOMPARE(enable.childNodes().count(), 8);
    QCOMPARE(enable.childNodes().at(1).toElement().tagName(), QStringLiteral("item"));
    QCOMPARE(enable.childNodes().at(1).toElement().attribute(QStringLiteral("value")), QStringLiteral("1"));
  }

  void componentComesBackAsItWas() {
    const tagKorviaShowComponentInfo info = twoViews();
    tagKorviaShowComponentInfo back;
    back.texts = {tagKorviaComponentItemParam{}, tagKorviaComponentItemParam{},
                  tagKorviaComponentItemParam{}};
    QVERIFY(read(documentOf(info, QStringLiteral("param")), back));
    QCOMPARE(back.texts.size(), 2);
    QCOMPARE(back.texts[0].value, info.texts[0].value);
    QCOMPARE(back.texts[0].textInfo.style.solidColor, 0x80FF0102U);
    QCOMPARE(back.images[0].values.size(), 2);
    QVERIFY(back == info);
  }

  void charactersThatXmlCannotCarryAreLeftOut() {
    tagKorviaShowComponentInfo info;
    info.name =
        QStringLiteral("a") + QChar(1) + QChar(0xD800) + QChar(0xFFFF) + QChar(0) + QStringLiteral("b");
    tagKorviaShowComponentInfo back;
    QVERIFY(read(documentOf(info, QStringLiteral("param")), back));
    QCOMPARE(back.name, QStringLiteral("ab"));
  }

  void strangeElementsAreRefused() {
    tagKorviaShowAudioMixerParam mixer;
    QVERIFY(!KorviaShowUtil::readDomElement(QDomElement(), mixer));
    QVERIFY(!read("<html><body/></html>", mixer));
    QVERIFY(mixer == tagKorviaShowAudioMixerParam{});
    tagKorviaShowComponentInfo info;
    QVERIFY(!KorviaShowUtil::readDomElement(QDomElement(), info));
    QVERIFY(!read("<param/>", info));
  }

  void whatIsMissingOrBrokenStaysAsItWas() {
    tagKorviaShowAudioMixerParam param;
    param.pgmVolume = 0.7;
    QVERIFY(
        read("<p><mixMode value='x'/><pgmVolume/><pvmVolume value='nan'/><karaokeVolume value='1e999'/>"
             "<channelEnable><item value='99999999999'/><item value='1'/></channelEnable></p>",
             param));
    QCOMPARE(param.mixMode, 0);
    QCOMPARE(param.pgmVolume, 0.7);
    QCOMPARE(param.pvmVolume, 1.0);
    QCOMPARE(param.karaokeVolume, 1.0);
    QCOMPARE(param.channelEnable[0], 0);
    QCOMPARE(param.channelEnable[1], 1);
    QCOMPARE(param.channelEnable[2], 0);
  }

  void tooManyEntriesAreCutOff() {
    QByteArray items;
    for (int i = 0; i < 20; ++i)
      items += "<item value='3'/>";
    tagKorviaShowAudioMixerParam param;
    QVERIFY(read("<p><channelEnable>" + items + "</channelEnable></p>", param));
    QCOMPARE(param.channelEnable[7], 3);
    QCOMPARE(param.channelVolume[0], 1.0);

    items.clear();
    for (int i = 0; i < 5000; ++i)
      items += "<item/>";
    tagKorviaShowComponentInfo info;
    QVERIFY(read("<p><actions>" + items + "</actions></p>", info));
    QCOMPARE(info.actions.size(), 4096);
  }
};

QTEST_APPLESS_MAIN(ShowUtilXmlTest)
#include "tst_show_util_xml.moc"
