#include "FilmSource.h"

#include <QFileInfo>
#include <algorithm>

#include "DrivePath.h"

namespace korvia {

namespace {

// The interface counts in tenths of a millisecond.
constexpr std::int64_t kTenthMsNs = 100'000;

KorviaShowEndAction endActionOf(const tagKorviaShowSourceInfo& info) {
  switch (info.movieEndAction) {
    case EndActionStop:
    case EndActionStopAndSwitch:
      return static_cast<KorviaShowEndAction>(info.movieEndAction);
    default:
      return EndActionLoop;
  }
}

}  // namespace

FilmSource::FilmSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                       const tagKorviaFormatInfo& format)
    : id_(context.id),
      info_(info),
      format_(format),
      player_(std::make_shared<FilmPlayer>(context, DrivePath::resolve(info.moviePath), endActionOf(info),
                                           info.movieSwitchChannel)) {
  thread_ = startSourceThread(info.moviePath, [player = player_] { player->run(); });
}

FilmSource::~FilmSource() {
  close();
}

void FilmSource::close() {
  if (std::exchange(closed_, true))
    return;
  player_->close();
  markSourceThreadClosing(thread_);
}

FrameRef FilmSource::pullFrame(int ticks) {
  return player_->pull(ticks);
}

SourceFigures FilmSource::figures() {
  SourceFigures figures;
  const FrameSize size = player_->pictureSize();
  figures.description = size.isEmpty() ? QFileInfo(info_.moviePath).fileName()
                                       : QStringLiteral("%1, %2 x %3")
                                             .arg(QFileInfo(info_.moviePath).fileName())
                                             .arg(size.width)
                                             .arg(size.height);
  figures.framesDecoded = player_->arrivals().total();
  figures.framesHeld = player_->framesHeld();
  figures.framesPerSecond = player_->arrivals().perSecond();
  return figures;
}

void FilmSource::getState(tagKorviaSourceLinkState& state) {
  state.rate = player_->arrivals().perSecond();
  state.reason = player_->failureReason();
}

void FilmSource::play() {
  player_->post(FilmPlayer::Command::Play);
}

void FilmSource::stop() {
  player_->post(FilmPlayer::Command::Stop);
}

void FilmSource::pause() {
  player_->post(FilmPlayer::Command::Pause);
}

void FilmSource::setHold(bool hold) {
  player_->setHold(hold);
}

void FilmSource::getDuration(qint64& duration) {
  duration = player_->durationNs() / kTenthMsNs;
}

void FilmSource::getTime(qint64& time) {
  time = player_->positionNs() / kTenthMsNs;
}

void FilmSource::getFrameCount(qint64& frames) {
  frames = player_->framesShown();
}

void FilmSource::getPosition(qint64& position) {
  const std::int64_t duration = player_->durationNs();
  position = duration > 0
                 ? std::clamp<std::int64_t>((player_->positionNs() * 100 + duration / 2) / duration, 0, 100)
                 : 0;
}

void FilmSource::setPosition(qint64 position) {
  player_->post(FilmPlayer::Command::Seek, static_cast<double>(std::clamp<qint64>(position, 0, 100)));
}

int FilmSource::getPlayState() {
  return closed_ ? NothingSpecial : player_->state();
}

}  // namespace korvia
