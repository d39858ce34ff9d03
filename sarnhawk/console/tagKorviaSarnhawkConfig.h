// The console's model of a show: one record, owned by the console and handed out live to its pages, which
// read and write it on the console thread without a lock.
#pragma once
#include <QList>
#include <QString>
#include <QStringList>
#include <array>
#include <memory>
#include <vector>

#include "tagGMusicInfo.h"
#include "tagGShowKaroakeTextParam.h"
#include "tagKorviaComponentParam.h"
#include "tagKorviaLogoParam.h"
#include "tagKorviaShowAlphaMattingParam.h"
#include "tagKorviaShowAudioMixerParam.h"
#include "tagKorviaShowChannelBackgroundInfo.h"
#include "tagKorviaShowChannelConfig.h"
#include "tagKorviaShowChannelSlot.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowOutputParam.h"
#include "tagKorviaStageSlot.h"
#include "tagKorviaSubtitleParam.h"
#include "tagKorviaTakeButton.h"

struct tagKorviaSarnhawkConfig {
  QString language;
  qint32 layoutMode = 5;
  qint32 autoRun = 0;
  QString pgmDevice;
  QString pvmDevice;
  qint32 webPort = 19000;
  QString webPath;
  /// Milliseconds.
  quint32 netStreamDisconnectTimeOut = 3200;
  qint32 enableOutputWarning = 1;
  tagKorviaShowEngineInfo engineInfo;
  std::array<tagKorviaTakeButton, 4> takeButtons{
      {{.effect = 22}, {.effect = 1}, {.effect = 62}, {.effect = 46}}};
  /// Index of the take button that was used last.
  qint32 lastTakeIndex = 0;
  std::array<tagKorviaShowChannelSlot, 8> channels;
  std::array<tagKorviaShowAlphaMattingParam, 8> alphaMatting;
  std::array<tagKorviaShowChannelBackgroundInfo, 8> channelBackground;
  std::array<tagKorviaShowChannelConfig, 8> channelConfig;
  std::array<tagKorviaStageSlot, 4> stages;
  tagKorviaShowAudioMixerParam audioMixer;
  /// Channel ids on the two buses.
  qint32 pvmChannel = 0x10;
  qint32 pgmChannel = 0x10;
  /// In the order of being added.
  std::vector<std::unique_ptr<tagGMusicInfo>> musicList;
  QStringList lyricFolders;
  qint32 karaokeVisiblePVM = 0;
  qint32 karaokeVisiblePGM = 0;
  qint32 karaokeVisibleDesktop = 0;
  tagGShowKaroakeTextParam karaokeText;
  // The items over the picture, in the order of being added.
  QList<tagKorviaSubtitleParam> textList;
  QList<tagKorviaLogoParam> logoList;
  QList<tagKorviaLogoParam> overlayList;
  QList<tagKorviaComponentParam> componentList;
  tagKorviaShowOutputParam outputParam;
  /// Port of the web server: before its start the first one to try, afterwards the one that it took.
  qint32 httpPort = 8800;
  QString programDir;
  QString programName = QStringLiteral("programName");
};
