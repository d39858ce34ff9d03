// What the desk does: ticks, transport, lever, outputs, audio and takes.
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QSignalBlocker>
#include <QStandardPaths>
#include <QToolTip>

#include "IKorviaShowSource.h"
#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "KorviaShowUtil.h"
#include "console/GWidgetDisplayObject.h"
#include "console/KorviaSarnhawk.h"
#include "console/OutputSwitches.h"
#include "console/OutputWatch.h"
#include "console/ShowChange.h"
#include "console/StripArea.h"
#include "console/SwitchLever.h"
#include "console/TransportRow.h"
#include "transitions/TakeRules.h"
#include "ui_KorviaSarnhawk.h"

namespace {

constexpr QPoint kSnapshotTipOffset(8, -52);

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
  _whitePad.setVisible(_ui->_paintOutputPushButton->isChecked(), false);
}

void KorviaSarnhawk::takeSnapshot() {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
  QDir().mkpath(folder);
  const QString path = _snapshotNames.next(folder, QDateTime::currentDateTime());
  postEvent(ShowEventSnapshot, PGMObject, path);
  QWidget* frame = parentWidget() ? parentWidget() : this;
  QToolTip::showText(frame->geometry().bottomLeft() + kSnapshotTipOffset, path, frame);
}

void KorviaSarnhawk::onClicked_audioMixModePushButton() {
  const QObject* button = sender();
  if (button == _ui->_autoMixModePushButton)
    _config.audioMixer.mixMode = AudioMixModeAuto;
  else if (button == _ui->_allMixModePushButton)
    _config.audioMixer.mixMode = AudioMixModeAll;
  else if (button == _ui->_manulMixModePushButton)
    _config.audioMixer.mixMode = AudioMixModeManual;
  postEvent(ShowEventAudioMixMode, _config.audioMixer.mixMode);
  saveChanges(ShowChangeAudioMixer);
}

float KorviaSarnhawk::volumeOf(int percent) {
  return static_cast<float>(percent) / 100.0F;
}

void KorviaSarnhawk::setVolume(int objectId, double& volume, int percent) {
  volume = static_cast<double>(volumeOf(percent));
  postEvent(ShowEventVolume, objectId, volume);
  saveChanges(ShowChangeAudioMixer);
}

void KorviaSarnhawk::onValueChanged_pgmVolumeVerticalSlider(int value) {
  setVolume(PGMObject, _config.audioMixer.pgmVolume, value);
}

void KorviaSarnhawk::onSliderPressed_pgmVolumeVerticalSlider() {
  _pgmVolumeHeld = true;
}

void KorviaSarnhawk::onSliderReleased_pgmVolumeVerticalSlider() {
  _pgmVolumeHeld = false;
}

void KorviaSarnhawk::onValueChanged_pvmVolumeVerticalSlider(int value) {
  setVolume(PVMObject, _config.audioMixer.pvmVolume, value);
}

void KorviaSarnhawk::onSliderPressed_pvmVolumeVerticalSlider() {
  _pvmVolumeHeld = true;
}

void KorviaSarnhawk::onSliderReleased_pvmVolumeVerticalSlider() {
  _pvmVolumeHeld = false;
}

QToolButton* KorviaSarnhawk::takeButton(int transitionIndex) const {
  QToolButton* const buttons[kTakeButtonCount] = {
      _ui->_takeTransitionToolButton_0, _ui->_takeTransitionToolButton_1, _ui->_takeTransitionToolButton_2,
      _ui->_takeTransitionToolButton_3};
  return transitionIndex >= 0 && transitionIndex < kTakeButtonCount ? buttons[transitionIndex] : nullptr;
}

void KorviaSarnhawk::updateTakeButton(int transitionIndex) {
  QToolButton* button = takeButton(transitionIndex);
  if (!button)
    return;
  const qint32 effect = _config.takeButtons[static_cast<std::size_t>(transitionIndex)].effect;
  const GListWidgetItemInfo* item = _transitions.find(effect);
  // A number that no catalog lists can be taken all the same; it shows as what it is.
  const QString text = item ? TransitionCatalogue::catalogName(static_cast<int>(
                                  KorviaShowUtil::getEffectCatalog(static_cast<unsigned>(effect)))) +
                                  QLatin1Char('\n') + item->name
                            : QString::number(effect);
  button->setText(text);
  button->setToolTip(text);
  button->setIcon(item && QFileInfo::exists(item->thumbPath) ? QIcon(item->thumbPath) : QIcon());
}

void KorviaSarnhawk::takeChannel(int channelId, int transitionIndex) {
  if (transitionIndex < 0 || transitionIndex >= kTakeButtonCount)
    return;
  int index = 0;
  if (getObjectKind(channelId, index) == MediaObjectKind) {
    if (GWidgetDisplayObject* strip = _strips->media(index))
      strip->applyOnAirRule(channelId);
  }
  const tagKorviaTakeButton& slot = _config.takeButtons[static_cast<std::size_t>(transitionIndex)];
  const qint32 effect = TakeRules::effectToSend(slot, QDateTime::currentSecsSinceEpoch());
  _config.lastTakeIndex = transitionIndex;
  postEvent(ShowEventTake, channelId, effect, slot.duration, slot.easing);
}

void KorviaSarnhawk::takeSelected(int transitionIndex) {
  takeChannel(_config.pvmChannel, transitionIndex);
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
