// How the console reacts while a show runs: slots of the controls, services to its children, and the reports
// of the engine and the paint pad.
#include "IKorviaShowSource.h"
#include "KorviaMetaType.h"
#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "audio/AudioMixerPanel.h"
#include "console/GWidgetDisplayObject.h"
#include "console/GWidgetDisplayObjectConfig.h"
#include "console/KorviaSarnhawk.h"
#include "console/OutputSwitches.h"
#include "console/OutputWatch.h"
#include "console/Snapshots.h"
#include "console/StripArea.h"
#include "console/SwitchLever.h"
#include "console/TransportRow.h"
#include "output/GWidgetOutputStatistics.h"
#include "output/OutputSettings.h"
#include "present/popupAt.h"
#include "services/ConsoleServers.h"
#include "services/IncomeNames.h"
#include "services/PaintPad.h"
#include "services/RemoteDesk.h"
#include "tagKorviaShowPresentPlacement.h"
#include "transitions/GWidgetTransitionEffectConfig.h"
#include "transitions/TakePanel.h"
#include "ui_KorviaSarnhawk.h"

namespace {

// The transition to the channel that a film names at its end.
constexpr int kSwitchEffect = 22;
constexpr float kSwitchSeconds = 0.5F;
constexpr int kSwitchEasing = 0;

constexpr int kPopupUnder = Qt::AlignBottom;
constexpr int kPopupCentred = 0x84;

}  // namespace

void KorviaSarnhawk::onFrameTimer() {
  ++_frameTicks;
  if (isEngineDue()) {
    _engineRequested = true;
    openEngine();
  }
  _pages.frameTick();
}

void KorviaSarnhawk::onWorkTimer() {
  ++_workTicks;
  _pages.workTick();
  // The server may get another port when it is started anew, and the channels that it feeds must follow.
  if (_servers->rtmpPort() != _toldIncomePort)
    tellIncomeServer();
}

void KorviaSarnhawk::tellIncomeServer() {
  if (!_engine)
    return;
  _toldIncomePort = _servers->rtmpPort();
  _engine->setIncomeServer(_toldIncomePort, _servers->publishSecret());
}

void KorviaSarnhawk::onClicked_playMediaPushButton() {
  if (IKorviaShowSource* source = _transport->source())
    source->play();
}

void KorviaSarnhawk::onClicked_stopMediaPushButton() {
  if (IKorviaShowSource* source = _transport->source())
    source->stop();
}

void KorviaSarnhawk::onClicked_pauseMediaPushButton() {
  if (IKorviaShowSource* source = _transport->source())
    source->pause();
}

void KorviaSarnhawk::onClicked_prevMediaPushButton() {
  if (IKorviaShowSource* source = _transport->source())
    source->prev();
}

void KorviaSarnhawk::onClicked_nextMediaPushButton() {
  if (IKorviaShowSource* source = _transport->source())
    source->next();
}

void KorviaSarnhawk::onValueChanged_seekMediaHorizontalSlider(int value) {
  IKorviaShowSource* source = _transport->source();
  if (!source)
    return;
  const int state = source->getPlayState();
  if (state == Stopped || state == NothingSpecial)
    source->play();
  source->setPosition(value);
}

void KorviaSarnhawk::onSliderPressed_seekMediaHorizontalSlider() {
  _transport->holdSeek();
}

void KorviaSarnhawk::onSliderReleased_seekMediaHorizontalSlider() {
  _transport->releaseSeek();
}

void KorviaSarnhawk::onValueChanged_switchProcessPosVerticalSlider(int value) {
  postEvent(ShowEventSwitchPosition, PGMObject, SwitchLever::positionOf(value));
}

void KorviaSarnhawk::onClicked_startRecordPushButton() {
  if (_ui->_startRecordPushButton->isChecked()) {
    _outputWatch->onStart(OutputSlotRecord);
    _outputs->start(OutputKindRecord);
  } else {
    _outputs->stop(OutputKindRecord);
  }
  _ui->_startRecordPushButton->setEnabled(false);
}

