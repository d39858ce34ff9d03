// How the console answers: services to its children, results and questions of the engine, the paint pad.
#include <QSignalBlocker>

#include "IKorviaShowSource.h"
#include "KorviaMetaType.h"
#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "console/GWidgetDisplayObject.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "console/KorviaSarnhawk.h"
#include "console/OutputSwitches.h"
#include "console/ShowChange.h"
#include "console/StripArea.h"
#include "console/SwitchLever.h"
#include "present/popupAt.h"
#include "tagKorviaShowPresentPlacement.h"
#include "transitions/GWidgetTransitionEffectConfig.h"
#include "ui_KorviaSarnhawk.h"

namespace {

// What a film that ends takes over with.
constexpr int kSwitchEffect = 22;
constexpr float kSwitchSeconds = 0.5F;
constexpr int kSwitchEasing = 0;

constexpr int kPopupUnder = Qt::AlignBottom;
constexpr int kPopupCentred = 0x84;

}  // namespace

void KorviaSarnhawk::postEvent(quint64 eventId, QVariant a1, QVariant a2, QVariant a3, QVariant a4) {
  if (_engine)
    _engine->postEvent(eventId, std::move(a1), std::move(a2), std::move(a3), std::move(a4));
}

IKorviaShowSource* KorviaSarnhawk::getSource(KorviaShowObjectID id) {
  return _engine ? _engine->getSource(id) : nullptr;
}

// Asked for before its window exists; there is nothing to show then.
void KorviaSarnhawk::showSoundControl(int, QWidget*) {}

void KorviaSarnhawk::showTransitionConfig(int transitionIndex) {
  if (!_transitionConfig || !takeButton(transitionIndex))
    return;
  _transitionConfig->setTransition(transitionIndex);
  _transitionConfig->present();
}

void KorviaSarnhawk::showChannelConfig(QWidget* button, int channelId) {
  if (!_channelConfig)
    return;
  if (_channelConfig->objectId() != channelId)
    popupAt(_channelConfig, button, kPopupUnder, kPopupCentred);
  _channelConfig->present();
  _channelConfig->showChannel(channelId);
}

// A show lives in memory only; a store would hang in here and gets the mask for free.
void KorviaSarnhawk::saveChanges(unsigned, int) {}

QList<GListWidgetItemInfo>* KorviaSarnhawk::getEffectList(int catalog) {
  return _transitions.effectList(catalog);
}

void KorviaSarnhawk::onPostEventResult(quint64 eventId, quint64 result, QVariant a1, QVariant a2, QVariant a3,
                                       QVariant a4) {
  emit sig_PostEventResult(eventId, result, a1, a2, a3, a4);
}

// Spectra of the karaoke page and the sound control are fed here, in this order.
void KorviaSarnhawk::onAudioData(KorviaShowObjectID, const void*, unsigned, unsigned, int, const void*, int) {
}

QImage KorviaSarnhawk::lockBackground(KorviaShowObjectID id) {
  return id == PGMObject ? _whitePad.lockBackground() : QImage();
}

void KorviaSarnhawk::unlockBackground(KorviaShowObjectID id, QImage& image) {
  if (id == PGMObject)
    _whitePad.unlockBackground(image);
}

void KorviaSarnhawk::onSourceNotify(KorviaShowObjectID id, int what, int param) {
  if (what == kSourceNotifySwitch && id == _selectedPVM.load())
    postEvent(ShowEventTake, param, kSwitchEffect, kSwitchSeconds, kSwitchEasing);
}

