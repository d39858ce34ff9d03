#include "SoftwareBackend.h"

#include <time.h>

#include <algorithm>
#include <thread>

#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"
#include "engine/audio/DeviceSink.h"

namespace korvia {

SoftwareBackend::SoftwareBackend()
    : load_(std::max(1, static_cast<int>(std::thread::hardware_concurrency()))),
      channels_(janitor_),
      switcher_(channels_),
      items_(switcher_.pvm(), switcher_.pgm()),
      placing_(items_.texts()),
      mixer_(channels_),
      monitors_(stages_),
      outputs_(janitor_),
      deviceOutputs_(janitor_) {
  fillEventTable();
}

void SoftwareBackend::fillEventTable() {
  events_.on(ShowEventOpen, *this, &SoftwareBackend::open);
  events_.on(ShowEventClose, *this, &SoftwareBackend::closeShow);
  events_.on(ShowEventSnapshot, *this, &SoftwareBackend::snapshot);
  events_.on(ShowEventResizeWindow, monitors_, &MonitorHub::resizeObject);
  events_.on(ShowEventSwitchPosition, switcher_, &Switcher::moveLever);
  events_.on(ShowEventTake, switcher_, &Switcher::take);
  events_.on(ShowEventSelectChannel, switcher_, &Switcher::selectChannel);
  events_.on(ShowEventStartOutput, outputs_, &OutputRack::start);
  events_.on(ShowEventStopOutput, outputs_, &OutputRack::stop);
  events_.on(ShowEventStartVirtualCamera, deviceOutputs_, &DeviceRack::startVirtualCamera);
  events_.on(ShowEventStopVirtualCamera, deviceOutputs_, &DeviceRack::stopVirtualCamera);
  events_.on(ShowEventStartNDI, deviceOutputs_, &DeviceRack::startNdi);
  events_.on(ShowEventStopNDI, deviceOutputs_, &DeviceRack::stopNdi);
  events_.on(ShowEventStartSDI, deviceOutputs_, &DeviceRack::startSdi);
  events_.on(ShowEventStopSDI, deviceOutputs_, &DeviceRack::stopSdi);
  events_.on(ShowEventAddText, items_.texts(), &TextItems::add);
  events_.on(ShowEventRemoveText, items_.texts(), &TextItems::remove);
  events_.on(ShowEventUpdateText, items_.texts(), &TextItems::update);
  events_.on(ShowEventPlacementCommit, placing_, &ItemPlacing::commit);
  events_.on(ShowEventAudioMixMode, mixer_, &AudioMixer::setMixMode);
  events_.on(ShowEventVolume, mixer_, &AudioMixer::setVolume);
  events_.on(ShowEventChannelMix, mixer_, &AudioMixer::setChannelMix);
}

void SoftwareBackend::begin(IShowBackendHost& host) {
  nameThread("kv-engine");
  runAhead();
  host_ = &host;
  switcher_.setHost(&host);
  placing_.setHost(&host);
  mixer_.setHost(&host);
  outputs_.setHost(&host);
  sink_ = host.engineSink();
}

void SoftwareBackend::end() {
  closeShow();
  channels_.closeSources();
  sink_ = nullptr;
  switcher_.setHost(nullptr);
  placing_.setHost(nullptr);
  mixer_.setHost(nullptr);
  outputs_.setHost(nullptr);
  host_ = nullptr;
}

void SoftwareBackend::open(const tagKorviaShowEngineInfo& info, const tagKorviaShowWindowPackInfo& windows) {
  format_ = ShowFormat::of(info.format);
  pool_ = std::make_unique<FramePool>(format_.size);
  host_->setFrameRate(format_.rate);
  channels_.open(format_);
  switcher_.open(format_);
  items_.open(format_);
  placing_.open(format_.size, windows);
  mixer_.open(format_.rate);
  loudness_.restart();
  openDevices(info);
  outputs_.open(format_);
  deviceOutputs_.open(format_);
  monitors_.open(windows);
  program_.reset();
  mixed_.reset();
  {
    MutexLock lock(figuresMutex_);
    figures_ = {};
    frameMeter_.start(std::chrono::steady_clock::now());
  }
  stages_.restart();
  load_.restart();
  open_ = true;
  qCDebug(logEngine, "engine opened : %d x %d, %.3f frames per second", format_.size.width,
          format_.size.height, format_.rate.framesPerSecond());
  host_->postResult(ShowEventOpen);
}

void SoftwareBackend::openDevices(const tagKorviaShowEngineInfo& info) {
  closeDevices();
  const auto device = [this](const char* bus, const QString& name) {
    return std::make_unique<SoundDevice>(QStringLiteral("%1 on \"%2\"").arg(QLatin1String(bus), name),
                                         format_.rate, [name] { return makeNamedDeviceSink(name); });
  };
  if (info.pgmDevice.isEmpty())
    programDevice_ = std::make_unique<SoundDevice>(QStringLiteral("program on the default output"),
                                                   format_.rate, makeDefaultDeviceSink);
  else
    programDevice_ = device("program", info.pgmDevice);
  // Preview is heard by whoever has a second device for it.
  if (!info.pvmDevice.isEmpty())
    previewDevice_ = device("preview", info.pvmDevice);
}

void SoftwareBackend::closeDevices() {
  for (std::unique_ptr<SoundDevice>* device : {&programDevice_, &previewDevice_})
    if (*device)
      janitor_.dispose(std::move(*device));
}

void SoftwareBackend::closeShow() {
  if (!open_)
    return;
  open_ = false;
  mixer_.close();
  closeDevices();
  outputs_.close();
  deviceOutputs_.close();
  placing_.close();
  monitors_.close();
  snapshots_.flush();
  program_.reset();
  mixed_.reset();
  channels_.close();
  qCDebug(logEngine, "engine closed");
}

void SoftwareBackend::snapshot(int, const QString& path) {
  if (open_)
    snapshots_.write(program_ ? program_ : channels_.black(), path);
}

void SoftwareBackend::frameStep(const FrameTick& tick) {
  if (!open_)
    return;
  const int ticks = 1 + tick.missed;
  StageClock::Scope whole(stages_, StageClock::Tick);
  const FrameRef last = program_;
  FrameRef preview;
  {
    StageClock::Scope stage(stages_, StageClock::Sources);
    channels_.beginTick(ticks);
  }
  switcher_.step(ticks);
  mixSound(tick);
  // The preview may go to air any moment, also when its monitor is hidden.
  channels_.keep(switcher_.pvm().channel());
  {
    StageClock::Scope stage(stages_, StageClock::Mix);
    if (monitors_.isShown(MonitorHub::Pvm))
      preview = switcher_.previewPicture();
    if (!programPaused_ || !mixed_)
      mixed_ = switcher_.programPicture();
  }
  {
    StageClock::Scope stage(stages_, StageClock::Items);
    placing_.beginFrame();
    items_.beginFrame(ticks);
    placing_.endFrame();
    if (preview)
      preview = switcher_.pvm().withLayers(preview, *pool_);
    program_ = switcher_.pgm().withLayers(mixed_, *pool_);
  }
  showMonitors(preview);
  showPictures();
  {
    StageClock::Scope stage(stages_, StageClock::HandOver);
    if (tick.missed > 0) {
      outputs_.push(last ? last : program_, tick.missed);
      deviceOutputs_.push(last ? last : program_, tick.missed);
    }
    outputs_.push(program_, 1);
    deviceOutputs_.push(program_, 1);
  }
  keepFigures(tick);
  watchLoad();
}

// Outputs encode sound with the frames of its tick, which they get later.
void SoftwareBackend::mixSound(const FrameTick& tick) {
  StageClock::Scope stage(stages_, StageClock::Audio);
  mixer_.beginTick(tick, switcher_.channels());
  while (mixer_.mixBlock()) {
    outputs_.pushSound(mixer_.program());
    deviceOutputs_.pushSound(mixer_.program());
    loudness_.push(mixer_.program());
    if (programDevice_)
      programDevice_->push(mixer_.program());
    if (previewDevice_)
      previewDevice_->push(mixer_.preview());
  }
}

void SoftwareBackend::showMonitors(const FrameRef& preview) {
  monitors_.show(MonitorHub::Pgm, program_, placing_.pgmGuides());
  monitors_.show(MonitorHub::Pvm, preview, placing_.pvmGuides());
  const auto showChannel = [this](int window, int channelId) {
    // A channel makes its picture on demand, so it is asked only for a visible window.
    if (monitors_.isShown(static_cast<MonitorHub::Window>(window)))
      monitors_.show(static_cast<MonitorHub::Window>(window), channels_.stripPicture(channelId));
  };
  for (int i = 0; i < kMediaChannelMax; ++i)
    showChannel(MonitorHub::FirstMedia + i, MediaChannel + i);
  for (int i = 0; i < kStageChannelMax; ++i)
    showChannel(MonitorHub::FirstStage + i, StageChannel + i);
  showChannel(MonitorHub::Karaoke, 0);
  monitors_.commit();
}

void SoftwareBackend::showPictures() {
  const auto now = std::chrono::steady_clock::now();
  if (pictures_.isDue(KorviaShowPicture::Program, now))
    pictures_.showProgram(program_);
  if (!pictures_.isDue(KorviaShowPicture::Channels, now))
    return;
  PictureTap::Channels channels;
  for (int i = 0; i < kMediaChannelMax; ++i)
    channels[static_cast<std::size_t>(i)] = channels_.stripPicture(MediaChannel + i);
  for (int i = 0; i < kStageChannelMax; ++i)
    channels[static_cast<std::size_t>(kMediaChannelMax + i)] = channels_.stripPicture(StageChannel + i);
  pictures_.showChannels(channels);
}

tagKorviaShowEngineFigures::SoundDevice SoftwareBackend::figuresOf(const SoundDevice* device) {
  if (!device)
    return {};
  const DriftCorrector::Figures figures = device->figures();
  return {device->isPlaying(), figures.ppm, figures.underruns + figures.overruns};
}

void SoftwareBackend::keepFigures(const FrameTick& tick) {
  const bool late = tick.missed > 0 || tick.lateNs > format_.rate.nsOf(1) / 4;
  MutexLock lock(figuresMutex_);
  frameMeter_.count(1 + tick.missed, std::chrono::steady_clock::now());
  figures_.repeatedFrames += tick.missed;
  figures_.lateTicks += late ? 1 : 0;
  figures_.switchPosition = static_cast<float>(switcher_.position());
  figures_.pvmChannel = switcher_.pvm().channel();
  figures_.pgmChannel = switcher_.pgm().channel();
  figures_.sourceCount = channels_.sourceCount();
  figures_.programDevice = figuresOf(programDevice_.get());
  figures_.previewDevice = figuresOf(previewDevice_.get());
}

void SoftwareBackend::watchLoad() {
  const auto now = std::chrono::steady_clock::now();
  if (!load_.isDue(now))
    return;
  timespec cpu{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &cpu);
  MutexLock lock(figuresMutex_);
  load_.note(now, {static_cast<double>(cpu.tv_sec) + static_cast<double>(cpu.tv_nsec) * 1e-9,
                   figures_.lateTicks, channels_.heldFrames()});
  figures_.cpuLoad = load_.load();
  channels_.setSaving(load_.isShort());
}

IKorviaShowSource* SoftwareBackend::openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                               const tagKorviaFormatInfo& format, IUnknownEx* host) {
  auto* sink = host ? static_cast<IKorviaShowEngineSink*>(
                          host->queryInterface(&kIKorviaShowEngineSinkId, kInterfaceVersion))
                    : sink_.load();
  return channels_.openSource(id, info, format, sink);
}

void SoftwareBackend::getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) {
  channels_.getSourceState(id, state);
}

void SoftwareBackend::getSourceState(tagKorviaShowSourceStatisticsItem* items) {
  channels_.getSourceState(items);
}

void SoftwareBackend::getOutputState(tagKorviaOutputStatistics* statistics) {
  *statistics = {};
  outputs_.statistics(*statistics);
}

void SoftwareBackend::getFigures(tagKorviaShowEngineFigures& figures) {
  {
    MutexLock lock(figuresMutex_);
    const auto now = std::chrono::steady_clock::now();
    figures = figures_;
    figures.frames = frameMeter_.total();
    figures.fps = frameMeter_.perSecond(now);
    figures.fpsOfRun = frameMeter_.perSecondOfRun(now);
  }
  stages_.read(figures);
  figures.loudness = loudness_.loudness();
  channels_.getFigures(figures);
  figures.droppedStripPictures = monitors_.droppedPictures();
  figures.recording = outputs_.isRunning(OutputSlotRecord);
  figures.streaming = outputs_.isRunning(OutputSlotStream);
  figures.outputs = outputs_.reports();
  figures.deviceOutputs = deviceOutputs_.reports();
}

}  // namespace korvia
