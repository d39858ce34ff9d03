// Sizes, byte positions and defaults of the records, and their names in variants.
#include <QtTest>
#include <cstring>

#include "KorviaMetaType.h"
#include "trace/RecordFields.h"

class RecordsTest : public QObject {
  Q_OBJECT
 private slots:
  void videoFormatLiesByteByByte() {
    tagKorviaVideoFormat format;
    format.height = 0x01020304;
    std::array<unsigned char, 34> bytes{};
    std::memcpy(bytes.data(), &format, sizeof format);
    const std::array<unsigned char, 34> expected{
        1,              // enable
        0x80, 7, 0, 0,  // 1920
        4,    3, 2, 1,  // height
        1,              // second enable
        0x80, 7, 0, 0,  // 1920
        0x38, 4, 0, 0,  // 1080
        25,   0, 0, 0,  // numerator
        1,    0, 0, 0,  // denominator
        0,    0, 0, 0,  // reserved
        1,    0, 0, 0,  // format flag
    };
    QVERIFY(bytes == expected);
  }

  void audioFormatEndsInFourCharactersWithoutTerminator() {
    const tagKorviaAudioFormat format;
    std::array<unsigned char, 17> bytes{};
    std::memcpy(bytes.data(), &format, sizeof format);
    const std::array<unsigned char, 17> expected{1,  2, 0, 0, 0,   0x80, 0xBB, 0,  0,
                                                 16, 0, 0, 0, 's', '1',  '6',  'l'};
    QVERIFY(bytes == expected);
    QCOMPARE(sizeof(tagKorviaFormatInfo), std::size_t{51});
  }

  void formatInfoPutsSoundBehindPicture() {
    tagKorviaFormatInfo info;
    info.audio.channels = 6;
    std::array<unsigned char, 51> bytes{};
    std::memcpy(bytes.data(), &info, sizeof info);
    QCOMPARE(bytes[34], static_cast<unsigned char>(1));
    QCOMPARE(bytes[35], static_cast<unsigned char>(6));
    QCOMPARE(bytes[50], static_cast<unsigned char>('l'));
  }

  void engineInfoDefaults() {
    const tagKorviaShowEngineInfo info;
    QCOMPARE(info.renderDevice, -1);
    QCOMPARE(info.renderAccelerator, 255);
    QCOMPARE(info.mediaChannelCount, 4);
    QCOMPARE(info.stageChannelCount, 2);
    QCOMPARE(info.reserved1, 1);
    QCOMPARE(info.reserved2, 1);
    QCOMPARE(info.reserved3, 1);
    QCOMPARE(info.reserved4, qint64{1});
    QCOMPARE(info.reserved6, qint64{0});
    QCOMPARE(info.reserved7, qint64{320});
    QCOMPARE(info.reserved8, 0);
    QCOMPARE(info.outputFormat.size(), std::size_t{4});
    QVERIFY(info.outputFormat[1] == tagKorviaVideoFormat{});
    QCOMPARE(info.showDataPath, QString());
    QCOMPARE(info.secondDataPath, QString());
  }

  void windowInfoIsANullRectangle() {
    const tagKorviaWindowInfo info;
    QCOMPARE(info.left, 0);
    QCOMPARE(info.top, 0);
    QCOMPARE(info.right, -1);
    QCOMPARE(info.bottom, -1);
    QCOMPARE(info.reserved, 0);
    QCOMPARE(info.winId, WId{0});
  }

  void windowPackIsFifteenWindowsInARow() {
    tagKorviaShowWindowPackInfo pack;
    pack.media[7].left = 7;
    pack.stage[0].left = 8;
    pack.stage[3].left = 11;
    pack.karaoke.left = 12;
    pack.pvm.left = 13;
    pack.pgm.left = 14;
    std::array<tagKorviaWindowInfo, 15> windows;
    static_assert(sizeof windows == sizeof pack);
    std::memcpy(static_cast<void*>(windows.data()), &pack, sizeof pack);
    QCOMPARE(windows[7].left, 7);
    QCOMPARE(windows[8].left, 8);
    QCOMPARE(windows[11].left, 11);
    QCOMPARE(windows[12].left, 12);
    QCOMPARE(windows[13].left, 13);
    QCOMPARE(windows[14].left, 14);
    QCOMPARE(windows[14].right, -1);
  }

