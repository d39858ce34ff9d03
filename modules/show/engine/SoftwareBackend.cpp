#include "SoftwareBackend.h"

#include <QLoggingCategory>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"
#include "engine/frame/FrameFit.h"
#include "engine/source/SourceFactory.h"
#include "engine/source/SourceThreads.h"
#include "tagKorviaShowEngineInfo.h"

namespace korvia {

namespace {

Q_LOGGING_CATEGORY(logEngine, "korvia.engine")

constexpr int kRenderSizeMin = 16;
constexpr int kRenderSizeMax = 8192;
// Long enough for any pipeline that still answers; one that does not is left behind.
constexpr int kSourceEndMs = 3000;

/// Render size of the format, even both ways since chroma and encoders count in pairs.
FrameSize renderSize(const tagKorviaVideoFormat& format) {
  const int width = format.width;
  const int height = format.height;
  if (width < kRenderSizeMin || height < kRenderSizeMin || width > kRenderSizeMax ||
      height > kRenderSizeMax) {
    qCWarning(logEngine, "render size %d x %d is out of range, taking 1920 x 1080", width, height);
    return {1920, 1080};
  }
  return {width & ~1, height & ~1};
}

}  // namespace

SoftwareBackend::SoftwareBackend() : monitors_(stages_), outputs_(janitor_) {}

SoftwareBackend::~SoftwareBackend() {
  closeSources();
}

void SoftwareBackend::begin(IShowBackendHost& host) {
  nameThread("kv-engine");
  runAhead();
  host_ = &host;
  sink_ = host.engineSink();
}

void SoftwareBackend::end() {
  closeShow();
  closeSources();
  sink_ = nullptr;
  host_ = nullptr;
}

SoftwareBackend::Show SoftwareBackend::show() const {
  std::lock_guard lock(showMutex_);
  return show_;
}

void SoftwareBackend::handleEvent(const ShowEvent& event) {
  const QVariant& a1 = event.args[0];
  const QVariant& a2 = event.args[1];
  switch (event.id) {
    case ShowEventOpen:
      open(event);
      break;
    case ShowEventClose:
      closeShow();
      break;
    case ShowEventSnapshot:
      snapshot(event);
      break;
    case ShowEventResizeWindow:
      resizeWindow(event);
      break;
    case ShowEventSwitchPosition:
      moveLever(event);
      break;
    case ShowEventTake:
      take(event);
      break;
    case ShowEventSelectChannel:
      selectChannel(event);
      break;
    case ShowEventStartOutput:
      startOutput(event);
      break;
    case ShowEventStopOutput:
      outputs_.stop(a1.toInt());
      host_->postResult(event.id, a1, a2);
      break;
    // There is no sound yet; the console is told that its wish is known.
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

void SoftwareBackend::open(const ShowEvent& event) {
  const auto info = fromVariant<tagKorviaShowEngineInfo>(event.args[0]);
  Show next;
  next.size = renderSize(info.format);
  if (const FrameRate rate{info.format.fpsNumerator, info.format.fpsDenominator}; rate.isValid())
    next.rate = rate;
  {
    std::lock_guard lock(showMutex_);
    show_ = next;
  }
  pool_ = std::make_unique<FramePool>(next.size);
  host_->setFrameRate(next.rate);
  monitors_.open(fromVariant<tagKorviaShowWindowPackInfo>(event.args[1]));
  program_.reset();
  mixed_.reset();
  {
    std::lock_guard lock(figuresMutex_);
    figures_ = {};
  }
  firstFrame_ = std::chrono::steady_clock::now();
  open_ = true;
  qCDebug(logEngine, "engine opened : %d x %d, %d / %d frames per second", next.size.width, next.size.height,
          static_cast<int>(next.rate.numerator), static_cast<int>(next.rate.denominator));
  host_->postResult(ShowEventOpen);
}

void SoftwareBackend::closeShow() {
  if (!open_)
    return;
  open_ = false;
  outputs_.stopAll();
  monitors_.close();
  snapshots_.flush();
  program_.reset();
  mixed_.reset();
  frames_ = {};
  qCDebug(logEngine, "engine closed");
}

void SoftwareBackend::closeSources() {
  for (int slot = 0; slot < kSourceSlotCount; ++slot) {
    if (std::shared_ptr<Source> old = sources_.exchange(slot, nullptr))
      old->close();
  }
  active_ = {};
  waitForClosedSources(kSourceEndMs);
}

void SoftwareBackend::resizeWindow(const ShowEvent& event) {
  const int id = event.args[0].toInt();
  const auto info = fromVariant<tagKorviaWindowInfo>(event.args[1]);
  int index = 0;
  const int kind = getObjectKind(id, index);
  int window = -1;
  if (id == PGMObject)
    window = MonitorHub::Pgm;
  else if (id == PVMObject)
    window = MonitorHub::Pvm;
  else if (id == KaraokeObject)
    window = MonitorHub::Karaoke;
  else if (kind == MediaObjectKind && id >= MediaChannel && index < kMediaChannelMax)
    window = MonitorHub::FirstMedia + index;
  else if (kind == StageObjectKind && index < kStageChannelMax)
    window = MonitorHub::FirstStage + index;
  if (window >= 0)
    monitors_.resize(static_cast<MonitorHub::Window>(window), info);
}

void SoftwareBackend::snapshot(const ShowEvent& event) {
  if (!open_)
    return;
  snapshots_.write(program_ ? program_ : pool_->black(), event.args[1].toString());
}

void SoftwareBackend::moveLever(const ShowEvent& event) {
  reportDoneTake();
  switch_.moveLever(event.args[1].toFloat(), buses_.pgmChannel(), buses_.pvmChannel());
}

void SoftwareBackend::take(const ShowEvent& event) {
  const int channel = event.args[0].toInt();
  if (channel == 0)
    return;
  if (switch_.to() != channel)
    switch_.finish();
  reportDoneTake();
  ProgramSwitch::Take take;
  take.from = buses_.pgmChannel();
  take.to = channel;
  take.effect = event.args[1].toInt();
  take.duration = event.args[2].toDouble();
  take.easing = event.args[3].toInt();
  switch_.take(take, show().rate.framesPerSecond());
}

void SoftwareBackend::selectChannel(const ShowEvent& event) {
  const int bus = event.args[0].toInt();
  const int channel = event.args[1].toInt();
  reportDoneTake();
  if (bus == PVMObject) {
    buses_.selectPvm(channel);
  } else if (bus == PGMObject) {
    // A picture put straight on program ends the take that was on its way there.
    switch_.abandon();
    buses_.selectPgm(channel);
  } else {
    return;
  }
  host_->postResult(ShowEventSelectChannel, static_cast<qulonglong>(bus), channel);
}

void SoftwareBackend::startOutput(const ShowEvent& event) {
  const Show now = show();
  OutputRequest request;
  request.slot = event.args[0].toInt();
  request.param = fromVariant<tagKorviaShowOutputParam>(event.args[1]);
  request.programName = event.args[2].toString();
  request.format = fromVariant<tagKorviaFormatInfo>(event.args[3]);
  request.rate = now.rate;
  if (open_)
    outputs_.start(request);
  else
    qCWarning(logEngine, "no output starts before the show is open");
  host_->postResult(event.id, event.args[0], event.args[1]);
}

// Events of one frame each find the buses as the ones before left them.
void SoftwareBackend::reportDoneTake() {
  if (switch_.isDone())
    reportSwitch();
}

void SoftwareBackend::reportSwitch() {
  const ProgramSwitch::Outcome outcome = switch_.takeOutcome();
  if (outcome.moved)
    host_->postResult(ShowEventSwitchPosition, outcome.position);
  if (outcome.taken == 0)
    return;
  const BusSelection::Changes changes = buses_.take(outcome.taken);
  if (changes.pgm)
    host_->postResult(ShowEventSelectChannel, static_cast<qulonglong>(PGMObject), buses_.pgmChannel());
  if (changes.pvm)
    host_->postResult(ShowEventSelectChannel, static_cast<qulonglong>(PVMObject), buses_.pvmChannel());
}

void SoftwareBackend::frameStep(const FrameTick& tick) {
  if (!open_)
    return;
  StageClock::Scope whole(stages_, StageClock::Tick);
  const FrameRef last = program_;
  {
    StageClock::Scope stage(stages_, StageClock::Sources);
    pullSources(1 + tick.missed);
  }
  switch_.step(1 + tick.missed);
  reportSwitch();
  {
    StageClock::Scope stage(stages_, StageClock::Mix);
    if (!programPaused_ || !mixed_)
      mixed_ = mixProgram();
  }
  {
    StageClock::Scope stage(stages_, StageClock::Items);
    program_ = paint_.over(mixed_, *pool_);
  }
  showMonitors();
  {
    StageClock::Scope stage(stages_, StageClock::HandOver);
    if (tick.missed > 0)
      outputs_.push(last ? last : program_, tick.missed);
    outputs_.push(program_, 1);
  }
  keepFigures(tick);
}

void SoftwareBackend::pullSources(int ticks) {
  SourceArray old;
  if (sources_.refresh(sourcesVersion_, active_, old))
    janitor_.dispose(std::move(old));
  for (int slot = 0; slot < kSourceSlotCount; ++slot)
    frames_[slot] = active_[slot] ? inRenderSize(active_[slot]->pullFrame(ticks)) : FrameRef();
}

/// A source keeps the size that it was opened for, which may be that of a show before this one.
FrameRef SoftwareBackend::inRenderSize(FrameRef picture) const {
  if (!picture || picture->size() == pool_->size())
    return picture;
  MutableFrame fitted = pool_->acquire();
  fitFrame(*picture, fitRect(picture->size(), 1, 1, pool_->size()), *fitted);
  return std::move(fitted).publish();
}

/// The channel's picture; black for a channel without one. Stage channels have no picture of their own yet.
FrameRef SoftwareBackend::channelFrame(int channel) const {
  const int slot = channel >= MediaChannel ? sourceIndexOf(channel) : -1;
  return slot >= 0 && frames_[slot] ? frames_[slot] : pool_->black();
}

FrameRef SoftwareBackend::mixProgram() {
  if (!switch_.isRunning())
    return channelFrame(buses_.pgmChannel());
  FrameRef from = channelFrame(switch_.from());
  const FrameRef to = channelFrame(switch_.to());
  const Transition* transition = switch_.transition();
  if (!transition || switch_.position() <= 0 || from == to)
    return from;
  MutableFrame mixed = pool_->acquire();
  transition->mix(*from, *to, switch_.point(), scratch_, *mixed);
  return std::move(mixed).publish();
}

void SoftwareBackend::showMonitors() {
  monitors_.show(MonitorHub::Pgm, program_);
  monitors_.show(MonitorHub::Pvm, channelFrame(buses_.pvmChannel()));
  for (int i = 0; i < kMediaChannelMax; ++i)
    monitors_.show(static_cast<MonitorHub::Window>(MonitorHub::FirstMedia + i),
                   channelFrame(MediaChannel + i));
  for (int i = 0; i < kStageChannelMax; ++i)
    monitors_.show(static_cast<MonitorHub::Window>(MonitorHub::FirstStage + i),
                   channelFrame(StageChannel + i));
  monitors_.show(MonitorHub::Karaoke, channelFrame(0));
  monitors_.commit();
}

void SoftwareBackend::keepFigures(const FrameTick& tick) {
  using Seconds = std::chrono::duration<double>;
  const double seconds = Seconds(std::chrono::steady_clock::now() - firstFrame_).count();
  std::lock_guard lock(figuresMutex_);
  figures_.frames += 1 + tick.missed;
  figures_.repeatedFrames += tick.missed;
  figures_.lateTicks += tick.missed > 0 ? 1 : 0;
  figures_.fps = seconds > 0 ? static_cast<double>(figures_.frames) / seconds : 0;
  figures_.switchPosition = static_cast<float>(switch_.position());
  figures_.pvmChannel = buses_.pvmChannel();
  figures_.pgmChannel = buses_.pgmChannel();
  figures_.sourceCount = static_cast<int>(
      std::count_if(active_.begin(), active_.end(), [](const auto& source) { return source != nullptr; }));
}

IKorviaShowSource* SoftwareBackend::openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                               const tagKorviaFormatInfo& format, IUnknownEx* host) {
  const int slot = sourceIndexOf(id);
  if (slot < 0) {
    qCWarning(logEngine, "object %d holds no source", id);
    return nullptr;
  }
  const Show now = show();
  SourceContext context;
  context.id = slot == kKaraokeSlot ? KaraokeObject : static_cast<KorviaShowObjectID>(MediaChannel + slot);
  context.renderSize = now.size;
  context.rate = now.rate;
  context.sink = host ? static_cast<IKorviaShowEngineSink*>(
                            host->queryInterface(&kIKorviaShowEngineSinkId, kInterfaceVersion))
                      : sink_.load();
  std::shared_ptr<Source> source = createSource(context, info, format);
  IKorviaShowSource* result = source.get();
  if (std::shared_ptr<Source> old = sources_.exchange(slot, std::move(source)))
    old->close();
  return result;
}

void SoftwareBackend::closeSource(KorviaShowObjectID id) {
  const int slot = sourceIndexOf(id);
  if (slot < 0)
    return;
  if (std::shared_ptr<Source> old = sources_.exchange(slot, nullptr))
    old->close();
}

IKorviaShowSource* SoftwareBackend::getSource(KorviaShowObjectID id) {
  const int slot = sourceIndexOf(id);
  return slot < 0 ? nullptr : sources_.at(slot).get();
}

void SoftwareBackend::getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) {
  IKorviaShowSource* source = getSource(id);
  state.playing = source && source->getPlayState() == Playing ? 1 : 0;
  state.position = 0;
  if (source)
    source->getTime(state.position);
}

void SoftwareBackend::getSourceState(tagKorviaShowSourceStatisticsItem* items) {
  for (int slot = 0; slot < kMediaChannelMax; ++slot) {
    items[slot] = {};
    const std::shared_ptr<Source> source = sources_.at(slot);
    if (!source)
      continue;
    const SourceFigures figures = source->figures();
    items[slot].description = figures.description;
    items[slot].videoRate = figures.framesPerSecond / 1000;
  }
}

void SoftwareBackend::getOutputState(tagKorviaOutputStatistics* statistics) {
  *statistics = {};
  outputs_.statistics(*statistics);
}

void SoftwareBackend::getFigures(tagKorviaShowEngineFigures& figures) {
  {
    std::lock_guard lock(figuresMutex_);
    figures = figures_;
  }
  stages_.read(figures);
  figures.droppedStripPictures = monitors_.droppedPictures();
  figures.recording = outputs_.isRunning(OutputSlotRecord);
  figures.streaming = outputs_.isRunning(OutputSlotStream);
}

void SoftwareBackend::pausePGMImage(bool pause) {
  programPaused_ = pause;
}

void SoftwareBackend::commitPaintPadImage(const QImage& image) {
  paint_.commit(image, show().size);
}

void SoftwareBackend::setPaintPadValid(bool valid) {
  paint_.setValid(valid);
}

// The screen cut is the picture of a source kind that the engine does not have yet; nothing else shows it.
void SoftwareBackend::commitGrabImage(const QImage&) {}
void SoftwareBackend::setGrabImageValid(bool) {}

}  // namespace korvia
