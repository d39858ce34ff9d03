// Voice change and vocal cut of one sound. Plain values, usable from any thread.
#pragma once
#include <QMetaType>
#include <array>

/// Takes the voice out of a stereo sound.
struct tagKorviaAudioProcessParamVolcalCut {
  /// 0 none, 1 normal, 2 karaoke, 3 centre pan.
  qint32 preset = 0;
  /// -1 to 1: where in the stereo picture the voice lies.
  float pan = 0;
  /// -1 to 0: how much of it is taken out.
  float level = 0;
  qint32 filterSwitch = 0;
  /// Hz.
  qint32 filterFreq = 10;
  float filterQ = 0.001F;

  friend bool operator==(const tagKorviaAudioProcessParamVolcalCut&,
                         const tagKorviaAudioProcessParamVolcalCut&) = default;
};

/// A default record leaves the sound as it is.
struct tagKorviaAudioEffectParam {
  /// The voice change preset that the values below come from; 0 none.
  qint32 preset = 0;
  float pitchSemitones = 0;
  /// Milliseconds between the repeats of the echo; 0 no echo.
  float echoDelayMs = 0;
  /// 0 to below 1: what of each repeat comes back.
  float echoFeedback = 0;
  /// 0 to 1: share of the echo in the sound.
  float echoMix = 0;
  /// Hz of the ring modulation; 0 none.
  float ringModulationHz = 0;
  /// Gains in dB at 29, 59, 119, 237, 474, 947, 1889, 3770, 7523 and 15011 Hz.
  std::array<float, 10> equalizerDb{};
  tagKorviaAudioProcessParamVolcalCut vocalCut;

  friend bool operator==(const tagKorviaAudioEffectParam&, const tagKorviaAudioEffectParam&) = default;
};

Q_DECLARE_METATYPE(tagKorviaAudioProcessParamVolcalCut)
Q_DECLARE_METATYPE(tagKorviaAudioEffectParam)
