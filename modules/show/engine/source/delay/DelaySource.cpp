#include "DelaySource.h"

#include <utility>

#include "DrivePath.h"
#include "FileDelay.h"
#include "MemoryDelay.h"
#include "engine/EngineLog.h"
#include "engine/source/SourceThreads.h"

namespace korvia {

namespace {

// For a record that names no folder.
constexpr char kDefaultFolder[] = "d:\\delay\\";

/// Slot of the media channel with this id; -1 for every other id.
int slotOfChannel(int id) {
  return id >= MediaChannel && id < MediaChannel + kMediaChannelMax ? sourceIndexOf(id) : -1;
}

QString folderOf(const tagKorviaShowSourceInfo& info) {
  return DrivePath::resolve(info.delayCachePath.isEmpty() ? QString::fromLatin1(kDefaultFolder)
                                                          : info.delayCachePath);
}

}  // namespace

DelaySource::DelaySource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                         const tagKorviaFormatInfo& format, const DelayLimits& limits)
    : Source(context, info, format) {
  if (slotOfChannel(info.delayChannel) < 0 || context.renderSize.isEmpty()) {
    qCWarning(logSource, "channel %d cannot be shown late", info.delayChannel);
    return;
  }
  makePictures(limits);
  sound_ = std::make_unique<SoundDelay>(plan_.samples);
}

DelaySource::~DelaySource() {
  close();
}

void DelaySource::makePictures(const DelayLimits& limits) {
  plan_ = planDelay(context().renderSize, context().rate, info().delayTime, limits);
  if (plan_.isShortened)
    qCWarning(logSource, "delay of %d ms does not fit into its limit, shortened to %lld ms", info().delayTime,
              static_cast<long long>(context().rate.nsOf(plan_.frames) / 1'000'000));
  if (plan_.store == DelayPlan::Store::Memory) {
    pictures_ = std::make_shared<MemoryDelay>(context().renderSize, plan_.frames);
    return;
  }
  auto inFile =
      std::make_shared<FileDelay>(context().renderSize, plan_, folderOf(info()), limits.reserveBytes);
  pictures_ = inFile;
  thread_ = startSourceThread(QStringLiteral("delay"), [inFile] { inFile->run(); });
}

void DelaySource::close() {
  if (std::exchange(closed_, true))
    return;
  if (pictures_)
    pictures_->close();
  if (thread_ != 0)
    markSourceThreadClosing(thread_);
}

// Engine thread.

FrameRef DelaySource::pullFrame(int ticks) {
  if (!pictures_)
    return {};
  FrameRef picture = pictures_->pull(ticks);
  if (!runs())
    return current_;
  if (picture != current_)
    ++shown_;
  current_ = std::move(picture);
  return current_;
}

bool DelaySource::pullSound(StereoSpan out) {
  if (!sound_)
    return false;
  gain_.fadeTo(runs() ? GainRamp::Gain::Full : GainRamp::Gain::Silent);
  if (gain_.isSilent()) {
    sound_->skip(out.samples);
    return false;
  }
  sound_->pull(out);
  if (gain_.isRamping())
    gain_.apply(out);
  return true;
}

SourceTap* DelaySource::tap() {
  return pictures_ ? static_cast<SourceTap*>(this) : nullptr;
}

int DelaySource::tappedSlot() const {
  return slotOfChannel(info().delayChannel);
}

void DelaySource::onTappedPicture(const FrameRef& picture, int ticks) {
  pictures_->push(picture, ticks);
  if (picture)
    ++stored_;
}

// Console thread.

QString DelaySource::failure() const {
  return pictures_ ? pictures_->failure() : QStringLiteral("channel cannot be shown late");
}

int DelaySource::getPlayState() {
  if (closed_)
    return NothingSpecial;
  return failure().isEmpty() ? state_.load() : Error;
}

void DelaySource::getState(tagKorviaSourceLinkState& state) {
  state.reason = failure();
  state.rate = state.reason.isEmpty() ? static_cast<float>(context().rate.framesPerSecond()) : 0;
}

SourceFigures DelaySource::figures() {
  SourceFigures figures;
  figures.description =
      QStringLiteral("media - %1, %2 ms later").arg(info().delayChannel - MediaChannel).arg(info().delayTime);
  figures.framesDecoded = stored_;
  if (pictures_) {
    figures.framesHeld = pictures_->framesHeld();
    figures.framesQueued = pictures_->framesReady();
    figures.framesSkipped = pictures_->framesLost();
  }
  return figures;
}

}  // namespace korvia
