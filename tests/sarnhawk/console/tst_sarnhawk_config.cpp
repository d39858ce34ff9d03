// What a fresh show record holds.
#include <QtTest>

#include "ShowChange.h"
#include "tagKorviaSarnhawkConfig.h"

class SarnhawkConfigTest : public QObject {
  Q_OBJECT
 private slots:
  void changesHaveTheirMasks() {
    QCOMPARE(unsigned{ShowChangeMediaChannel}, 0x1U);
    QCOMPARE(unsigned{ShowChangeStageChannel}, 0x2U);
    QCOMPARE(unsigned{ShowChangeSystem}, 0x4U);
    QCOMPARE(unsigned{ShowChangeAudioMixer}, 0x10U);
    QCOMPARE(unsigned{ShowChangeOutput}, 0x20U);
    QCOMPARE(unsigned{ShowChangeKaraoke}, 0x100U);
    QCOMPARE(unsigned{ShowChangeTexts}, 0x200U);
    QCOMPARE(unsigned{ShowChangeLogos}, 0x400U);
    QCOMPARE(unsigned{ShowChangeOverlays}, 0x800U);
    QCOMPARE(unsigned{ShowChangeComponents}, 0x1000U);
  }

  void holdsItsDefaults() {
    const tagKorviaSarnhawkConfig config;
    QCOMPARE(config.language, QString());
    QCOMPARE(config.layoutMode, 5);
    QCOMPARE(config.autoRun, 0);
    QCOMPARE(config.pgmDevice, QString());
    QCOMPARE(config.pvmDevice, QString());
    QCOMPARE(config.webPort, 19000);
    QCOMPARE(config.webPath, QString());
    QCOMPARE(config.netStreamDisconnectTimeOut, 3200U);
    QCOMPARE(config.enableOutputWarning, 1);
    QCOMPARE(config.lastTakeIndex, 0);
    QCOMPARE(config.pvmChannel, 0x10);
    QCOMPARE(config.pgmChannel, 0x10);
    QVERIFY(config.lyricFolders.isEmpty());
    QCOMPARE(config.karaokeVisiblePVM, 0);
    QCOMPARE(config.karaokeVisiblePGM, 0);
    QCOMPARE(config.httpPort, 8800);
    QCOMPARE(config.programDir, QString());
    QCOMPARE(config.programName, QStringLiteral("programName"));
  }

  void listsStartEmpty() {
    const tagKorviaSarnhawkConfig config;
    QVERIFY(config.musicList.empty());
    QVERIFY(config.textList.isEmpty());
    QVERIFY(config.logoList.isEmpty());
    QVERIFY(config.overlayList.isEmpty());
    QVERIFY(config.componentList.isEmpty());
  }

  void itemsStartHidden() {
    const tagKorviaSubtitleParam text;
    QCOMPARE(text.pvmVisible, 0);
    QCOMPARE(text.pgmVisible, 0);
    QCOMPARE(text.info.text, QStringLiteral("Time: ${Time}"));
    const tagKorviaLogoParam logo;
    QCOMPARE(logo.pvmVisible, 0);
    QCOMPARE(logo.pgmVisible, 0);
    QCOMPARE(logo.info.exit.effect, 26);
    const tagKorviaComponentParam component;
    QCOMPARE(component.pvmVisible, 0);
    QCOMPARE(component.pgmVisible, 0);
    QVERIFY(component.translator == nullptr);
    QCOMPARE(component.folder, QString());
    QCOMPARE(component.thumbPath, QString());
    // Whatever is shown can be told apart by its identifier.
    QVERIFY(text.info.id != tagKorviaSubtitleParam{}.info.id);
    QVERIFY(logo.info.id != tagKorviaLogoParam{}.info.id);
    QVERIFY(component.info.scene.id != tagKorviaComponentParam{}.info.scene.id);
  }

  void itemsAreEqualFieldByField() {
    const tagKorviaSubtitleParam text;
    tagKorviaSubtitleParam otherText = text;
    QVERIFY(otherText == text);
    otherText.info.scrollEndY = 0.5;
    QVERIFY(!(otherText == text));
    const tagKorviaLogoParam logo;
    tagKorviaLogoParam otherLogo = logo;
    QVERIFY(otherLogo == logo);
    otherLogo.pgmVisible = 1;
    QVERIFY(!(otherLogo == logo));
    const tagKorviaComponentParam component;
    tagKorviaComponentParam otherComponent = component;
    QVERIFY(otherComponent == component);
    otherComponent.info.texts.append(tagKorviaComponentItemParam{});
    QVERIFY(!(otherComponent == component));
  }

  void musicStartsWithoutLength() {
    tagGMusicInfo music;
    QCOMPARE(music.musicPath, QString());
    QCOMPARE(music.lyricsPath, QString());
    QCOMPARE(music.length, QStringLiteral("00:00"));
    QVERIFY(music.zrc.lines.isEmpty());
    QCOMPARE(QByteArray(QMetaType::typeName(qRegisterMetaType<tagGMusicInfo>())),
             QByteArray("tagGMusicInfo"));
    const tagGMusicInfo copy = music;
    music.zrc.lines.append(tagZRCLineInfo{});
    QVERIFY(!(copy == music));
    QVERIFY(copy.zrc.lines.isEmpty());
  }

  void takeButtonsRememberFourTransitions() {
    const tagKorviaSarnhawkConfig config;
    QCOMPARE(config.takeButtons[0].effect, 22);
    QCOMPARE(config.takeButtons[1].effect, 1);
    QCOMPARE(config.takeButtons[2].effect, 62);
    QCOMPARE(config.takeButtons[3].effect, 46);
    for (const tagKorviaTakeButton& button : config.takeButtons) {
      QCOMPARE(button.duration, 1.0F);
      QCOMPARE(button.easing, 0);
    }
    QCOMPARE(tagKorviaTakeButton::kRandomEffect, 65535);
  }

  void channelsAndStagesStartEmpty() {
    const tagKorviaSarnhawkConfig config;
    QCOMPARE(config.channels.size(), std::size_t{8});
    for (const tagKorviaShowChannelSlot& slot : config.channels) {
      QVERIFY(slot.id.isNull());
      QCOMPARE(slot.source.kind, 0);
      QCOMPARE(slot.source.incomePath, QString());
    }
    QCOMPARE(config.stages.size(), std::size_t{4});
    for (const tagKorviaStageSlot& stage : config.stages) {
      QCOMPARE(stage.inUse, 0);
      QVERIFY(stage.translator == nullptr);
    }
    QCOMPARE(config.channelConfig[7].dazzleId, 0);
  }
};

QTEST_APPLESS_MAIN(SarnhawkConfigTest)
#include "tst_sarnhawk_config.moc"
