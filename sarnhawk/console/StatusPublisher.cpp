#include "console/StatusPublisher.h"

#include <QFileInfo>
#include <QJsonArray>
#include <iterator>

#include "IKorviaShowSource.h"
#include "StatusBoard.h"
#include "console/GWidgetDisplayObject.h"
#include "console/IKorviaSarnhawkPriv.h"
#include "console/SourceText.h"
#include "console/StatisticsFetch.h"
#include "console/StripArea.h"
#include "console/TransportRow.h"
#include "console/reportWords.h"
#include "console/tagKorviaSarnhawkConfig.h"

namespace {

QJsonObject stageTime(const tagKorviaShowEngineFigures::StageTime& time) {
  return {
      {"p50Ms", time.p50Ms}, {"p99Ms", time.p99Ms}, {"maxMs", time.maxMs}, {"maxOfRunMs", time.maxOfRunMs}};
}

QJsonObject engineSection(const tagKorviaShowEngineFigures& figures, bool isOpen) {
  return {{"open", isOpen},
          {"frames", figures.frames},
          {"fps", figures.fps},
          {"fpsOfRun", figures.fpsOfRun},
          {"lateTicks", figures.lateTicks},
          {"repeatedFrames", figures.repeatedFrames},
          {"droppedStripPictures", figures.droppedStripPictures},
          {"heldFilmFrames", figures.heldFilmFrames},
          {"skippedFilmFrames", figures.skippedFilmFrames},
          {"reducedSources", figures.reducedSources},
          {"cpuLoad", figures.cpuLoad},
          {"sources", figures.sourceCount},
          {"tick", stageTime(figures.tick)},
          {"stages", QJsonObject{{"sources", stageTime(figures.sources)},
                                 {"mix", stageTime(figures.mix)},
                                 {"items", stageTime(figures.items)},
                                 {"audio", stageTime(figures.audio)},
                                 {"monitors", stageTime(figures.monitors)},
                                 {"handOver", stageTime(figures.handOver)}}}};
}

QJsonObject soundDevice(const tagKorviaShowEngineFigures::SoundDevice& device) {
  return {{"playing", device.playing}, {"driftPpm", device.driftPpm}, {"breaks", device.breaks}};
}

QJsonObject liveSection(const tagKorviaShowEngineFigures::LiveSource& live) {
  return {{"latencyMs", live.latencyMs},
          {"driftPpm", live.driftPpm},
          {"connections", live.connections},
          {"stampJumps", live.stampJumps},
          {"missedFrames", live.missedFrames}};
}

QJsonObject soundSection(const tagKorviaShowEngineFigures& figures) {
  return {{"momentaryLufs", figures.loudness.momentaryLufs},
          {"shortTermLufs", figures.loudness.shortTermLufs},
          {"integratedLufs", figures.loudness.integratedLufs},
          {"truePeakDbtp", figures.loudness.truePeakDbtp},
          {"programDevice", soundDevice(figures.programDevice)},
          {"previewDevice", soundDevice(figures.previewDevice)}};
}

// These words are not translated, because programs read them from the status page.
constexpr const char* kTargetStates[] = {"Connecting", "Up", "Lost", "Failed", "Finished"};
static_assert(std::size(kTargetStates) == static_cast<std::size_t>(KorviaShowTargetState::Finished) + 1);

/// The records have -1 for what is not known.
QJsonValue knownOrNull(qint64 value) {
  return value < 0 ? QJsonValue() : QJsonValue(value);
}

QJsonObject targetReport(const tagKorviaShowTargetReport& report) {
  return {{"name", report.name},
          {"state", kTargetStates[static_cast<std::size_t>(report.state)]},
          {"reason", report.reason},
          {"upSeconds", report.upSeconds},
          {"retrySeconds", report.retrySeconds},
          {"kbps", report.bitrate}};
}

QJsonArray targetReports(const QList<tagKorviaShowTargetReport>& reports) {
  QJsonArray targets;
  for (const tagKorviaShowTargetReport& report : reports)
    targets.append(targetReport(report));
  return targets;
}

QJsonObject outputReport(const tagKorviaShowOutputReport& report) {
  return {{"state", outputStateName(report.state)},
          {"reason", report.reason},
          {"file", QFileInfo(report.fileName).fileName()},
          {"droppedFrames", report.droppedFrames},
          {"writtenMs", report.writtenMs},
          {"writtenBytes", report.writtenBytes},
          {"roomSeconds", knownOrNull(report.roomSeconds)},
          {"verifiedMs", knownOrNull(report.verifiedMs)},
          {"warning", report.warning},
          {"targets", targetReports(report.targets)}};
}

QJsonObject outputsSection(const tagKorviaShowEngineFigures& figures) {
  const auto& [stream, record] = figures.outputs;
  return {{"recording", figures.recording && record.state != KorviaShowOutputState::Failed},
          {"streaming", figures.streaming && stream.state != KorviaShowOutputState::Failed},
          {"record", outputReport(record)},
          {"stream", outputReport(stream)},
          {"devices", targetReports(figures.deviceOutputs)}};
}

}  // namespace

void StatusPublisher::onWorkTick() {
  const bool isOpen = _priv->getEngine() != nullptr;
  const tagKorviaShowEngineFigures figures = isOpen ? _statistics->figures() : tagKorviaShowEngineFigures{};
  korvia::StatusBoard& board = korvia::StatusBoard::instance();
  board.publish(QStringLiteral("buses"), buses(figures));
  board.publish(QStringLiteral("channels"), channels(figures));
  board.publish(QStringLiteral("engine"), engineSection(figures, isOpen));
  board.publish(QStringLiteral("outputs"), outputsSection(figures));
  board.publish(QStringLiteral("sound"), soundSection(figures));
}

QJsonObject StatusPublisher::buses(const tagKorviaShowEngineFigures& figures) const {
  const tagKorviaSarnhawkConfig* config = _priv->getConfig();
  return {{"pvm", channelTitle(config->pvmChannel)},
          {"pgm", channelTitle(config->pgmChannel)},
          {"switchPosition", static_cast<double>(figures.switchPosition)}};
}

QJsonObject StatusPublisher::channels(const tagKorviaShowEngineFigures& figures) const {
  QJsonObject section;
  for (const GWidgetDisplayObject* strip : _strips->strips()) {
    const QString title = channelTitle(strip->objectId());
    if (strip->isMedia())
      section[title] =
          mediaChannel(strip->index(), figures.liveSources[static_cast<std::size_t>(strip->index())]);
    else
      section[title] = QJsonObject{
          {"inUse", _priv->getConfig()->stages[static_cast<std::size_t>(strip->index())].inUse != 0}};
  }
  return section;
}

QJsonObject StatusPublisher::mediaChannel(int index,
                                          const tagKorviaShowEngineFigures::LiveSource& live) const {
  const tagKorviaShowSourceInfo& info = _priv->getConfig()->channels[static_cast<std::size_t>(index)].source;
  IKorviaShowSource* source = _priv->getSource(static_cast<KorviaShowObjectID>(MediaChannel + index));
  if (!source)
    return {{"inUse", false}};
  qint64 time = 0;
  qint64 duration = 0;
  source->getTime(time);
  source->getDuration(duration);
  QJsonObject channel{{"inUse", true},
                      {"kind", SourceText::kindName(info.kind)},
                      {"file", SourceText::fileName(info)},
                      {"state", TransportRow::stateName(source->getPlayState())},
                      {"time", TransportRow::timeText(time)},
                      {"duration", TransportRow::timeText(duration)}};
  if (live.isLive)
    channel["live"] = liveSection(live);
  return channel;
}
