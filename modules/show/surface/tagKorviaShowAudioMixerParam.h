// What feeds the mix, how loud, and with which effects. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <array>

#include "tagKorviaAudioEffectParam.h"

enum KorviaShowAudioMixMode : qint32 { AudioMixModeAuto = 0, AudioMixModeAll = 1, AudioMixModeManual = 2 };

/// Volumes are factors, 1.0 is 100 per cent.
struct tagKorviaShowAudioMixerParam {
  /// A KorviaShowAudioMixMode.
  qint32 mixMode = AudioMixModeAuto;
  std::array<qint32, 8> channelEnable{};
  std::array<double, 8> channelVolume{1, 1, 1, 1, 1, 1, 1, 1};
  double karaokeVolume = 1;
  std::array<tagKorviaAudioEffectParam, 8> channelEffect;
  tagKorviaAudioEffectParam karaokeEffect;
  double pgmVolume = 1;
  double pvmVolume = 1;

  friend bool operator==(const tagKorviaShowAudioMixerParam&, const tagKorviaShowAudioMixerParam&) = default;
};

Q_DECLARE_METATYPE(tagKorviaShowAudioMixerParam)