  void sourceInfoDefaults() {
    const tagKorviaShowSourceInfo info;
    QCOMPARE(info.kind, 0);
    QCOMPARE(info.movieEndAction, 1);
    QCOMPARE(info.movieSwitchChannel, 0);
    QCOMPARE(info.moviePGMAction, 0);
    QCOMPARE(info.listEndAction, 1);
    QCOMPARE(info.listSwitchChannel, 0);
    QCOMPARE(info.listPGMAction, 0);
    QCOMPARE(info.urlCache, 1000);
    QCOMPARE(info.sdiFormat, QStringLiteral("1080p25"));
    QCOMPARE(info.sdiVideoSignal, QStringLiteral("SDI"));
    QCOMPARE(info.sdiAudioSignal, QStringLiteral("embedded"));
    QCOMPARE(info.colorBar, quint8{0});
    QCOMPARE(info.color, 0xFFFFFFFFU);
    QCOMPARE(info.delayChannel, 1);
    QCOMPARE(info.delayTime, 30000);
    QCOMPARE(info.screenIndex, 0);
    QCOMPARE(info.audioProcessFilter, 0);
    QCOMPARE(static_cast<const void*>(&info.kind), static_cast<const void*>(&info));
  }

  void sourceKindCodes() {
    QCOMPARE(int{SourceKindMovie}, 1);
    QCOMPARE(int{SourceKindImage}, 5);
    QCOMPARE(int{SourceKindColor}, 9);
    QCOMPARE(int{SourceKindPdf}, 14);
    QCOMPARE(int{SourceKindScreen}, 17);
    QCOMPARE(int{SourceKindIncome}, 18);
  }

  void renderTextDefaults() {
    const tagKorviaShowRenderTextParam param;
    QCOMPARE(param.alignment, 0x21);
    QCOMPARE(param.vertical, false);
    QCOMPARE(param.fontSize, 14);
    QCOMPARE(param.fontName, QStringLiteral("Arial"));
    QCOMPARE(param.outlineSize, 2);
    QCOMPARE(param.outlineColor, 0xFF000000U);
    QCOMPARE(param.gradientAngle, 90);
    QCOMPARE(param.gradientBeginColor, 0xFFFF0000U);
    QCOMPARE(param.gradientEndColor, 0xFFFF0000U);
    QCOMPARE(param.text, QStringLiteral("Sample Text"));
  }

  void encodeDefaults() {
    const tagKorviaShowEncodeParam encode;
    QCOMPARE(encode.reserved1, qint64{0});
    QCOMPARE(encode.accelerator, qint64{2});
    QCOMPARE(encode.reserved2, 0);
    QCOMPARE(encode.reserved3, 32);
    QCOMPARE(encode.reserved4, 32);
    QCOMPARE(encode.reserved5, 32);
    QCOMPARE(encode.videoBitrate, 4096);
    QCOMPARE(encode.reserved6, 10);
    QCOMPARE(encode.reserved7, 1);
    QCOMPARE(encode.reserved8, 1.2F);
    QCOMPARE(encode.reserved9, 8);
    QCOMPARE(encode.reserved10, qint64{16});
    QCOMPARE(encode.reserved11, 0);
    QCOMPARE(encode.reserved12, qint64{1});
    QCOMPARE(encode.reserved13, 0);
    QCOMPARE(encode.reserved14, qint64{4});
    QCOMPARE(encode.reserved15, qint64{0});
    QCOMPARE(encode.reserved16, 0);
    QCOMPARE(encode.audioBitrate, qint64{128});
    QCOMPARE(encode.reserved17, qint64{2});
  }

