#include "console/OutputSwitches.h"

#include <QSignalBlocker>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "ui_KorviaSarnhawk.h"

namespace {

/// Slot of the output arrays for a kind, -1 for a kind without a button.
int slotOf(int kind) {
  if (kind == OutputKindRecord)
    return OutputSlotRecord;
  if (kind == OutputKindStream)
    return OutputSlotStream;
  return -1;
}

constexpr struct {
  quint8 tagKorviaShowOutputItem::*enable;
  const char* name;
} kStreamTargets[] = {
    {&tagKorviaShowOutputItem::rtmp0Enable, "RTMP Push - 0"},
    {&tagKorviaShowOutputItem::rtmp1Enable, "RTMP Push - 1"},
    {&tagKorviaShowOutputItem::rtmpLocalEnable, "RTMP Local"},
    {&tagKorviaShowOutputItem::httpEnable, "HTTP"},
    {&tagKorviaShowOutputItem::hlsEnable, "HLS"},
    {&tagKorviaShowOutputItem::udpEnable, "UDP"},
};

}  // namespace

void OutputSwitches::start(int kind) {
  tagKorviaSarnhawkConfig* config = _priv->getConfig();
  config->programName = _ui._programNameLineEdit->text();
  const int slot = slotOf(kind);
  if (slot < 0)
    return;
  const auto place = static_cast<std::size_t>(slot);
  // Only the copy is marked as running. The record keeps the operator's settings.
  tagKorviaShowOutputParam param = config->outputParam;
  param.items[place].kind = static_cast<quint8>(kind);
  param.active[place] = 1;
  if (kind == OutputKindRecord)
    param.items[place].recordActive = 1;
  tagKorviaFormatInfo format;
  format.video = config->engineInfo.outputFormat[place];
  format.audio = config->engineInfo.audioFormat;
  _priv->postEvent(ShowEventStartOutput, slot, toVariant(param), config->programName, toVariant(format));
}

void OutputSwitches::stop(int kind) {
  const int slot = slotOf(kind);
  if (slot >= 0)
    _priv->postEvent(ShowEventStopOutput, slot, kind);
}

void OutputSwitches::applyDirectOutputs() {
  const tagKorviaShowOutputParam& param = _priv->getConfig()->outputParam;
  const tagKorviaShowOutputItem& item = param.items[0];
  const struct {
    bool enabled;
    quint64 on;
    quint64 off;
  } switches[] = {
      {item.virtualCameraEnable != 0, ShowEventStartVirtualCamera, ShowEventStopVirtualCamera},
      {item.ndiEnable != 0, ShowEventStartNDI, ShowEventStopNDI},
      {item.sdiEnable != 0, ShowEventStartSDI, ShowEventStopSDI},
  };
  for (const auto& output : switches) {
    if (output.enabled)
      _priv->postEvent(output.on, 0, toVariant(param));
    else
      _priv->postEvent(output.off, 0);
  }
}

void OutputSwitches::onStarted(unsigned slot, const QVariant& outputParam) {
  const auto param = fromVariant<tagKorviaShowOutputParam>(outputParam);
  if (slot < param.items.size())
    enableButton(param.items[slot].kind);
}

void OutputSwitches::onStopped(unsigned kind) {
  enableButton(kind);
}

void OutputSwitches::enableButton(unsigned kind) {
  if (kind == OutputKindRecord)
    _ui._startRecordPushButton->setEnabled(true);
  else if (kind == OutputKindStream)
    _ui._startStreamPushButton->setEnabled(true);
}

QPushButton* OutputSwitches::button(int slot) const {
  return slot == OutputSlotRecord ? _ui._startRecordPushButton : _ui._startStreamPushButton;
}

void OutputSwitches::press(int slot, Press press) {
  if (isOn(slot) != (press == Press::On))
    button(slot)->click();
}

bool OutputSwitches::isOn(int slot) const {
  return button(slot)->isChecked();
}

bool OutputSwitches::isWaiting(int slot) const {
  return !button(slot)->isEnabledTo(_ui._pgmControlWidget);
}

void OutputSwitches::springBack(int slot) {
  const QSignalBlocker blocker(button(slot));
  button(slot)->setChecked(false);
  button(slot)->setEnabled(true);
}

QStringList OutputSwitches::streamTargets() const {
  const tagKorviaShowOutputItem& item = _priv->getConfig()->outputParam.items[OutputSlotStream];
  QStringList names;
  for (const auto& target : kStreamTargets) {
    if (item.*target.enable != 0)
      names.append(QLatin1String(target.name));
  }
  return names;
}
