#include "services/RemoteDesk.h"

#include <QDateTime>
#include <QJsonArray>
#include <algorithm>
#include <vector>

#include "KorviaShowEngine.h"
#include "KorviaShowEvents.h"
#include "WebDesk.h"
#include "console/GWidgetDisplayObject.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/OutputSwitches.h"
#include "console/SourceText.h"
#include "console/StatisticsFetch.h"
#include "console/StripArea.h"
#include "console/reportWords.h"
#include "console/tagKorviaSarnhawkConfig.h"
#include "transitions/TakePanel.h"

using korvia::WebCommand;
using korvia::WebDesk;
using korvia::WebVerdict;

namespace {

// Ten times a second.
constexpr quint64 kTicksPerTelling = 3;

constexpr qint64 kCommandAgeMs = 2000;
// The engine may refuse a selection without an answer.
constexpr qint64 kAnswerLimitMs = 1000;

// The engine's levels are 0 to 100 for -60 to 0 dBFS.
constexpr double kFloorDb = -60;

double levelDb(float level) {
  return std::round((kFloorDb + static_cast<double>(level) * -kFloorDb / 100) * 10) / 10;
}

QJsonArray pairOf(tagKorviaShowAudioLevel::Pair level) {
  return {levelDb(level.left), levelDb(level.right)};
}

/// Silence and what is not known have no loudness.
QJsonValue loudness(double value) {
  if (value <= tagKorviaShowEngineFigures::Loudness::kSilence)
    return {};
  return std::round(value * 10) / 10;
}

}  // namespace

RemoteDesk::~RemoteDesk() {
  close();
}

void RemoteDesk::open() {
  std::vector<int> known;
  for (const GWidgetDisplayObject* strip : _parts.strips->strips())
    known.push_back(strip->objectId());
  WebDesk::instance().setHandler([this, known](const WebCommand& command) {
    const bool isKnown =
        !command.channel || std::find(known.begin(), known.end(), *command.channel) != known.end();
    return isKnown ? accept(command) : WebVerdict::UnknownChannel;
  });
  if (KorviaShowEngine* engine = _parts.priv->getEngine())
    engine->setPictureSink(&_pictures);
  _isOpen = true;
}

void RemoteDesk::close() {
  if (!_isOpen)
    return;
  _isOpen = false;
  WebDesk& desk = WebDesk::instance();
  desk.setHandler({});
  if (KorviaShowEngine* engine = _parts.priv->getEngine())
    engine->setPictureSink(nullptr);
  desk.program().clear();
  desk.channels().clear();
}

WebVerdict RemoteDesk::accept(const WebCommand& command) {
  if (_waiting.fetch_add(1) >= kWaitingMax) {
    --_waiting;
    return WebVerdict::NotReady;
  }
  QElapsedTimer age;
  age.start();
  QMetaObject::invokeMethod(
      this,
      [this, command, age] {
        --_waiting;
        // After a pause of the console nobody expects a cut of long ago.
        if (_isOpen && age.elapsed() < kCommandAgeMs)
          run(command);
      },
      Qt::QueuedConnection);
  return WebVerdict::Accepted;
}

void RemoteDesk::run(const WebCommand& command) {
  const int channelId = command.channel.value_or(previewChannel());
  switch (command.kind) {
    case WebCommand::Kind::Take:
      return _parts.priv->takeChannel(channelId, command.transition);
    case WebCommand::Kind::Cut:
      return cutTo(channelId);
    case WebCommand::Kind::Select:
      return select(channelId);
    case WebCommand::Kind::StartRecord:
      return _parts.outputs->press(OutputSlotRecord, OutputSwitches::Press::On);
    case WebCommand::Kind::StopRecord:
      return _parts.outputs->press(OutputSlotRecord, OutputSwitches::Press::Off);
    case WebCommand::Kind::StartStream:
      return _parts.outputs->press(OutputSlotStream, OutputSwitches::Press::On);
    case WebCommand::Kind::StopStream:
      return _parts.outputs->press(OutputSlotStream, OutputSwitches::Press::Off);
  }
}

void RemoteDesk::select(int channelId) {
  _selecting = channelId;
  _sinceSelecting.start();
  _parts.priv->postEvent(ShowEventSelectChannel, PVMObject, channelId);
}

void RemoteDesk::onPreviewSelected(int channelId) {
  if (_selecting == channelId)
    _selecting.reset();
}

int RemoteDesk::previewChannel() const {
  const bool isAwaited = _selecting && _sinceSelecting.elapsed() < kAnswerLimitMs;
  return isAwaited ? *_selecting : _parts.priv->getConfig()->pvmChannel;
}