  void outputItemDefaultsOfTheStream() {
    const tagKorviaShowOutputItem item = tagKorviaShowOutputParam{}.items[0];
    QCOMPARE(item.kind, quint8{0});
    QCOMPARE(item.recordActive, quint8{0});
    QCOMPARE(item.recordPath, QStringLiteral("d:\\records\\vod\\0\\"));
    QCOMPARE(item.recordNameFormat, QStringLiteral("${PROGRAMNAME}_${TIME}"));
    QCOMPARE(item.recordTimeFormat, QStringLiteral("yy-MM-dd/hh_mm_ss"));
    QCOMPARE(item.cutDuration, 3600);
    QCOMPARE(item.recordEncapsulation, 2);
    QCOMPARE(item.httpEnable, quint8{0});
    QCOMPARE(item.httpPort, quint16{8080});
    QCOMPARE(item.httpPath, QStringLiteral("/live/0"));
    QCOMPARE(item.reserved1 + item.reserved2 + item.reserved3, QString());
    QCOMPARE(item.httpEncapsulation, 0);
    QCOMPARE(item.udpEnable, quint8{0});
    QCOMPARE(item.udpAddress, QStringLiteral("234.0.0.1"));
    QCOMPARE(item.udpPort, quint16{8000});
    QCOMPARE(item.udpTtl, quint16{1});
    QCOMPARE(item.udpBindInterface, QString());
    QCOMPARE(item.hlsEnable, quint8{0});
    QCOMPARE(item.hlsSegmentLength, quint16{10});
    QCOMPARE(item.hlsSegmentNumber, quint16{6});
    QCOMPARE(item.hlsSplitAnywhere, quint8{1});
    QCOMPARE(item.hlsTemporaryFolder, QStringLiteral("d:\\records\\hls\\0\\"));
    QCOMPARE(item.hlsPath, QStringLiteral("/hls/0"));
    QCOMPARE(item.rtmp0Enable, quint8{0});
    QCOMPARE(item.rtmp0Url, QStringLiteral("rtmp://192.168.0.1/live/stream_0"));
    QCOMPARE(item.rtmp0ProtocolVersion, 2);
    QCOMPARE(item.rtmp1Enable, quint8{0});
    QCOMPARE(item.rtmp1Url, QStringLiteral("rtmp://192.168.0.2/live/stream_0"));
    QCOMPARE(item.rtmp1ProtocolVersion, 2);
    QCOMPARE(item.rtmpLocalEnable, quint8{0});
    QCOMPARE(item.rtmpLocalPath, QStringLiteral("/output_0"));
    QCOMPARE(item.livePath, QStringLiteral("/live_0"));
    QCOMPARE(item.secondPort, 8090);
    QCOMPARE(item.secondPath, QStringLiteral("/live/0"));
    QCOMPARE(item.virtualCameraEnable, quint8{0});
    QCOMPARE(item.sdiEnable, quint8{0});
    QCOMPARE(item.sdiDeviceIndex, 0);
    QCOMPARE(item.sdiFormat, QStringLiteral("1080p25"));
    QCOMPARE(item.sdiSignal, QStringLiteral("SDI"));
    QCOMPARE(item.reserved15, 60);
    QCOMPARE(item.reserved16, 259200);
    QCOMPARE(item.reserved17, quint8{1});
    QCOMPARE(item.tsFolder, QStringLiteral("d:\\records\\ts\\0\\"));
    QCOMPARE(item.secondAddress, QStringLiteral("192.168.0.1"));
    QCOMPARE(item.thirdPort, quint16{18000});
    QCOMPARE(item.reserved20, quint16{1});
    QCOMPARE(item.ndiEnable, quint8{0});
    QCOMPARE(item.ndiName, QStringLiteral("GNDIOutput-0"));
  }

  void outputItemDefaultsOfTheRecording() {
    const tagKorviaShowOutputItem item = tagKorviaShowOutputParam{}.items[1];
    QCOMPARE(item.kind, quint8{0});
    QCOMPARE(item.recordPath, QStringLiteral("d:\\records\\vod\\1\\"));
    QCOMPARE(item.httpPort, quint16{8081});
    QCOMPARE(item.httpPath, QStringLiteral("/live/1"));
    QCOMPARE(item.udpAddress, QStringLiteral("234.0.0.2"));
    QCOMPARE(item.udpPort, quint16{8001});
    QCOMPARE(item.hlsTemporaryFolder, QStringLiteral("d:\\records\\hls\\1\\"));
    QCOMPARE(item.hlsPath, QStringLiteral("/hls/1"));
    QCOMPARE(item.rtmp0Url, QStringLiteral("rtmp://192.168.0.1/live/stream_1"));
    QCOMPARE(item.rtmp1Url, QStringLiteral("rtmp://192.168.0.2/live/stream_1"));
    QCOMPARE(item.rtmpLocalPath, QStringLiteral("/output_1"));
    QCOMPARE(item.livePath, QStringLiteral("/live_1"));
    QCOMPARE(item.secondPort, 8092);
    QCOMPARE(item.secondPath, QStringLiteral("/live/1"));
    QCOMPARE(item.tsFolder, QStringLiteral("d:\\records\\ts\\1\\"));
    QCOMPARE(item.secondAddress, QStringLiteral("192.168.0.2"));
    QCOMPARE(item.thirdPort, quint16{18001});
    QCOMPARE(item.ndiName, QStringLiteral("GNDIOutput-1"));
  }