void KorviaSarnhawk::onClicked_startStreamPushButton() {
  if (_ui->_startStreamPushButton->isChecked()) {
    _outputWatch->onStart(OutputSlotStream);
    _servers->serveSegments(_config.outputParam.items[OutputSlotStream]);
    tellIncomeServer();
    _outputs->start(OutputKindStream);
  } else {
    _outputs->stop(OutputKindStream);
  }
  _ui->_startStreamPushButton->setEnabled(false);
}

void KorviaSarnhawk::onClicked_screenCutPushButton() {
  if (_engine)
    _engine->setGrabImageValid(_ui->_screenCutPushButton->isChecked());
}

void KorviaSarnhawk::onClicked_paintOutputPushButton() {
  _paintPad->followButton();
}

void KorviaSarnhawk::onClicked_audioMixModePushButton() {
  _mixer->chooseMixMode(sender());
}

void KorviaSarnhawk::onValueChanged_pgmVolumeVerticalSlider(int value) {
  _mixer->setProgramVolume(value);
}

void KorviaSarnhawk::onSliderPressed_pgmVolumeVerticalSlider() {
  _mixer->holdProgramVolume();
}

void KorviaSarnhawk::onSliderReleased_pgmVolumeVerticalSlider() {
  _mixer->releaseProgramVolume();
}

void KorviaSarnhawk::onValueChanged_pvmVolumeVerticalSlider(int value) {
  _mixer->setPreviewVolume(value);
}

void KorviaSarnhawk::onSliderPressed_pvmVolumeVerticalSlider() {
  _mixer->holdPreviewVolume();
}

void KorviaSarnhawk::onSliderReleased_pvmVolumeVerticalSlider() {
  _mixer->releasePreviewVolume();
}

void KorviaSarnhawk::onAction_takeEffect_takeTransitionToolButton_0() {
  takeSelected(0);
}

void KorviaSarnhawk::onAction_takeEffect_takeTransitionToolButton_1() {
  takeSelected(1);
}

void KorviaSarnhawk::onAction_takeEffect_takeTransitionToolButton_2() {
  takeSelected(2);
}

void KorviaSarnhawk::onAction_takeEffect_takeTransitionToolButton_3() {
  takeSelected(3);
}

void KorviaSarnhawk::onAction_showConfig_takeTransitionToolButton_0() {
  showTransitionConfig(0);
}

void KorviaSarnhawk::onAction_showConfig_takeTransitionToolButton_1() {
  showTransitionConfig(1);
}

void KorviaSarnhawk::onAction_showConfig_takeTransitionToolButton_2() {
  showTransitionConfig(2);
}

void KorviaSarnhawk::onAction_showConfig_takeTransitionToolButton_3() {
  showTransitionConfig(3);
}

void KorviaSarnhawk::postEvent(quint64 eventId, QVariant a1, QVariant a2, QVariant a3, QVariant a4) {
  if (_engine)
    _engine->postEvent(eventId, std::move(a1), std::move(a2), std::move(a3), std::move(a4));
}

IKorviaShowSource* KorviaSarnhawk::getSource(KorviaShowObjectID id) {
  return _engine ? _engine->getSource(id) : nullptr;
}

// There is no sound control window yet.
void KorviaSarnhawk::showSoundControl(int, QWidget*) {}

