#include "FilmPlayer.h"

#include <algorithm>

#include "SourceLog.h"

namespace korvia {

namespace {

constexpr std::int64_t kSecondNs = 1'000'000'000;
constexpr std::chrono::seconds kOpenTimeout{10};
// A drag of the slider asks for more places than can be shown: each gets this long to bring its picture.
constexpr std::chrono::seconds kSeekTimeout{1};
constexpr int kMostEmptySegments = 2;

std::optional<std::int64_t> known(GstClockTime time) {
  if (!GST_CLOCK_TIME_IS_VALID(time))
    return std::nullopt;
  return static_cast<std::int64_t>(time);
}

}  // namespace

FilmPlayer::FilmPlayer(const SourceContext& context, const QString& path, KorviaShowEndAction endAction,
                       int switchChannel)
    : context_(context),
      path_(path),
      endAction_(endAction),
      switchChannel_(switchChannel),
      tap_(context.rate),
      maker_(context.renderSize),
      state_(Opening) {}

FilmPlayer::~FilmPlayer() = default;

// Console thread.

void FilmPlayer::post(Command command, double percent) {
  {
    std::lock_guard lock(mutex_);
    const bool seek = command == Command::Seek;
    if (seek && !requests_.empty() && requests_.back().command == Command::Seek)
      requests_.pop_back();
    if (command == Command::Stop)
      requests_.clear();
    requests_.push_back({command, percent});
  }
  wake_.notify_one();
}

QString FilmPlayer::failureReason() const {
  std::lock_guard lock(mutex_);
  return failureReason_;
}

void FilmPlayer::close() {
  {
    std::lock_guard lock(notifyMutex_);
    mayNotify_ = false;
  }
  closing_ = true;
  state_ = NothingSpecial;
  tap_.close();
  {
    std::lock_guard lock(mutex_);  // so that the control thread is not between its look and its wait
  }
  wake_.notify_one();
}

// Engine thread.

FrameRef FilmPlayer::pull(int ticks) {
  FrameTap::Pull pulled = tap_.pull(ticks);
  if (pulled.fresh) {
    positionNs_ = std::max<std::int64_t>(0, pulled.mediaNs - startNs_);
    ++framesShown_;
  }
  if (pulled.missed && state_ == Playing)
    ++framesHeld_;
  if (pulled.drained)
    postEvent({EventKind::Drained, 0, {}});
  return std::move(pulled.frame);
}

// GStreamer's threads.

void FilmPlayer::onPicture(GstSample* sample) {
  GstBuffer* buffer = gst_sample_get_buffer(sample);
  const GstSegment* segment = gst_sample_get_segment(sample);
  std::optional<std::int64_t> pts = known(GST_BUFFER_PTS(buffer));
  const std::optional<std::int64_t> duration = known(GST_BUFFER_DURATION(buffer));
  if (pts && segment && segment->format == GST_FORMAT_TIME) {
    // Decoders that do not cut to the place of a seek leave that to us.
    const GstClockTime start = GST_BUFFER_PTS(buffer);
    const auto lasts = static_cast<GstClockTime>(duration.value_or(0));
    if (start < segment->start && start + lasts <= segment->start)
      return;
    const guint64 place = gst_segment_to_stream_time(
        segment, GST_FORMAT_TIME, std::max<guint64>(GST_BUFFER_PTS(buffer), segment->start));
    pts = known(place);
  }
  FrameRef frame = maker_.make(sample);
  if (!frame)
    return;
  arrivals_.count();
  pictureWidth_ = maker_.pictureSize().width;
  pictureHeight_ = maker_.pictureSize().height;
  StreamTimeline::Stamp stamp;
  bool first = false;
  int segmentNumber = 0;
  {
    std::lock_guard lock(timelineMutex_);
    frameDurationNs_ = maker_.frameDurationNs() > 0 ? maker_.frameDurationNs() : context_.rate.nsOf(1);
    first = timeline_.pictures() == 0;
    if (first && !pts)
      pts = segmentStartNs_;
    stamp = timeline_.stamp(pts, duration, frameDurationNs_);
    segmentNumber = segment_;
    if (startNs_ < 0)
      startNs_ = stamp.mediaNs;
  }
  if (tap_.push({std::move(frame), stamp.timeNs, stamp.mediaNs}) && first)
    postEvent({EventKind::Picture, segmentNumber, {}});
}

void FilmPlayer::onOrientation(const char* tag) {
  maker_.setOrientation(PictureOrientation::fromTag(tag));
}

void FilmPlayer::onFlushStart() {
  std::lock_guard lock(timelineMutex_);
  // At the seam of a loop the tap's pictures bridge the time until new ones come.
  if (join_ == StreamTimeline::Join::Jump)
    tap_.beginFlush();
}

void FilmPlayer::onFlushStop() {
  std::lock_guard lock(timelineMutex_);
  timeline_.beginSegment(join_);
  ++segment_;
  tap_.endFlush();
}

void FilmPlayer::onEndOfStream() {
  int segment = 0;
  {
    std::lock_guard lock(timelineMutex_);
    segment = segment_;
  }
  postEvent({EventKind::EndOfStream, segment, {}});
}

void FilmPlayer::onDurationChanged() {
  postEvent({EventKind::Duration, 0, {}});
}

void FilmPlayer::onFailure(const QString& reason) {
  postEvent({EventKind::Failure, 0, reason});
}

void FilmPlayer::postEvent(Event event) {
  {
    std::lock_guard lock(mutex_);
    events_.push_back(std::move(event));
  }
  wake_.notify_one();
}

// Control thread.

void FilmPlayer::run() {
  qCDebug(logSource, "film opens : %s", qUtf8Printable(path_));
  startPipeline();
  while (!closing_) {
    std::optional<Event> event;
    std::optional<Request> request;
    {
      std::unique_lock lock(mutex_);
      const auto ready = [this] {
        return closing_ || !events_.empty() ||
               (!requests_.empty() && !(seekDeadline_ && requests_.front().command == Command::Seek));
      };
      if (const auto deadline = nextDeadline())
        wake_.wait_until(lock, *deadline, ready);
      else
        wake_.wait(lock, ready);
      if (!events_.empty()) {
        event = std::move(events_.front());
        events_.pop_front();
      } else if (ready() && !requests_.empty()) {
        request = requests_.front();
        requests_.pop_front();
      }
    }
    if (closing_)
      break;
    if (event)
      handleEvent(*event);
    if (request)
      handleRequest(*request);
    handleTimeouts();
  }
  stopPipeline();
  qCDebug(logSource, "film closed : %s", qUtf8Printable(path_));
}

std::optional<FilmPlayer::Clock::time_point> FilmPlayer::nextDeadline() const {
  if (openDeadline_ && seekDeadline_)
    return std::min(*openDeadline_, *seekDeadline_);
  return openDeadline_ ? openDeadline_ : seekDeadline_;
}

bool FilmPlayer::startPipeline() {
  openDeadline_ = Clock::now() + kOpenTimeout;
  pipeline_ = std::make_unique<FilmPipeline>(*this);
  QString reason;
  if (pipeline_->start(path_, reason))
    return true;
  handleFailure(reason);
  return false;
}

void FilmPlayer::stopPipeline() {
  if (!pipeline_)
    return;
  tap_.beginFlush();  // releases the streaming thread
  pipeline_.reset();
  tap_.endFlush();
}

void FilmPlayer::handleEvent(const Event& event) {
  // A pipeline that failed often reports its end too.
  if (!pipeline_)
    return;
  if (event.kind == EventKind::Picture || event.kind == EventKind::EndOfStream) {
    std::lock_guard lock(timelineMutex_);
    if (event.segment != segment_)
      return;
  }
  switch (event.kind) {
    case EventKind::Picture:
      handleFirstPicture();
      break;
    case EventKind::EndOfStream:
      handleEndOfStream();
      break;
    case EventKind::Drained:
      handleDrained();
      break;
    case EventKind::Duration:
      updateDuration();
      break;
    case EventKind::Failure:
      handleFailure(event.reason);
      break;
  }
}

void FilmPlayer::handleRequest(const Request& request) {
  if (!pipeline_)
    return;
  switch (request.command) {
    case Command::Play:
      play();
      break;
    case Command::Pause:
      if (state_ == Opening)
        wanted_ = Paused;
      else if (state_ == Playing) {
        tap_.setPlaying(false);
        state_ = Paused;
      }
      break;
    case Command::Stop:
      stop();
      break;
    case Command::Seek:
      seekToPercent(request.percent);
      break;
  }
}

void FilmPlayer::handleFirstPicture() {
  openDeadline_.reset();
  seekDeadline_.reset();
  emptySegments_ = 0;
  updateDuration();
  if (state_ != Opening)
    return;
  tap_.setPlaying(wanted_ == Playing);
  state_ = wanted_;
  qCDebug(logSource, "film runs : %s, %d x %d, %.1f s", qUtf8Printable(path_), pictureWidth_.load(),
          pictureHeight_.load(), static_cast<double>(durationNs_) / kSecondNs);
}

void FilmPlayer::updateDuration() {
  const std::int64_t duration = pipeline_ ? pipeline_->durationNs() : 0;
  if (duration > 0)
    durationNs_ = duration;
}

void FilmPlayer::handleEndOfStream() {
  seekDeadline_.reset();
  std::int64_t endNs = 0;
  std::int64_t mediaEndNs = 0;
  int pictures = 0;
  {
    std::lock_guard lock(timelineMutex_);
    endNs = timeline_.endNs();
    mediaEndNs = timeline_.mediaEndNs();
    pictures = timeline_.pictures();
  }
  if (state_ == Opening && pictures == 0) {
    handleFailure(QStringLiteral("no picture in the file"));
    return;
  }
  if (pictures == 0) {
    // A seek behind the last picture: sound may be longer. Or a film that gives nothing any more.
    if (++emptySegments_ <= kMostEmptySegments && seekTargetNs_ > 0) {
      goTo(std::max<std::int64_t>(0, seekTargetNs_ - kSecondNs * emptySegments_), StreamTimeline::Join::Jump);
      return;
    }
  } else if (durationNs_ == 0) {
    durationNs_ = mediaEndNs - startNs_;
  } else if (mediaEndNs - startNs_ + kSecondNs < durationNs_ && !earlyEndLogged_) {
    earlyEndLogged_ = true;
    qCWarning(logSource, "film ends early : %s, after %.1f of %.1f s", qUtf8Printable(path_),
              static_cast<double>(mediaEndNs - startNs_) / kSecondNs,
              static_cast<double>(durationNs_) / kSecondNs);
  }
  const bool loops = endAction_ == EndActionLoop && pipeline_->isRegularFile();
  if (loops && emptySegments_ <= kMostEmptySegments) {
    if (pictures == 0)
      ++emptySegments_;
    if (goTo(0, StreamTimeline::Join::Seamless) || restart(StreamTimeline::Join::Seamless))
      return;
  }
  if (pipeline_)
    tap_.markEnd(endNs);
}

void FilmPlayer::handleDrained() {
  // A seek or a play may have come between the end and this.
  if (!tap_.isDrained() || state_ != Playing)
    return;
  tap_.setPlaying(false);
  positionNs_ = durationNs_.load();
  state_ = Ended;
  if (endAction_ == EndActionStopAndSwitch)
    notifySwitch();
}

void FilmPlayer::handleFailure(const QString& reason) {
  qCWarning(logSource, "film does not play : %s : %s", qUtf8Printable(path_), qUtf8Printable(reason));
  {
    std::lock_guard lock(mutex_);
    failureReason_ = reason;
  }
  openDeadline_.reset();
  seekDeadline_.reset();
  tap_.setPlaying(false);
  stopPipeline();
  if (!closing_)
    state_ = Error;
}

void FilmPlayer::handleTimeouts() {
  const Clock::time_point now = Clock::now();
  if (seekDeadline_ && now >= *seekDeadline_)
    seekDeadline_.reset();
  if (openDeadline_ && now >= *openDeadline_)
    handleFailure(QStringLiteral("no picture within %1 s").arg(kOpenTimeout.count()));
}

void FilmPlayer::play() {
  switch (state_) {
    case Opening:
      wanted_ = Playing;
      return;
    case Ended:
      if (!goTo(0, StreamTimeline::Join::Jump) && !restart(StreamTimeline::Join::Jump))
        return;
      break;
    case Paused:
    case Stopped:
      break;
    default:
      return;
  }
  tap_.setPlaying(true);
  state_ = Playing;
}

void FilmPlayer::stop() {
  if (state_ == Opening) {
    wanted_ = Stopped;
    return;
  }
  if (state_ != Playing && state_ != Paused && state_ != Ended)
    return;
  tap_.setPlaying(false);
  if (goTo(0, StreamTimeline::Join::Jump) || restart(StreamTimeline::Join::Jump)) {
    positionNs_ = 0;
    state_ = Stopped;
  }
}

void FilmPlayer::seekToPercent(double percent) {
  if (state_ == Opening || state_ == Error)
    return;
  const auto wanted = static_cast<std::int64_t>(static_cast<double>(durationNs_) * percent / 100);
  const std::int64_t target = std::clamp<std::int64_t>(wanted, 0, std::max<std::int64_t>(0, lastPictureNs()));
  if (!goTo(startNs_ + target, StreamTimeline::Join::Jump)) {
    qCDebug(logSource, "film cannot be seeked : %s", qUtf8Printable(path_));
    return;
  }
  positionNs_ = target;
  // The picture of that place is shown and stays until play.
  if (state_ == Ended || state_ == Stopped)
    state_ = Paused;
}

std::int64_t FilmPlayer::lastPictureNs() const {
  std::lock_guard lock(timelineMutex_);
  return durationNs_ - frameDurationNs_;
}

bool FilmPlayer::goTo(std::int64_t positionNs, StreamTimeline::Join join) {
  if (!pipeline_->isRegularFile())
    return false;
  {
    std::lock_guard lock(timelineMutex_);
    join_ = join;
    segmentStartNs_ = positionNs;
  }
  seekTargetNs_ = positionNs;
  const bool done = pipeline_->seek(positionNs);
  if (!done)
    tap_.endFlush();
  else if (join == StreamTimeline::Join::Jump)
    seekDeadline_ = Clock::now() + kSeekTimeout;
  return done;
}

bool FilmPlayer::restart(StreamTimeline::Join join) {
  if (join == StreamTimeline::Join::Jump)
    stopPipeline();
  pipeline_.reset();
  {
    std::lock_guard lock(timelineMutex_);
    join_ = join;
    segmentStartNs_ = 0;
    timeline_.beginSegment(join);
    ++segment_;
  }
  seekTargetNs_ = 0;
  return startPipeline();
}

void FilmPlayer::notifySwitch() {
  std::lock_guard lock(notifyMutex_);
  if (mayNotify_ && context_.sink)
    context_.sink->onSourceNotify(context_.id, kSourceNotifySwitch, switchChannel_);
}

}  // namespace korvia