  void alternateItemsLieTwoHundredPortsHigher() {
    const tagKorviaShowOutputItem item(3, true);
    QCOMPARE(item.httpPort, quint16{8283});
    QCOMPARE(item.udpPort, quint16{8203});
    QCOMPARE(item.secondPort, 8296);
    QCOMPARE(item.thirdPort, quint16{18203});
    QCOMPARE(item.recordPath, QStringLiteral("d:\\records\\vod\\3\\"));
  }

  void outputParamHasTwelveOfEach() {
    const tagKorviaShowOutputParam param;
    QCOMPARE(param.active.size(), std::size_t{12});
    QCOMPARE(param.active[0], 1U);
    for (std::size_t i = 1; i < 12; ++i)
      QCOMPARE(param.active[i], 0U);
    QCOMPARE(param.encode.size(), std::size_t{12});
    QCOMPARE(param.items.size(), std::size_t{12});
    QCOMPARE(param.items[11].ndiName, QStringLiteral("GNDIOutput-11"));
    QCOMPARE(param.items[11].secondPort, 8112);
  }

  void alphaMattingDefaults() {
    const tagKorviaShowAlphaMattingParam param;
    QCOMPARE(param.mode, 0);
    QCOMPARE(param.keyColor.rgba(), 0xFF00FF00U);
    QCOMPARE(param.screenBalance, 0.5F);
    QCOMPARE(param.edgeRadius, 3);
    QCOMPARE(param.edgeTolerance, 0.1F);
    QCOMPARE(param.clipBlack, 0.0F);
    QCOMPARE(param.clipWhite, 1.0F);
    QCOMPARE(param.despillFactor, 1.0F);
    QCOMPARE(param.despillBalance, 0.5F);
    QCOMPARE(param.aiScreenBalance, 0.1F);
    QCOMPARE(param.aiEdgeRadius, 3);
    QCOMPARE(param.aiDespillBalance, 0.5F);
  }

  void componentDefaults() {
    const tagKorviaShowComponentInfo info;
    QVERIFY(!QUuid(info.scene.id).isNull());
    QVERIFY(info.scene.id != tagKorviaShowComponentInfo{}.scene.id);
    QCOMPARE(info.scene.reserved4, 0);
    QCOMPARE(info.scene.reserved5, 1);
    QCOMPARE(info.scene.reserved7, 0);
    QCOMPARE(info.scene.reserved8, 1.0F);
    QCOMPARE(info.scene.reserved17, qint64{0});
    QCOMPARE(info.enterTimeline.mode, 1);
    QCOMPARE(info.enterTimeline.firstIndex, 0);
    QCOMPARE(info.enterTimeline.lastIndex, -1);
  }

  void lyricsStartWithoutLines() {
    const tagZRCFileInfo lyrics;
    QCOMPARE(lyrics.title, QString());
    QCOMPARE(lyrics.timeDiff, 0);
    QVERIFY(lyrics.lines.isEmpty());
    const tagZRCLineInfo line;
    QCOMPARE(line.index, -1);
    QCOMPARE(line.start, qint64{0});
    QVERIFY(line.words.isEmpty());
    tagZRCFileInfo other = lyrics;
    QVERIFY(other == lyrics);
    other.lines.append(line);
    other.lines[0].words.append(tagZRCWordInfo{.text = "la"});
    QVERIFY(!(other == lyrics));
    tagZRCFileInfo changed = other;
    changed.lines[0].words[0].duration = 1;
    QVERIFY(!(changed == other));
  }