void KorviaSarnhawk::showTransitionConfig(int transitionIndex) {
  if (!_transitionConfig || !_takes->button(transitionIndex))
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

// Nothing is stored: a show lives in memory only.
void KorviaSarnhawk::saveChanges(unsigned, int) {
  _incomeNames->handOver();
}

QList<GListWidgetItemInfo>* KorviaSarnhawk::getEffectList(int catalog) {
  return _takes->effectList(catalog);
}

void KorviaSarnhawk::updateTakeButton(int transitionIndex) {
  _takes->update(transitionIndex);
}

void KorviaSarnhawk::takeChannel(int channelId, int transitionIndex) {
  _takes->take(channelId, transitionIndex);
  _remote->setTaken(channelId);
}

void KorviaSarnhawk::takeSelected(int transitionIndex) {
  takeChannel(_config.pvmChannel, transitionIndex);
}

void KorviaSarnhawk::takeSnapshot() {
  _snapshots->take(parentWidget() ? parentWidget() : this);
}

void KorviaSarnhawk::showOutputConfig() {
  _outputSettings->open();
}

void KorviaSarnhawk::showOutputStatistics() {
  if (!_statisticsWindow)
    return;
  _statisticsWindow->refreshTips();
  _statisticsWindow->present();
}

void KorviaSarnhawk::onPostEventResult(quint64 eventId, quint64 result, QVariant a1, QVariant a2, QVariant a3,
                                       QVariant a4) {
  emit sig_PostEventResult(eventId, result, a1, a2, a3, a4);
}

// No page shows a spectrum yet.
void KorviaSarnhawk::onAudioData(KorviaShowObjectID, const void*, unsigned, unsigned, int, const void*, int) {
}

QImage KorviaSarnhawk::lockBackground(KorviaShowObjectID id) {
  return id == PGMObject ? _paintPad->lockBackground() : QImage();
}

void KorviaSarnhawk::unlockBackground(KorviaShowObjectID id, QImage& image) {
  if (id == PGMObject)
    _paintPad->unlockBackground(image);
}

void KorviaSarnhawk::onSourceNotify(KorviaShowObjectID id, int what, int param) {
  if (what == kSourceNotifySwitch && id == _selectedPVM.load())
    postEvent(ShowEventTake, param, kSwitchEffect, kSwitchSeconds, kSwitchEasing);
}

void KorviaSarnhawk::slot_PostEventResult(quint64 eventId, quint64, QVariant a1, QVariant a2, QVariant,
                                          QVariant) {
  // The queue of this thread may still hold a result when the engine is already deleted.
  if (!_engine)
    return;
  switch (eventId) {
    case ShowEventOpen:
      onEngineOpened();
      break;
    case ShowEventSwitchPosition:
      _lever->showPosition(a1.toFloat());
      _remote->setSwitchPosition(a1.toFloat());
      break;
    case ShowEventSelectChannel:
      onChannelSelected(a1.toULongLong(), a2.toInt());
      break;
    case ShowEventPlacementChanged:
      // The engine gets the placement back even when no page takes it over.
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
      _mixer->showMixMode(a1.toInt());
      break;
    case ShowEventVolume:
      _mixer->showVolume(a1.toInt(), a2.toFloat());
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
    _remote->onPreviewSelected(channelId);
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

void KorviaSarnhawk::onChannelMixReported(int channelId, int audioState) {
  if (channelId < MediaChannel || channelId > MediaChannel + kMediaChannelMax)
    return;
  if (GWidgetDisplayObject* strip = _strips->media(channelId - MediaChannel))
    strip->setAudioState(audioState);
}

void KorviaSarnhawk::onCommitWhitePadImage(const QImage& image) {
  _paintPad->onCommitWhitePadImage(image);
}

void KorviaSarnhawk::onSetWhitePadValid(bool valid) {
  _paintPad->onSetWhitePadValid(valid);
}

void KorviaSarnhawk::onPauseWhitePad(bool pause) {
  _paintPad->onPauseWhitePad(pause);
}

void KorviaSarnhawk::onSelectWhitePadChannel(int index) {
  _paintPad->onSelectWhitePadChannel(index);
}

void KorviaSarnhawk::onWhitePadShown() {
  _paintPad->onWhitePadShown();
}

void KorviaSarnhawk::onWhitePadHidden() {
  _paintPad->onWhitePadHidden();
}