void KorviaSarnhawk::slot_PostEventResult(quint64 eventId, quint64, QVariant a1, QVariant a2, QVariant,
                                          QVariant) {
  // A result may still be in this thread's queue when the engine has gone.
  if (!_engine)
    return;
  switch (eventId) {
    case ShowEventOpen:
      onEngineOpened();
      break;
    case ShowEventSwitchPosition:
      _lever->showPosition(a1.toFloat());
      break;
    case ShowEventSelectChannel:
      onChannelSelected(a1.toULongLong(), a2.toInt());
      break;
    case ShowEventPlacementChanged:
      // It goes back to the engine in any case, also when no page takes it over.
      _pages.placement(fromVariant<tagKorviaShowPresentPlacement>(a1));
      postEvent(ShowEventPlacementCommit, a1);
      break;
    case ShowEventStartOutput:
      _outputs->onStarted(a1.toUInt(), a2);
      break;
    case ShowEventStopOutput:
      _outputs->onStopped(a2.toUInt());
      break;
    case ShowEventAudioMixMode:
      onMixModeReported(a1.toInt());
      break;
    case ShowEventVolume:
      onVolumeReported(a1.toInt(), a2.toFloat());
      break;
    case ShowEventChannelMix:
      onChannelMixReported(a1.toInt(), a2.toInt());
      break;
    default:
      break;
  }
}

void KorviaSarnhawk::onChannelSelected(quint64 bus, int channelId) {
  if (bus == PVMObject) {
    _config.pvmChannel = channelId;
    _selectedPVM = channelId;
    if (_channelConfig && _channelConfig->isVisible())
      _channelConfig->showChannel(channelId);
    for (GWidgetDisplayObject* strip : _strips->strips())
      strip->setSelectedPVM(channelId == strip->objectId());
  } else if (bus == PGMObject) {
    _config.pgmChannel = channelId;
    for (GWidgetDisplayObject* strip : _strips->strips())
      strip->setSelectedPGM(channelId == strip->objectId());
  }
}

void KorviaSarnhawk::onMixModeReported(int mode) {
  QPushButton* const buttons[] = {_ui->_autoMixModePushButton, _ui->_allMixModePushButton,
                                  _ui->_manulMixModePushButton};
  if (mode < AudioMixModeAuto || mode > AudioMixModeManual)
    return;
  const QSignalBlocker blocker(buttons[mode]);
  buttons[mode]->setChecked(true);
}

void KorviaSarnhawk::onVolumeReported(int objectId, float volume) {
  QSlider* slider = nullptr;
  if (objectId == PGMObject)
    slider = _ui->_pgmVolumeVerticalSlider;
  else if (objectId == PVMObject)
    slider = _ui->_pvmVolumeVerticalSlider;
  // One hold counts for both sliders: while the operator rides the program level, nothing else moves.
  if (!slider || _pgmVolumeHeld)
    return;
  // Truncated, also when it is the slider's own volume that comes back.
  const QSignalBlocker blocker(slider);
  slider->setValue(static_cast<int>(volume * 100.0F));
}

void KorviaSarnhawk::onChannelMixReported(int channelId, int audioState) {
  int index = 0;
  if (channelId < MediaChannel || getObjectKind(channelId, index) != MediaObjectKind)
    return;
  if (GWidgetDisplayObject* strip = _strips->media(index))
    strip->setAudioState(audioState);
}

void KorviaSarnhawk::onCommitWhitePadImage(const QImage& image) {
  if (_engine)
    _engine->commitPaintPadImage(image);
}

void KorviaSarnhawk::onSetWhitePadValid(bool valid) {
  if (_engine) {
    _engine->setPaintPadValid(valid);
    if (!valid)
      _engine->pausePGMImage(false);
  }
  const QSignalBlocker blocker(_ui->_paintOutputPushButton);
  _ui->_paintOutputPushButton->setChecked(valid);
}

void KorviaSarnhawk::onPauseWhitePad(bool pause) {
  if (_engine)
    _engine->pausePGMImage(pause);
}

void KorviaSarnhawk::onSelectWhitePadChannel(int index) {
  constexpr int kPadMediaChannels = 4;
  const int channelId =
      index < kPadMediaChannels ? MediaChannel + index : StageChannel + index - kPadMediaChannels;
  for (GWidgetDisplayObject* strip : _strips->strips())
    strip->applyOnAirRule(channelId);
  postEvent(ShowEventSelectChannel, PVMObject, channelId);
  saveChanges(ShowChangeMediaChannel | ShowChangeStageChannel);
}

void KorviaSarnhawk::onWhitePadShown() {}

void KorviaSarnhawk::onWhitePadHidden() {}