  void textAndLogoDefaults() {
    const tagKorviaShowTextInfo text;
    QCOMPARE(text.text, QStringLiteral("Time: ${Time}"));
    QCOMPARE(text.hAlign, 1);
    QCOMPARE(text.vAlign, 0x84);
    QCOMPARE(text.x, 0.5);
    QCOMPARE(text.width, 0.0);
    QCOMPARE(text.enter.effect, 0);
    QCOMPARE(text.exit.effect, 26);
    QCOMPARE(text.exit.duration, qint64{400});
    QCOMPARE(text.exit.curve, 1);
    QCOMPARE(text.style.fontSize, 40);
    QCOMPARE(text.style.shadowDistanceY, -2);
    QCOMPARE(text.style.shadowColor, QColor(Qt::gray).rgba());
    QCOMPARE(text.style.gradientBeginColor, QColor(Qt::blue).rgba());
    QCOMPARE(text.style.outlineColor, QColor(Qt::yellow).rgba());
    const tagKorviaShowLogoInfo logo;
    QCOMPARE(logo.scaleX, 1.0);
    QCOMPARE(logo.alpha, 1.0F);
    QCOMPARE(logo.exit.effect, 26);
    QVERIFY(logo.id != tagKorviaShowLogoInfo{}.id);
  }

  void karaokeTextDefaults() {
    const tagGShowKaroakeTextParam param;
    QCOMPARE(param.fontName, QStringLiteral("Microsoft YaHei Bold & Microsoft YaHei UI Bold"));
    QCOMPARE(param.fontSize, 45);
    QCOMPARE(int{param.colorPreset}, 5);
    QCOMPARE(param.unplayedUpperColor, QColor(64, 0, 128, 255));
    QCOMPARE(param.unplayedLowerColor, QColor(64, 0, 128, 255));
    QCOMPARE(param.playedUpperColor, QColor(255, 55, 146, 255));
    QCOMPARE(param.playedLowerColor, QColor(255, 55, 146, 255));
    QCOMPARE(param.borderColor, QColor(255, 172, 0, 255));
    QCOMPARE(param.reserved, 64);
  }

  void mixerDefaults() {
    const tagKorviaShowAudioMixerParam param;
    QCOMPARE(param.mixMode, 0);
    QCOMPARE(param.channelEnable[7], 0);
    QCOMPARE(param.channelVolume[7], 1.0);
    QCOMPARE(param.karaokeVolume, 1.0);
    QCOMPARE(param.pgmVolume, 1.0);
    QCOMPARE(param.pvmVolume, 1.0);
  }

  void audioLevelsStandInGroupsOfEight() {
    tagKorviaShowAudioLevel level;
    level.setChannel(7, {1, 2});
    level.setPvm({3, 4});
    level.setPgm({5, 6});
    level.setActive(7, 1);
    QCOMPARE(level.values[56], 1.0F);
    QCOMPARE(level.values[57], 2.0F);
    QCOMPARE(level.values[64], 3.0F);
    QCOMPARE(level.values[65], 4.0F);
    QCOMPARE(level.values[72], 5.0F);
    QCOMPARE(level.values[73], 6.0F);
    QCOMPARE(level.values[95], 1.0F);
    QCOMPARE(level.channel(7).right, 2.0F);
    QCOMPARE(level.pvm().left, 3.0F);
    QCOMPARE(level.pgm().right, 6.0F);
    QCOMPARE(level.active(7), 1.0F);
  }

  void audioLevelIgnoresChannelsThatDoNotExist() {
    tagKorviaShowAudioLevel level;
    level.setChannel(8, {9, 9});
    level.setChannel(-1, {9, 9});
    level.setActive(8, 9);
    QVERIFY(level.values == tagKorviaShowAudioLevel{}.values);
    QCOMPARE(level.channel(8).left, 0.0F);
    QCOMPARE(level.active(-1), 0.0F);
  }

