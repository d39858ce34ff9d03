// The console's model of a show: one record, owned by the console and handed out live to its pages, which
// read and write it on the console thread without a lock.
#pragma once
#include <QString>
#include <QStringList>
#include <array>

#include "tagGShowKaroakeTextParam.h"
#include "tagKorviaShowAlphaMattingParam.h"
#include "tagKorviaShowAudioMixerParam.h"
#include "tagKorviaShowChannelBackgroundInfo.h"
#include "tagKorviaShowChannelConfig.h"
#include "tagKorviaShowChannelSlot.h"
#include "tagKorviaShowEngineInfo.h"
#include "tagKorviaShowOutputParam.h"
#include "tagKorviaStageSlot.h"
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
  // The list of music, musicList, stands here.
  QStringList lyricFolders;
  qint32 karaokeVisiblePVM = 0;
  qint32 karaokeVisiblePGM = 0;
  qint32 karaokeVisibleDesktop = 0;
  tagGShowKaroakeTextParam karaokeText;
  // The lists of present items, textList, logoList, overlayList and componentList, stand here.
  tagKorviaShowOutputParam outputParam;
  /// Port of the operator's page: the first one to try, then the one that the web server took.
  qint32 httpPort = 8800;
  QString programDir;
  QString programName = QStringLiteral("programName");
};