// As a take does, the cut releases a held film before the channel is on air.
void RemoteDesk::cutTo(int channelId) {
  for (GWidgetDisplayObject* strip : _parts.strips->strips()) {
    if (strip->objectId() == channelId)
      strip->applyOnAirRule(channelId);
  }
  _parts.priv->postEvent(ShowEventSelectChannel, PGMObject, channelId);
}

void RemoteDesk::setSwitchPosition(float position) {
  const bool isOver = position >= 1;
  _switchPosition = isOver ? 0 : position;
  if (isOver)
    _taken.reset();
}

void RemoteDesk::onFrameTick() {
  korvia::EventFeed& events = WebDesk::instance().events();
  tellTake();
  if (++_ticks % kTicksPerTelling != 0 || !events.hasViewers())
    return;
  events.setState("tally", tally());
  events.setState("outputs", outputStates());
  if (events.hasLevelViewers() && _parts.priv->getEngine())
    events.setLevels(levels());
}

void RemoteDesk::tellTake() {
  const int program = _parts.priv->getConfig()->pgmChannel;
  if (program == _toldProgram)
    return;
  korvia::EventFeed& events = WebDesk::instance().events();
  if (_toldProgram != 0 && events.hasViewers())
    events.tell("take", {{"from", _toldProgram},
                         {"to", program},
                         {"time", QDateTime::currentDateTimeUtc().toString(Qt::ISODateWithMs)}});
  _toldProgram = program;
}

QJsonObject RemoteDesk::tally() const {
  const tagKorviaSarnhawkConfig* config = _parts.priv->getConfig();
  // During a take both channels are seen on program. The lever takes the one on preview.
  const int incoming = _switchPosition > 0 ? _taken.value_or(config->pvmChannel) : config->pgmChannel;
  QJsonArray channels;
  for (const GWidgetDisplayObject* strip : _parts.strips->strips()) {
    const int id = strip->objectId();
    const auto index = static_cast<std::size_t>(strip->index());
    QJsonObject channel{{"id", id},
                        {"name", channelTitle(id)},
                        {"onProgram", id == config->pgmChannel || id == incoming},
                        {"onPreview", id == config->pvmChannel}};
    if (strip->isMedia()) {
      const tagKorviaShowSourceInfo& source = config->channels[index].source;
      const bool isInUse = _parts.priv->getSource(static_cast<KorviaShowObjectID>(id)) != nullptr;
      channel["inUse"] = isInUse;
      channel["label"] = isInUse ? SourceText::fileName(source) : QString();
      channel["kind"] = isInUse ? SourceText::kindName(source.kind) : QString();
    } else {
      channel["inUse"] = config->stages[index].inUse != 0;
    }
    channels.append(channel);
  }
  QJsonArray takes;
  for (int index = 0; index < TakePanel::kButtonCount; ++index)
    takes.append(QJsonObject{{"index", index}, {"name", _parts.takes->transitionName(index)}});
  return {{"program", config->pgmChannel},
          {"preview", config->pvmChannel},
          {"switchPosition", std::round(static_cast<double>(_switchPosition) * 100) / 100},
          {"channels", channels},
          {"takes", takes},
          {"lastTake", config->lastTakeIndex}};
}

QJsonObject RemoteDesk::outputStates() const {
  return {{"record", outputState(OutputSlotRecord)}, {"stream", outputState(OutputSlotStream)}};
}

QJsonObject RemoteDesk::outputState(int slot) const {
  const tagKorviaShowOutputReport& report =
      _parts.statistics->figures().outputs[static_cast<std::size_t>(slot)];
  return {{"state", outputStateName(report.state)},
          {"reason", report.reason},
          {"on", _parts.outputs->isOn(slot)},
          {"waiting", _parts.outputs->isWaiting(slot)}};
}

QJsonObject RemoteDesk::levels() const {
  const tagKorviaShowAudioLevel& levels = _parts.priv->getEngine()->getAudioLevel();
  const tagKorviaShowEngineFigures::Loudness& program = _parts.statistics->figures().loudness;
  QJsonObject channels;
  for (const GWidgetDisplayObject* strip : _parts.strips->strips()) {
    if (strip->isMedia())
      channels[QString::number(strip->objectId())] = pairOf(levels.channel(strip->index()));
  }
  return {{"pgm", pairOf(levels.pgm())},
          {"pvm", pairOf(levels.pvm())},
          {"channels", channels},
          {"momentaryLufs", loudness(program.momentaryLufs)},
          {"shortTermLufs", loudness(program.shortTermLufs)},
          {"integratedLufs", loudness(program.integratedLufs)},
          {"truePeakDbtp", loudness(program.truePeakDbtp)}};
}
