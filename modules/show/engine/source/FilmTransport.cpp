#include "FilmTransport.h"

#include <algorithm>

#include "engine/EngineLog.h"

namespace korvia {

namespace {

// The sequence ends after this many films in a row that cannot be opened.
constexpr int kMostSkipped = 16;

}  // namespace

FilmTransport::FilmTransport(const SourceContext& context, std::unique_ptr<FilmSequence> sequence,
                             std::optional<int> switchChannel)
    : context_(context),
      sequence_(std::move(sequence)),
      switchChannel_(switchChannel),
      clock_(context.rate),
      queue_(clock_) {}

FilmTransport::~FilmTransport() = default;

// Console thread.

void FilmTransport::post(Command command, double percent) {
  {
    MutexLock lock(mutex_);
    const bool seek = command == Command::Seek;
    if (seek && !requests_.empty() && requests_.back().command == Command::Seek)
      requests_.pop_back();
    if (command == Command::Stop)
      requests_.clear();
    requests_.push_back({command, percent});
  }
  wake_.notify_one();
}

void FilmTransport::close() {
  {
    RecursiveMutexLock lock(notifyMutex_);
    mayNotify_ = false;
  }
  closing_ = true;
  state_ = NothingSpecial;
  queue_.close();
  {
    // Under the lock the control thread is not between its test and its wait, where it would miss the
    // notification.
    MutexLock lock(mutex_);
  }
  wake_.notify_one();
}

QString FilmTransport::failureReason() const {
  MutexLock lock(mutex_);
  return failureReason_;
}

void FilmTransport::setFailureReason(const QString& reason) {
  MutexLock lock(mutex_);
  failureReason_ = reason;
}

// Engine thread.

FrameRef FilmTransport::pull(int ticks) {
  VideoQueue::Pull pulled = queue_.pull(clock_.advance(ticks));
  if (pulled.fresh) {
    positionNs_ = std::max<std::int64_t>(0, pulled.mediaNs);
    ++framesShown_;
    if (std::exchange(shownFilm_, pulled.film) != pulled.film)
      onFilmEvent({FilmEvent::Kind::Shown, pulled.film, 0, {}});
  }
  if (pulled.durationNs > 0)
    pictureDurationNs_ = pulled.durationNs;
  if (pulled.missed && state_ == Playing)
    ++framesHeld_;
  if (pulled.drained)
    onFilmEvent({FilmEvent::Kind::Drained, 0, 0, {}});
  return std::move(pulled.frame);
}

// Any thread.

void FilmTransport::onFilmEvent(FilmEvent event) {
  {
    MutexLock lock(mutex_);
    // Each event is queued once only, so that the queue stays short while a disk holds up the control thread.
    if (std::find(events_.begin(), events_.end(), event) != events_.end())
      return;
    events_.push_back(std::move(event));
  }
  wake_.notify_one();
}

// Control thread.

void FilmTransport::run() {
  present_ = makeFilm(sequence_->present(), FilmDecoder::Admission::AtOnce);
  while (!closing_) {
    std::optional<FilmEvent> event;
    std::optional<Request> request;
    {
      MutexLock lock(mutex_);
      if (const auto deadline = nextDeadline())
        wake_.wait_until(lock, *deadline, [this]() REQUIRES(mutex_) { return isReady(); });
      else
        wake_.wait(lock, [this]() REQUIRES(mutex_) { return isReady(); });
      if (!events_.empty()) {
        event = std::move(events_.front());
        events_.pop_front();
      } else if (isReady() && !requests_.empty()) {
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
  closeFilms();
}

bool FilmTransport::isReady() const {
  if (closing_ || !events_.empty())
    return true;
  const bool seeking = present_ && present_->isSeeking();
  return !requests_.empty() && !(seeking && requests_.front().command == Command::Seek);
}

std::optional<FilmDecoder::Clock::time_point> FilmTransport::nextDeadline() const {
  std::optional<FilmDecoder::Clock::time_point> earliest;
  for (const FilmDecoder* film : {present_.get(), next_.get()}) {
    const auto deadline = film ? film->deadline() : std::nullopt;
    if (deadline && (!earliest || *deadline < *earliest))
      earliest = deadline;
  }
  return earliest;
}

std::unique_ptr<FilmDecoder> FilmTransport::makeFilm(const QString& path, FilmDecoder::Admission admission) {
  const FilmDecoder::Outlet outlet{clock_, queue_, arrivals_, *this};
  auto film = std::make_unique<FilmDecoder>(context_, path, ++lastNumber_, outlet, admission);
  film->open();
  return film;
}

FilmDecoder* FilmTransport::filmOf(int number) const {
  for (FilmDecoder* film : {present_.get(), next_.get()}) {
    // GStreamer often reports the end of a film after its failure, so events of a closed film are ignored.
    if (film && film->number() == number && film->isOpen())
      return film;
  }
  return nullptr;
}

void FilmTransport::handleEvent(const FilmEvent& event) {
  if (event.kind == FilmEvent::Kind::Drained)
    handleDrained();
  else if (event.kind == FilmEvent::Kind::Shown)
    handleShown(event.film);
  else if (FilmDecoder* film = filmOf(event.film))
    handleFilmEvent(*film, event);
  continueSequence();
}

void FilmTransport::handleFilmEvent(FilmDecoder& film, const FilmEvent& event) {
  switch (event.kind) {
    case FilmEvent::Kind::Picture:
      if (film.isCurrent(event.segment))
        handleFirstPicture(film);
      break;
    case FilmEvent::Kind::EndOfStream:
      if (film.isCurrent(event.segment))
        handleEndOfStream(film);
      break;
    case FilmEvent::Kind::Facts:
      film.noteFacts();
      publishFacts();
      break;
    case FilmEvent::Kind::Failure:
      handleFailure(film, event.reason);
      break;
    default:
      break;
  }
}

void FilmTransport::handleFirstPicture(FilmDecoder& film) {
  film.noteFirstPicture();
  publishFacts();
  if (&film != present_.get() || state_ != Opening)
    return;
  clock_.setPlaying(wanted_ == Playing);
  state_ = wanted_;
  qCDebug(logSource, "film runs : %s, %d x %d, %.1f s", qUtf8Printable(film.path()), pictureWidth_.load(),
          pictureHeight_.load(), static_cast<double>(durationNs_) * 1e-9);
}

void FilmTransport::publishFacts() {
  const FrameSize size = present_->pictureSize();
  pictureWidth_ = size.width;
  pictureHeight_ = size.height;
  durationNs_ = present_->durationNs();
}

void FilmTransport::handleEndOfStream(FilmDecoder& film) {
  if (film.noteEndOfStream() == FilmDecoder::SegmentEnd::NoPicture)
    handleFailure(film, QStringLiteral("no picture in the file"));
  publishFacts();
}

void FilmTransport::continueSequence() {
  if (!present_->isOpen())
    return;
  const bool ended = present_->hasEnded();
  if (!ended && !present_->isNearEnd())
    return;
  const QString following = next_ || skipped_ >= kMostSkipped ? QString() : sequence_->following(skipped_);
  const bool again = following == present_->path();
  if (!following.isEmpty() && !again)
    next_ = makeFilm(following, FilmDecoder::Admission::Waits);
  if (!ended)
    return;
  if (next_ && !next_->isAdmitted())
    next_->admit(present_->endNs());
  else if (again && present_->loop())
    sequence_->advance(std::exchange(skipped_, 0));
  else if (!next_)
    queue_.markEnd(present_->endNs());
}

void FilmTransport::handleShown(int number) {
  if (!next_ || next_->number() != number)
    return;
  present_->close(FilmDecoder::Queued::Keep);
  present_ = std::move(next_);
  sequence_->advance(std::exchange(skipped_, 0));
  publishFacts();
}

void FilmTransport::handleDrained() {
  // A seek or a play may have come between the end and this event.
  if (!queue_.isDrained() || state_ != Playing)
    return;
  clock_.setPlaying(false);
  positionNs_ = durationNs_.load();
  state_ = Ended;
  notifySwitch();
}

void FilmTransport::handleFailure(const FilmDecoder& film, const QString& reason) {
  qCWarning(logSource, "film does not play : %s : %s", qUtf8Printable(film.path()), qUtf8Printable(reason));
  if (&film == next_.get() && !next_->refusePictures()) {
    next_->close(FilmDecoder::Queued::Keep);
    next_.reset();
    ++skipped_;
    return;
  }
  clock_.setPlaying(false);
  closeFilms();
  setFailureReason(reason);
  if (!closing_)
    state_ = Error;
}

void FilmTransport::closeFilms() {
  if (next_)
    next_->close(FilmDecoder::Queued::Flush);
  next_.reset();
  present_->close(FilmDecoder::Queued::Flush);
}

void FilmTransport::handleTimeouts() {
  const auto now = FilmDecoder::Clock::now();
  present_->handleTimeouts(now);
  if (next_)
    next_->handleTimeouts(now);
}

void FilmTransport::handleRequest(const Request& request) {
  if (!present_->isOpen()) {
    handleRequestAfterFailure(request);
    return;
  }
  switch (request.command) {
    case Command::Play:
      play();
      break;
    case Command::Pause:
      pause();
      break;
    case Command::Stop:
      stop();
      break;
    case Command::Seek:
      seekToPercent(request.percent);
      break;
  }
}

void FilmTransport::handleRequestAfterFailure(const Request& request) {
  if (request.command == Command::Stop) {
    setFailureReason({});
    state_ = Stopped;
  } else if (request.command == Command::Play) {
    setFailureReason({});
    wanted_ = Playing;
    state_ = Opening;
    present_ = makeFilm(sequence_->present(), FilmDecoder::Admission::AtOnce);
  }
}

void FilmTransport::play() {
  switch (state_) {
    case Opening:
      wanted_ = Playing;
      return;
    case Ended:
      if (!rewind())
        return;
      break;
    case Paused:
    case Stopped:
      break;
    default:
      return;
  }
  clock_.setPlaying(true);
  state_ = Playing;
  // The film may have reached its end in the tick in which it was paused, and that event was ignored.
  handleDrained();
}

void FilmTransport::pause() {
  if (state_ == Opening)
    wanted_ = Paused;
  if (state_ != Playing)
    return;
  clock_.setPlaying(false);
  state_ = Paused;
}

void FilmTransport::stop() {
  if (state_ == Opening) {
    wanted_ = Stopped;
    return;
  }
  if (state_ != Playing && state_ != Paused && state_ != Ended)
    return;
  clock_.setPlaying(false);
  if (rewind()) {
    positionNs_ = 0;
    state_ = Stopped;
  }
}

bool FilmTransport::rewind() {
  dropAdmitted();
  return present_->rewind();
}

void FilmTransport::seekToPercent(double percent) {
  if (state_ == Opening || state_ == Error || !present_->canSeek())
    return;
  dropAdmitted();
  const std::optional<std::int64_t> placeNs = present_->seekToPercent(percent);
  if (!placeNs) {
    qCDebug(logSource, "film cannot be seeked : %s", qUtf8Printable(present_->path()));
    return;
  }
  positionNs_ = *placeNs;
  // The picture at the new place is shown and stays until play.
  if (state_ == Ended || state_ == Stopped)
    state_ = Paused;
}

void FilmTransport::dropAdmitted() {
  // A flush of the present film drops the pictures of an admitted next film too, so that film has to begin
  // anew. One that waits has lost no picture.
  if (!next_ || !next_->isAdmitted())
    return;
  next_->close(FilmDecoder::Queued::Flush);
  next_.reset();
}

void FilmTransport::notifySwitch() {
  RecursiveMutexLock lock(notifyMutex_);
  if (switchChannel_ && mayNotify_ && context_.sink)
    context_.sink->onSourceNotify(context_.id, kSourceNotifySwitch, *switchChannel_);
}

}  // namespace korvia
