#include "FilmDecoder.h"

#include <algorithm>

#include "engine/EngineLog.h"
#include "engine/audio/SampleTime.h"

namespace korvia {

namespace {

constexpr std::int64_t kSecondNs = 1'000'000'000;
constexpr std::chrono::seconds kOpenTimeout{10};
// While the operator drags the slider, seeks come faster than pictures. Each seek has this long to show its
// picture before the next one begins.
constexpr std::chrono::seconds kSeekTimeout{1};
// The next film is opened this long before the end. Opening takes part of a second on a busy machine, and a
// decoder that waits holds one picture only.
constexpr std::int64_t kOpenAheadNs = 5 * kSecondNs;
// The queue is kept full this long before the end, for the seam.
constexpr std::int64_t kFullBeforeEndNs = kSecondNs;
constexpr int kMostEmptySegments = 2;
constexpr std::int64_t kFadeNs = 10'000'000;
constexpr AudioQueue::Part kNoPart = ~AudioQueue::Part{0};

std::optional<std::int64_t> known(GstClockTime time) {
  if (!GST_CLOCK_TIME_IS_VALID(time))
    return std::nullopt;
  return static_cast<std::int64_t>(time);
}

}  // namespace

FilmDecoder::FilmDecoder(const SourceContext& context, const QString& path, int number, const Outlet& outlet,
                         Admission admission)
    : context_(context),
      path_(path),
      number_(number),
      outlet_(outlet),
      maker_(context.renderSize),
      admitted_(admission == Admission::AtOnce),
      soundPart_(outlet.sound.part()) {
  if (admission == Admission::AtOnce)
    soundOffsetNs_ = 0;
}

FilmDecoder::~FilmDecoder() {
  close(Queued::Keep);
}

// GStreamer's threads.

void FilmDecoder::tell(FilmEvent::Kind kind, int segment, const QString& reason) {
  outlet_.sink.onFilmEvent({kind, number_, segment, reason});
}

bool FilmDecoder::waitForTurn() {
  MutexLock lock(timelineMutex_);
  if (!admitted_ && !closed_) {
    lock.unlock();
    tell(FilmEvent::Kind::Picture);
    lock.lock();
  }
  turn_.wait(lock, [this]() REQUIRES(timelineMutex_) { return admitted_ || closed_; });
  return !closed_;
}

// Near the end all pictures are decoded, so that the seam does not shift.
DecodeRate FilmDecoder::decodeRate() {
  if (outlet_.decodeRate == DecodeRate::Full)
    return DecodeRate::Full;
  MutexLock lock(timelineMutex_);
  return nearEnd_ ? DecodeRate::Full : DecodeRate::Reduced;
}

void FilmDecoder::onPicture(GstSample* sample) {
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  const GstSegment* segment = gst_sample_get_segment(sample);
  std::optional<std::int64_t> ptsNs = known(GST_BUFFER_PTS(buffer));
  const std::optional<std::int64_t> durationNs = known(GST_BUFFER_DURATION(buffer));
  if (ptsNs && segment && segment->format == GST_FORMAT_TIME) {
    // Some decoders do not cut at the place of a seek, so pictures that end before it are dropped here.
    const GstClockTime start = GST_BUFFER_PTS(buffer);
    const auto lasts = static_cast<GstClockTime>(durationNs.value_or(0));
    if (start < segment->start && start + lasts <= segment->start)
      return;
    ptsNs =
        known(gst_segment_to_stream_time(segment, GST_FORMAT_TIME, std::max<guint64>(start, segment->start)));
  }
  FrameRef frame = maker_.make(sample);
  if (!frame)
    return;
  ++outlet_.framesDecoded;
  if (!waitForTurn())
    return;
  int segmentNumber = 0;
  bool first = false;
  bool newSize = false;
  bool nearEnd = false;
  TimedFrame placed;
  {
    MutexLock lock(timelineMutex_);
    if (closed_)
      return;
    segmentNumber = segment_;
    first = timeline_.pictures() == 0;
    newSize = pictureSize_ != maker_.pictureSize();
    pictureSize_ = maker_.pictureSize();
    placed = place(std::move(frame), ptsNs, durationNs);
    nearEnd = !nearEnd_ && durationNs_ > 0 && placed.mediaNs + kOpenAheadNs >= durationNs_;
    nearEnd_ = nearEnd_ || nearEnd;
    placed.endIsFar = placed.mediaNs + kFullBeforeEndNs < durationNs_;
    placed.reduced = outlet_.decodeRate == DecodeRate::Reduced;
  }
  // The event is sent before the push, because the push waits while the film is paused at the seam of a loop.
  if (first)
    tell(FilmEvent::Kind::Picture, segmentNumber);
  else if (newSize)
    tell(FilmEvent::Kind::Facts);
  if (!outlet_.queue.push(std::move(placed)))
    return;
  if (nearEnd)
    tell(FilmEvent::Kind::NearEnd);
}

TimedFrame FilmDecoder::place(FrameRef frame, std::optional<std::int64_t> ptsNs,
                              std::optional<std::int64_t> durationNs) {
  frameDurationNs_ = maker_.frameDurationNs() > 0 ? maker_.frameDurationNs() : context_.rate.nsOf(1);
  if (timeline_.pictures() == 0 && !ptsNs)
    ptsNs = segmentStartNs_;
  const bool follows = timeline_.pictures() > 0 || segmentStartNs_ == 0;
  if (!follows && durationNs && *durationNs < frameDurationNs_) {
    // Cut at the place of a seek. With its own time stamp the pictures after it fall on ticks too.
    *ptsNs -= frameDurationNs_ - *durationNs;
    durationNs = frameDurationNs_;
  }
  const StreamTimeline::Stamp stamp = timeline_.stamp(ptsNs, durationNs, frameDurationNs_);
  if (startNs_ < 0)
    startNs_ = stamp.mediaNs;
  if (!soundOffsetNs_) {
    soundOffsetNs_ = stamp.timeNs - stamp.mediaNs;
    turn_.notify_all();
  }
  return {std::move(frame), stamp.timeNs, stamp.mediaNs - startNs_, number_};
}

void FilmDecoder::onOrientation(const char* tag) {
  maker_.setOrientation(PictureOrientation::fromTag(tag));
}

void FilmDecoder::flushQueues() {
  const std::uint64_t epoch = outlet_.clock.flush();
  outlet_.queue.beginFlush(epoch);
  outlet_.sound.beginFlush(epoch);
}

void FilmDecoder::onFlushStart() {
  MutexLock lock(timelineMutex_);
  // At the seam of a loop the queues are not flushed, so that what they hold is played until more comes.
  if (join_ == StreamTimeline::Join::Jump)
    flushQueues();
}

void FilmDecoder::onFlushStop() {
  MutexLock lock(timelineMutex_);
  beginSegment();
  outlet_.queue.endFlush();
  // The clock would wait for sound.
  if (!hasSound_)
    outlet_.sound.markEnd(outlet_.sound.part());
}

void FilmDecoder::beginSegment() {
  timeline_.beginSegment(join_);
  ++segment_;
  nearEnd_ = false;
  picturesEnded_ = false;
  endTold_ = false;
  soundOffsetNs_.reset();
  if (join_ == StreamTimeline::Join::Jump)
    soundOffsetNs_ = 0;
}

void FilmDecoder::beginSoundSegment() {
  soundTimeline_.beginSegment(StreamTimeline::Join::Jump);
  soundPart_ = outlet_.sound.part();
  soundState_ = hasSound_ ? SoundState::Comes : SoundState::None;
  soundDurationNs_ = 0;
  soundEndNs_ = 0;
}

void FilmDecoder::onEndOfStream() {
  {
    MutexLock lock(timelineMutex_);
    picturesEnded_ = true;
  }
  tellEnd();
}

bool FilmDecoder::soundIsComplete() const {
  return soundState_ != SoundState::Comes || soundEndNs_ >= timeline_.endNs() || timeline_.pictures() == 0;
}

void FilmDecoder::tellEnd() {
  int segment = 0;
  {
    MutexLock lock(timelineMutex_);
    if (!picturesEnded_ || endTold_ || !soundIsComplete())
      return;
    endTold_ = true;
    segment = segment_;
  }
  tell(FilmEvent::Kind::EndOfStream, segment);
}

void FilmDecoder::onSoundFound(bool hasSound) {
  MutexLock lock(timelineMutex_);
  hasSound_ = hasSound;
  soundState_ = hasSound ? SoundState::Comes : SoundState::None;
  if (!hasSound && admitted_)
    outlet_.sound.markEnd(soundPart_);
}

void FilmDecoder::onSound(GstSample* sample) {
  const std::optional<StereoSoundMaker::Sound> sound = soundMaker_.make(sample);
  if (!sound)
    return;
  const std::int64_t durationNs = nsOfSamples(sound->span.samples);
  std::int64_t timeNs = 0;
  AudioQueue::Part part = 0;
  bool needed = true;
  {
    MutexLock lock(timelineMutex_);
    soundHasCome_ = true;
    turn_.wait(lock, [this]() REQUIRES(timelineMutex_) {
      return closed_ || soundPart_ == kNoPart || (admitted_ && soundOffsetNs_);
    });
    if (closed_ || soundPart_ == kNoPart)
      return;
    part = soundPart_;
    timeNs = soundTimeline_.stamp(sound->ptsNs, durationNs, soundDurationNs_).timeNs + *soundOffsetNs_;
    soundDurationNs_ = durationNs;
    // What follows the last picture is not needed, except for the fade.
    needed = !picturesEnded_ || timeNs < timeline_.endNs() + kFadeNs;
  }
  if (needed && !outlet_.sound.push(part, sound->span, timeNs))
    return;
  {
    MutexLock lock(timelineMutex_);
    if (soundPart_ == part)
      soundEndNs_ = timeNs + durationNs;
  }
  tellEnd();
}

void FilmDecoder::onSoundFlushStart() {
  {
    MutexLock lock(timelineMutex_);
    soundPart_ = kNoPart;
  }
  turn_.notify_all();
  outlet_.sound.interrupt();
}

void FilmDecoder::onSoundFlushStop() {
  MutexLock lock(timelineMutex_);
  beginSoundSegment();
}

void FilmDecoder::onSoundEnd() {
  bool silent = false;
  {
    MutexLock lock(timelineMutex_);
    // A film without pictures fails as a whole.
    silent = !std::exchange(soundHasCome_, true) && startNs_ >= 0;
  }
  if (silent)
    onSoundFailure(QStringLiteral("nothing can be decoded"));
  endSound();
}

void FilmDecoder::endSound() {
  AudioQueue::Part part = 0;
  {
    MutexLock lock(timelineMutex_);
    soundState_ = SoundState::Ended;
    part = soundPart_;
  }
  outlet_.sound.markEnd(part);
  tellEnd();
}

void FilmDecoder::onSoundFailure(const QString& reason) {
  qCWarning(logSource, "sound does not play : %s : %s", qUtf8Printable(path_), qUtf8Printable(reason));
  {
    MutexLock lock(timelineMutex_);
    hasSound_ = false;
  }
  endSound();
}

void FilmDecoder::onDurationChanged() {
  tell(FilmEvent::Kind::Facts);
}

void FilmDecoder::onFailure(const QString& reason) {
  tell(FilmEvent::Kind::Failure, 0, reason);
}

// Control thread.

void FilmDecoder::open() {
  qCDebug(logSource, "film opens : %s", qUtf8Printable(path_));
  start();
}

bool FilmDecoder::start() {
  openDeadline_ = Clock::now() + kOpenTimeout;
  FilmPipelineListener& listener = *this;
  pipeline_ = std::make_unique<FilmPipeline>(listener);
  QString reason;
  if (pipeline_->start(path_, reason))
    return true;
  tell(FilmEvent::Kind::Failure, 0, reason);
  return false;
}

bool FilmDecoder::refusePictures() {
  bool pushed = false;
  {
    MutexLock lock(timelineMutex_);
    closed_ = true;
    pushed = startNs_ >= 0;
  }
  turn_.notify_all();
  return pushed;
}

void FilmDecoder::close(Queued queued) {
  openDeadline_.reset();
  seekDeadline_.reset();
  if (!pipeline_)
    return;
  refusePictures();
  if (queued == Queued::Flush)
    flushQueues();  // releases the streaming threads
  pipeline_.reset();
  if (queued == Queued::Flush)
    outlet_.queue.endFlush();
}

void FilmDecoder::admit(std::int64_t timeNs) {
  {
    MutexLock lock(timelineMutex_);
    timeline_.beginSegmentAt(timeNs);
    soundPart_ = outlet_.sound.joinAt(timeNs);
    admitted_ = true;
  }
  turn_.notify_all();
}

bool FilmDecoder::goTo(std::int64_t positionNs, StreamTimeline::Join join) {
  if (!canSeek())
    return false;
  {
    MutexLock lock(timelineMutex_);
    join_ = join;
    segmentStartNs_ = positionNs;
  }
  seekTargetNs_ = positionNs;
  if (!pipeline_->seek(positionNs)) {
    outlet_.queue.endFlush();
    return false;
  }
  ended_ = false;
  if (join == StreamTimeline::Join::Jump)
    seekDeadline_ = Clock::now() + kSeekTimeout;
  return true;
}

bool FilmDecoder::restart(StreamTimeline::Join join) {
  if (join == StreamTimeline::Join::Jump)
    close(Queued::Flush);
  pipeline_.reset();
  {
    MutexLock lock(timelineMutex_);
    join_ = join;
    segmentStartNs_ = 0;
    closed_ = false;
    beginSegment();
    beginSoundSegment();
  }
  seekTargetNs_ = 0;
  ended_ = false;
  return start();
}

std::optional<std::int64_t> FilmDecoder::seekToPercent(double percent) {
  std::int64_t startNs = 0;
  std::int64_t lastNs = 0;
  {
    MutexLock lock(timelineMutex_);
    startNs = startNs_;
    lastNs = std::max<std::int64_t>(0, durationNs_ - frameDurationNs_);
  }
  const auto wantedNs = static_cast<std::int64_t>(static_cast<double>(durationNs_) * percent / 100);
  const std::int64_t placeNs = std::clamp<std::int64_t>(wantedNs, 0, lastNs);
  if (!goTo(startNs + placeNs, StreamTimeline::Join::Jump))
    return std::nullopt;
  return placeNs;
}

bool FilmDecoder::rewind() {
  return goTo(0, StreamTimeline::Join::Jump) || restart(StreamTimeline::Join::Jump);
}

bool FilmDecoder::loop() {
  if (!canSeek() || emptySegments_ > kMostEmptySegments)
    return false;
  int pictures = 0;
  {
    MutexLock lock(timelineMutex_);
    pictures = timeline_.pictures();
  }
  if (pictures == 0)
    ++emptySegments_;
  // Releases sound that waits behind the last picture.
  outlet_.sound.joinAt(endNs());
  if (!goTo(0, StreamTimeline::Join::Seamless))
    restart(StreamTimeline::Join::Seamless);
  return true;
}

void FilmDecoder::noteFirstPicture() {
  openDeadline_.reset();
  seekDeadline_.reset();
  emptySegments_ = 0;
  noteFacts();
}

void FilmDecoder::noteFacts() {
  const std::int64_t duration = pipeline_ ? pipeline_->durationNs() : 0;
  if (duration > 0)
    durationNs_ = duration;
}

FilmDecoder::SegmentEnd FilmDecoder::noteEndOfStream() {
  seekDeadline_.reset();
  std::int64_t startNs = 0;
  std::int64_t mediaEndNs = 0;
  int pictures = 0;
  {
    MutexLock lock(timelineMutex_);
    startNs = startNs_;
    mediaEndNs = timeline_.mediaEndNs();
    pictures = timeline_.pictures();
  }
  if (startNs < 0)
    return SegmentEnd::NoPicture;
  if (pictures > 0) {
    compareDuration(mediaEndNs - startNs);
  } else if (++emptySegments_ <= kMostEmptySegments && seekTargetNs_ > 0) {
    // A seek went behind the last picture, because the sound is longer, or the film gives no pictures any
    // more.
    goTo(std::max<std::int64_t>(0, seekTargetNs_ - kSecondNs * emptySegments_), StreamTimeline::Join::Jump);
    return SegmentEnd::SoughtBack;
  }
  ended_ = true;
  return SegmentEnd::Ended;
}

void FilmDecoder::compareDuration(std::int64_t lastedNs) {
  if (durationNs_ == 0) {
    durationNs_ = lastedNs;
  } else if (lastedNs + kSecondNs < durationNs_ && !earlyEndLogged_) {
    earlyEndLogged_ = true;
    qCWarning(logSource, "film ends early : %s, after %.1f of %.1f s", qUtf8Printable(path_),
              static_cast<double>(lastedNs) / kSecondNs, static_cast<double>(durationNs_) / kSecondNs);
  }
}

void FilmDecoder::handleTimeouts(Clock::time_point now) {
  if (seekDeadline_ && now >= *seekDeadline_)
    seekDeadline_.reset();
  if (!openDeadline_ || now < *openDeadline_)
    return;
  openDeadline_.reset();
  tell(FilmEvent::Kind::Failure, 0, QStringLiteral("no picture within %1 s").arg(kOpenTimeout.count()));
}

std::optional<FilmDecoder::Clock::time_point> FilmDecoder::deadline() const {
  if (openDeadline_ && seekDeadline_)
    return std::min(*openDeadline_, *seekDeadline_);
  return openDeadline_ ? openDeadline_ : seekDeadline_;
}

bool FilmDecoder::isAdmitted() const {
  MutexLock lock(timelineMutex_);
  return admitted_;
}

bool FilmDecoder::isCurrent(int segment) const {
  MutexLock lock(timelineMutex_);
  return segment == segment_;
}

bool FilmDecoder::isNearEnd() const {
  MutexLock lock(timelineMutex_);
  return nearEnd_;
}

std::int64_t FilmDecoder::endNs() const {
  MutexLock lock(timelineMutex_);
  return timeline_.endNs();
}

FrameSize FilmDecoder::pictureSize() const {
  MutexLock lock(timelineMutex_);
  return pictureSize_;
}

std::int64_t FilmDecoder::frameDurationNs() const {
  MutexLock lock(timelineMutex_);
  return frameDurationNs_;
}

}  // namespace korvia
