#include "SilentBackend.h"

#include "KorviaShowEvents.h"

namespace korvia {

void SilentBackend::handleEvent(const ShowEvent& event) {
  const QVariant& a1 = event.args[0];
  const QVariant& a2 = event.args[1];
  switch (event.id) {
    case ShowEventOpen:
      host_->postResult(ShowEventOpen);
      break;
    case ShowEventSwitchPosition:
      host_->postResult(ShowEventSwitchPosition, a2);
      if (a2.toFloat() == 1.0F)
        take(buses_.pvm);
      break;
    case ShowEventTake:
      host_->postResult(ShowEventSwitchPosition, 1.0F);
      take(a1.toInt());
      break;
    case ShowEventSelectChannel:
      select(event);
      break;
    case ShowEventStartOutput:
    case ShowEventStopOutput:
    case ShowEventAudioMixMode:
    case ShowEventChannelMix:
      host_->postResult(event.id, a1, a2);
      break;
    case ShowEventVolume:
      host_->postResult(event.id, a1, a2.toFloat());
      break;
    default:
      break;
  }
}

void SilentBackend::take(int channel) {
  const BusSelection before = std::exchange(buses_, buses_.afterTake(channel));
  buses_.reportChanges(before, *host_);
}

void SilentBackend::select(const ShowEvent& event) {
  const int bus = event.args[0].toInt();
  const int channel = event.args[1].toInt();
  if (bus == PVMObject)
    buses_.pvm = channel;
  else if (bus == PGMObject)
    buses_.pgm = channel;
  else
    return;
  host_->postResult(ShowEventSelectChannel, static_cast<qulonglong>(bus), channel);
}

void SilentBackend::frameStep(const FrameTick& tick) {
  MutexLock lock(figuresMutex_);
  figures_.frames += 1 + tick.missed;
  figures_.pvmChannel = buses_.pvm;
  figures_.pgmChannel = buses_.pgm;
}

IKorviaShowSource* SilentBackend::openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                             const tagKorviaFormatInfo& format, IUnknownEx*) {
  const int index = sourceIndexOf(id);
  if (index < 0)
    return nullptr;
  sources_[index] = std::make_unique<SilentSource>(id, info, format);
  return sources_[index].get();
}

void SilentBackend::closeSource(KorviaShowObjectID id) {
  if (const int index = sourceIndexOf(id); index >= 0)
    sources_[index].reset();
}

IKorviaShowSource* SilentBackend::getSource(KorviaShowObjectID id) {
  const int index = sourceIndexOf(id);
  return index < 0 ? nullptr : sources_[index].get();
}

void SilentBackend::getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) {
  IKorviaShowSource* source = getSource(id);
  state.playing = source && source->getPlayState() == Playing ? 1 : 0;
  state.position = 0;
}

void SilentBackend::getSourceState(tagKorviaShowSourceStatisticsItem* items) {
  for (int i = 0; i < kMediaChannelMax; ++i)
    items[i] = tagKorviaShowSourceStatisticsItem{};
}

void SilentBackend::getOutputState(tagKorviaOutputStatistics* statistics) {
  *statistics = tagKorviaOutputStatistics{};
}

void SilentBackend::getFigures(tagKorviaShowEngineFigures& figures) {
  MutexLock lock(figuresMutex_);
  figures = figures_;
}

}  // namespace korvia