  void outputStatisticsMayBeZeroedAndReadByPosition() {
    tagKorviaOutputStatistics statistics;
    statistics.blocks[1].record.bitrate = 4096;
    statistics.blocks[0].rtmp[2].bitrate = 2048;
    const char* bytes = reinterpret_cast<const char*>(&statistics);
    float value = 0;
    std::memcpy(&value, bytes + 8 + 1712 + 172, sizeof value);
    QCOMPARE(value, 4096.0F);
    std::memcpy(&value, bytes + 8 + 1476, sizeof value);
    QCOMPARE(value, 2048.0F);
    statistics.blocks[0].frameType.fill('I');
    QCOMPARE(bytes[8 + 32 + 90], 'I');
    static_assert(std::is_trivially_copyable_v<tagKorviaOutputStatistics>);
  }

  void recordsAreRegisteredUnderTheirOwnNames_data() {
    QTest::addColumn<int>("id");
    const auto row = [](const char* name, int id) { QTest::newRow(name) << id; };
    row("tagKorviaFormatInfo", korviaMetaTypeId<tagKorviaFormatInfo>());
    row("tagKorviaShowEngineInfo", korviaMetaTypeId<tagKorviaShowEngineInfo>());
    row("tagKorviaWindowInfo", korviaMetaTypeId<tagKorviaWindowInfo>());
    row("tagKorviaShowWindowPackInfo", korviaMetaTypeId<tagKorviaShowWindowPackInfo>());
    row("tagKorviaShowPresentPlacement", korviaMetaTypeId<tagKorviaShowPresentPlacement>());
    row("tagKorviaShowOutputParam", korviaMetaTypeId<tagKorviaShowOutputParam>());
    row("tagKorviaShowAlphaMattingParam", korviaMetaTypeId<tagKorviaShowAlphaMattingParam>());
    row("tagKorviaShowChannelBackgroundInfo", korviaMetaTypeId<tagKorviaShowChannelBackgroundInfo>());
    row("tagKorviaShowPresentTimelineInfo", korviaMetaTypeId<tagKorviaShowPresentTimelineInfo>());
    row("tagKorviaShowComponentInfo", korviaMetaTypeId<tagKorviaShowComponentInfo>());
    row("tagGShowKaroakeTextParam", korviaMetaTypeId<tagGShowKaroakeTextParam>());
    row("tagKorviaAudioEffectParam", korviaMetaTypeId<tagKorviaAudioEffectParam>());
    row("tagZRCFileInfo", korviaMetaTypeId<tagZRCFileInfo>());
    row("tagKorviaShowTextInfo", korviaMetaTypeId<tagKorviaShowTextInfo>());
    row("tagKorviaShowLogoInfo", korviaMetaTypeId<tagKorviaShowLogoInfo>());
    row("tagKorviaWindowHWNDInfo", korviaMetaTypeId<tagKorviaWindowHWNDInfo>());
    row("tagKorviaShowEngineFigures", korviaMetaTypeId<tagKorviaShowEngineFigures>());
  }

  void recordsAreRegisteredUnderTheirOwnNames() {
    QFETCH(int, id);
    QCOMPARE(QMetaType::typeName(id), QTest::currentDataTag());
    QCOMPARE(QMetaType::type(QTest::currentDataTag()), id);
  }

  void variantsHoldCopies() {
    tagKorviaShowOutputParam param;
    param.items[1].kind = OutputKindRecord;
    const QVariant variant = toVariant(param);
    param.items[1].kind = OutputKindNone;
    QCOMPARE(variant.userType(), korviaMetaTypeId<tagKorviaShowOutputParam>());
    QCOMPARE(fromVariant<tagKorviaShowOutputParam>(variant).items[1].kind, quint8{2});

    tagKorviaFormatInfo format;
    format.video.width = 640;
    QVERIFY(fromVariant<tagKorviaFormatInfo>(toVariant(format)) == format);
  }

  void anotherTypeInAVariantGivesADefaultRecord() {
    QCOMPARE(fromVariant<tagKorviaWindowInfo>(QVariant(7)).right, -1);
    QCOMPARE(fromVariant<tagKorviaWindowInfo>(QVariant()).right, -1);
    QCOMPARE(fromVariant<tagKorviaWindowInfo>(toVariant(tagKorviaFormatInfo{})).right, -1);
  }
};

QTEST_APPLESS_MAIN(RecordsTest)
#include "tst_records.moc"
