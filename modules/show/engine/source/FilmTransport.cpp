#include "FilmTransport.h"

#include <algorithm>

#include "engine/EngineLog.h"

namespace korvia {

namespace {

float rateOf(std::int64_t frameDurationNs) {
  return 1e9F / static_cast<float>(frameDurationNs);
}

}  // namespace

FilmTransport::FilmTransport(const SourceContext& context, const FilmSequence& sequence,
                             std::optional<int> switchChannel)
    : context_(context),
      switchChannel_(switchChannel),
      clock_(context.rate),
      queue_(clock_, {}, context.refillTurns.get()),
      sound_(clock_),
      nominalRate_(rateOf(context.rate.nsOf(1))),
      sequence_(sequence) {}

FilmTransport::~FilmTransport() = default;

// Console thread.

void FilmTransport::post(Command command, double value) {
  {
    MutexLock lock(mutex_);
    if (command == Command::Stop)
      std::erase_if(requests_, [](const Request& request) { return request.command != Command::Step; });
    const bool repeats = !requests_.empty() && requests_.back().command == command;
    if (repeats && command == Command::Seek)
      requests_.back().value = value;
    else if (repeats && command == Command::Step)
      requests_.back().value += value;
    else
      requests_.push_back({command, value});
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
  sound_.close();
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
  const ClockReading reading = clock_.advance(ticks);
  VideoQueue::Pull pulled = queue_.pull(reading);
  const AudioQueue::Tick sound = sound_.advance(reading);
  if (sound.taken > 0)
    soundArrivals_.count(sound.taken);
  videoAudioDriftNs_ = sound.timeNs && pulled.frame ? pulled.timeNs - *sound.timeNs : 0;
  if (pulled.fresh) {
    arrivals_.count(pulled.taken);
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
  openPresent();
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
  const FilmDecoder::Outlet outlet{clock_, queue_, sound_, framesDecoded_, decodeRate_, *this};
  return std::make_unique<FilmDecoder>(context_, path, ++lastNumber_, outlet, admission);
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
  unplayable_.remove(film.path());
  publishFacts();
  if (&film != present_.get())
    return;
  stepDirection_ = 1;
  if (state_ != Opening)
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
  filmIndex_ = sequence_.index();
  const std::int64_t frameDurationNs = present_->frameDurationNs();
  nominalRate_ = rateOf(frameDurationNs > 0 ? frameDurationNs : context_.rate.nsOf(1));
}

void FilmTransport::handleEndOfStream(FilmDecoder& film) {
  const FilmDecoder::SegmentEnd end = film.noteEndOfStream();
  if (end == FilmDecoder::SegmentEnd::Ended)
    failures_ = 0;
  if (end == FilmDecoder::SegmentEnd::NoPicture)
    handleFailure(film, QStringLiteral("no picture in the file"));
}

void FilmTransport::continueSequence() {
  if (!present_->isOpen())
    return;
  const bool ended = present_->hasEnded();
  if (!ended && !present_->isNearEnd())
    return;
  const QString following = next_ ? QString() : sequence_.following(skipped_);
  const bool again = following == present_->path();
  if (!following.isEmpty() && !again) {
    next_ = makeFilm(following, FilmDecoder::Admission::Waits);
    next_->open();
  }
  if (!ended)
    return;
  if (next_ && !next_->isAdmitted())
    next_->admit(present_->endNs());
  else if (again && present_->loop())
    sequence_.advance(std::exchange(skipped_, 0));
  else if (!next_)
    endAt(present_->endNs());
  publishFacts();
}

void FilmTransport::endAt(std::int64_t timeNs) {
  queue_.markEnd(timeNs);
  // Sound that lasts longer than its pictures ends with them.
  sound_.joinAt(timeNs);
}

void FilmTransport::handleShown(int number) {
  if (!next_ || next_->number() != number)
    return;
  present_->close(FilmDecoder::Queued::Keep);
  present_ = std::move(next_);
  sequence_.advance(std::exchange(skipped_, 0));
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

void FilmTransport::handleFailure(FilmDecoder& film, const QString& reason) {
  const QByteArray line = QStringLiteral("film does not play : %1 : %2").arg(film.path(), reason).toUtf8();
  if (unplayable_.contains(film.path()))
    qCDebug(logSource, "%s", line.constData());
  else
    qCWarning(logSource, "%s", line.constData());
  unplayable_.insert(film.path());
  const bool isNext = &film == next_.get();
  const bool hadPictures = film.refusePictures();
  if (isNext && !hadPictures) {
    next_->close(FilmDecoder::Queued::Keep);
    next_.reset();
    ++skipped_;
    return;
  }
  if (isNext)
    sequence_.advance(std::exchange(skipped_, 0));
  if (playOn(hadPictures ? Failed::Playing : Failed::Opening))
    return;
  clock_.setPlaying(false);
  closeFilms();
  setFailureReason(reason);
  if (!closing_)
    state_ = Error;
}

bool FilmTransport::playOn(Failed failed) {
  if (closing_ || ++failures_ >= sequence_.count())
    return false;
  if (failed == Failed::Opening)
    sequence_.step(stepDirection_);
  else if (!sequence_.following(0).isEmpty())
    sequence_.advance(0);
  else
    return false;
  if (state_ == Playing) {
    wanted_ = Playing;
    state_ = Opening;
  }
  openPresent();
  return true;
}

void FilmTransport::closeFilms() {
  if (next_)
    next_->close(FilmDecoder::Queued::Flush);
  next_.reset();
  if (present_)
    present_->close(FilmDecoder::Queued::Flush);
}

void FilmTransport::handleTimeouts() {
  const auto now = FilmDecoder::Clock::now();
  present_->handleTimeouts(now);
  if (next_)
    next_->handleTimeouts(now);
}

void FilmTransport::handleRequest(const Request& request) {
  if (request.command == Command::Step) {
    step(static_cast<int>(request.value));
    return;
  }
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
      seekToPercent(request.value);
      break;
    default:
      break;
  }
}

void FilmTransport::handleRequestAfterFailure(const Request& request) {
  if (request.command == Command::Stop) {
    setFailureReason({});
    state_ = Stopped;
  } else if (request.command == Command::Play) {
    failures_ = 0;
    unplayable_.clear();
    wanted_ = Playing;
    state_ = Opening;
    openPresent();
  }
}

void FilmTransport::play() {
  switch (state_) {
    case Opening:
      wanted_ = Playing;
      return;
    case Ended:
      if (sequence_.index() > 0) {
        playFromTheFirst();
        return;
      }
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

void FilmTransport::playFromTheFirst() {
  sequence_.goToFirst();
  failures_ = 0;
  wanted_ = Playing;
  state_ = Opening;
  openPresent();
}

void FilmTransport::step(int films) {
  if (films == 0 || sequence_.count() == 0)
    return;
  sequence_.step(films);
  stepDirection_ = films < 0 ? -1 : 1;
  failures_ = 0;
  unplayable_.clear();
  if (state_ == Ended) {
    state_ = Stopped;
  } else if (state_ == Playing || state_ == Error) {
    wanted_ = Playing;
    state_ = Opening;
  }
  openPresent();
}

void FilmTransport::openPresent() {
  closeFilms();
  if (state_ == Opening)
    clock_.setPlaying(false);
  skipped_ = 0;
  positionNs_ = 0;
  setFailureReason({});
  present_ = makeFilm(sequence_.present(), FilmDecoder::Admission::AtOnce);
  publishFacts();
  if (sequence_.count() == 0)
    handleFailure(*present_, QStringLiteral("the list is empty"));
  else
    present_->open();
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
