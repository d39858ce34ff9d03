#include "ChannelBank.h"

#include <algorithm>

#include "engine/EngineLog.h"
#include "engine/frame/FrameFit.h"
#include "engine/source/SourceFactory.h"
#include "engine/source/SourceThreads.h"

namespace korvia {

namespace {

// Long enough for any pipeline that still responds. A source that does not is left behind.
constexpr int kSourceEndMs = 3000;

}  // namespace

tagKorviaShowSourceStatisticsItem statisticsOf(const SourceFigures& figures) {
  constexpr float kMsPerSecond = 1000;
  tagKorviaShowSourceStatisticsItem item;
  item.description = figures.description;
  item.videoRate = figures.framesPerSecond / kMsPerSecond;
  item.audioRate = figures.samplesPerSecond / kMsPerSecond;
  item.videoAudioDrift = figures.videoAudioDriftMs;
  return item;
}

void addFigures(int slot, const SourceFigures& source, tagKorviaShowEngineFigures& figures) {
  figures.heldFilmFrames += source.framesHeld;
  figures.skippedFilmFrames += source.framesSkipped;
  if (slot < kMediaChannelMax)
    figures.liveSources[static_cast<std::size_t>(slot)] = source.live;
}

ChannelBank::~ChannelBank() {
  closeSources();
}

IKorviaShowSource* ChannelBank::openSource(KorviaShowObjectID id, const tagKorviaShowSourceInfo& info,
                                           const tagKorviaFormatInfo& format, IKorviaShowEngineSink* sink) {
  const int slot = sourceIndexOf(id);
  if (slot < 0) {
    qCWarning(logEngine, "object %d holds no source", id);
    return nullptr;
  }
  SourceContext context;
  context.id = slot == kKaraokeSlot ? KaraokeObject : static_cast<KorviaShowObjectID>(MediaChannel + slot);
  context.sink = sink;
  context.refillTurns = refillTurns_;
  context.incomePort = incomePort_;
  {
    MutexLock lock(formatMutex_);
    context.renderSize = format_.size;
    context.rate = format_.rate;
  }
  std::shared_ptr<Source> source = createSource(context, info, format);
  IKorviaShowSource* result = source.get();
  if (std::shared_ptr<Source> old = sources_.exchange(slot, std::move(source)))
    old->close();
  return result;
}

void ChannelBank::closeSource(KorviaShowObjectID id) {
  const int slot = sourceIndexOf(id);
  if (slot < 0)
    return;
  if (std::shared_ptr<Source> old = sources_.exchange(slot, nullptr))
    old->close();
}

IKorviaShowSource* ChannelBank::getSource(KorviaShowObjectID id) {
  const int slot = sourceIndexOf(id);
  return slot < 0 ? nullptr : sources_.at(slot).get();
}

void ChannelBank::getSourceState(KorviaShowObjectID id, tagKorviaSourceState& state) {
  IKorviaShowSource* source = getSource(id);
  state.playing = source && source->getPlayState() == Playing ? 1 : 0;
  state.position = 0;
  if (source)
    source->getTime(state.position);
}

void ChannelBank::getSourceState(tagKorviaShowSourceStatisticsItem* items) {
  for (int slot = 0; slot < kMediaChannelMax; ++slot) {
    const std::shared_ptr<Source> source = sources_.at(slot);
    items[slot] = source ? statisticsOf(source->figures()) : tagKorviaShowSourceStatisticsItem();
  }
}

void ChannelBank::getFigures(tagKorviaShowEngineFigures& figures) {
  for (int slot = 0; slot < kSourceSlotCount; ++slot) {
    if (const std::shared_ptr<Source> source = sources_.at(slot))
      addFigures(slot, source->figures(), figures);
  }
  figures.reducedSources = reducedSources_;
}

void ChannelBank::open(const ShowFormat& format) {
  {
    MutexLock lock(formatMutex_);
    format_ = format;
  }
  close();
  pool_ = std::make_unique<FramePool>(format.size);
}

void ChannelBank::close() {
  for (Channel& channel : channels_)
    channel.clear();
  pictures_ = {};
}

void ChannelBank::closeSources() {
  for (int slot = 0; slot < kSourceSlotCount; ++slot) {
    if (std::shared_ptr<Source> old = sources_.exchange(slot, nullptr))
      old->close();
  }
  active_ = {};
  leaving_ = {};
  fades_.fill(std::nullopt);
  waitForClosedSources(kSourceEndMs);
}

void ChannelBank::beginTick(int ticks) {
  fadeOutWhatLeaves(ticks);
  // Every source is pulled, also one that is not on show, so that its clock advances.
  int reduced = 0;
  for (int slot = 0; slot < kSourceSlotCount; ++slot) {
    const bool needed = std::exchange(needed_[slot], false);
    Source* source = active_[slot].get();
    if (source) {
      const DecodeRate rate = saving_ && !needed ? DecodeRate::Reduced : DecodeRate::Full;
      source->setDecodeRate(rate);
      reduced += rate == DecodeRate::Reduced ? 1 : 0;
    }
    pictures_[slot] = source ? inRenderSize(source->pullFrame(ticks)) : FrameRef();
    channels_[slot].beginTick(pictures_[slot]);
  }
  reducedSources_ = reduced;
  feedTapsOfPictures(ticks);
}

void ChannelBank::feedTapsOfPictures(int ticks) {
  for (const std::shared_ptr<Source>& source : active_) {
    SourceTap* tap = source ? source->tap() : nullptr;
    if (!tap)
      continue;
    tap->onTappedPicture(pictures_[tap->tappedSlot()], ticks);
    // What is shown later is shown in full.
    needed_[tap->tappedSlot()] = true;
  }
}

void ChannelBank::feedTapsOfSound(int slot, StereoSpan piece, bool sounds) {
  for (const std::shared_ptr<Source>& source : active_) {
    SourceTap* tap = source ? source->tap() : nullptr;
    if (!tap || tap->tappedSlot() != slot)
      continue;
    if (sounds)
      tap->onTappedSound(piece);
    else
      tap->onTappedSilence(piece.samples);
  }
}

void ChannelBank::fadeOutWhatLeaves(int ticks) {
  if (std::exchange(isLeaving_, false)) {
    janitor_.dispose(std::exchange(leaving_, {}));
    fades_.fill(std::nullopt);
  }
  if (!sources_.refresh(sourcesVersion_, active_, leaving_))
    return;
  isLeaving_ = true;
  for (int slot = 0; slot < kSourceSlotCount; ++slot) {
    if (!leaving_[slot] || leaving_[slot] == active_[slot])
      continue;
    leaving_[slot]->pullFrame(ticks);
    fades_[slot].emplace(GainRamp::Gain::Full).fadeTo(GainRamp::Gain::Silent);
  }
}

// A source keeps the render size of the show that was open when it was opened.
FrameRef ChannelBank::inRenderSize(FrameRef picture) {
  if (!picture || picture->size() == pool_->size())
    return picture;
  MutableFrame fitted = pool_->acquire();
  fitFrame(*picture, fitRect(picture->size(), 1, 1, pool_->size()), *fitted);
  return std::move(fitted).publish();
}

int ChannelBank::slotOf(int channelId) {
  // Smaller ids are those of the sources, which no bus shows.
  return channelId >= MediaChannel ? sourceIndexOf(channelId) : -1;
}

FrameRef ChannelBank::picture(int channelId) {
  keep(channelId);
  return stripPicture(channelId);
}

FrameRef ChannelBank::stripPicture(int channelId) {
  const int slot = slotOf(channelId);
  return slot < 0 ? black() : channels_[slot].picture(*this, black());
}

bool ChannelBank::pullSound(int slot, StereoSpan piece) {
  bool sounds = active_[slot] && active_[slot]->pullSound(piece);
  sounds = mixTail(slot, piece, sounds);
  feedTapsOfSound(slot, piece, sounds);
  return sounds;
}

bool ChannelBank::mixTail(int slot, StereoSpan piece, bool sounds) {
  const StereoSpan tail = fading_.span(piece.samples);
  if (!fades_[slot] || fades_[slot]->isSilent() || !leaving_[slot]->pullSound(tail))
    return sounds;
  fades_[slot]->apply(tail);
  for (int i = 0; i < piece.samples; ++i) {
    piece.left[i] = tail.left[i] + (sounds ? piece.left[i] : 0);
    piece.right[i] = tail.right[i] + (sounds ? piece.right[i] : 0);
  }
  return true;
}

void ChannelBank::keep(int channelId) {
  if (const int slot = slotOf(channelId); slot >= 0)
    needed_[slot] = true;
}

std::int64_t ChannelBank::heldFrames() const {
  std::int64_t held = 0;
  for (const std::shared_ptr<Source>& source : active_)
    held += source ? source->framesHeld() : 0;
  return held;
}

int ChannelBank::sourceCount() const {
  return static_cast<int>(
      std::count_if(active_.begin(), active_.end(), [](const auto& source) { return source != nullptr; }));
}

}  // namespace korvia
