#include "audio/AudioMixerPanel.h"

#include <QSignalBlocker>

#include "KorviaShowEvents.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/ShowChange.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "ui_KorviaSarnhawk.h"

void AudioMixerPanel::chooseMixMode(const QObject* button) {
  tagKorviaShowAudioMixerParam& mixer = _priv->getConfig()->audioMixer;
  if (button == _ui._autoMixModePushButton)
    mixer.mixMode = AudioMixModeAuto;
  else if (button == _ui._allMixModePushButton)
    mixer.mixMode = AudioMixModeAll;
  else if (button == _ui._manulMixModePushButton)
    mixer.mixMode = AudioMixModeManual;
  _priv->postEvent(ShowEventAudioMixMode, mixer.mixMode);
  _priv->saveChanges(ShowChangeAudioMixer);
}

void AudioMixerPanel::setProgramVolume(int percent) {
  setVolume(PGMObject, _priv->getConfig()->audioMixer.pgmVolume, percent);
}

void AudioMixerPanel::setPreviewVolume(int percent) {
  setVolume(PVMObject, _priv->getConfig()->audioMixer.pvmVolume, percent);
}

void AudioMixerPanel::setVolume(int objectId, double& volume, int percent) {
  volume = static_cast<double>(static_cast<float>(percent) / 100.0F);
  _priv->postEvent(ShowEventVolume, objectId, volume);
  _priv->saveChanges(ShowChangeAudioMixer);
}

void AudioMixerPanel::showMixMode(int mode) {
  QPushButton* const buttons[] = {_ui._autoMixModePushButton, _ui._allMixModePushButton,
                                  _ui._manulMixModePushButton};
  if (mode < AudioMixModeAuto || mode > AudioMixModeManual)
    return;
  const QSignalBlocker blocker(buttons[mode]);
  buttons[mode]->setChecked(true);
}

void AudioMixerPanel::showVolume(int objectId, float volume) {
  QSlider* slider = nullptr;
  if (objectId == PGMObject)
    slider = _ui._pgmVolumeVerticalSlider;
  else if (objectId == PVMObject)
    slider = _ui._pvmVolumeVerticalSlider;
  // The hold of the program slider counts for both: while the operator rides the program level, no volume
  // slider moves.
  if (!slider || _pgmVolumeHeld)
    return;
  // The value is truncated, also when the slider's own volume comes back.
  const QSignalBlocker blocker(slider);
  slider->setValue(static_cast<int>(volume * 100.0F));
}
