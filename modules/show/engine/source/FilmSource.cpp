#include "FilmSource.h"

#include <QFileInfo>
#include <algorithm>

#include "DrivePath.h"

namespace korvia {

namespace {

// The interface counts in tenths of a millisecond.
constexpr std::int64_t kTenthMsNs = 100'000;

class SingleFilm final : public FilmSequence {
 public:
  SingleFilm(const QString& path, bool loops) : path_(path), loops_(loops) {}

  QString present() const override { return path_; }
  QString following(int) const override { return loops_ ? path_ : QString(); }
  void advance(int) override {}

 private:
  const QString path_;
  const bool loops_;
};

std::shared_ptr<FilmTransport> makeTransport(const SourceContext& context,
                                             const tagKorviaShowSourceInfo& info) {
  const bool switches = info.movieEndAction == EndActionStopAndSwitch;
  const bool loops = info.movieEndAction != EndActionStop && !switches;
  return std::make_shared<FilmTransport>(
      context, std::make_unique<SingleFilm>(DrivePath::resolve(info.moviePath), loops),
      switches ? std::optional<int>(info.movieSwitchChannel) : std::nullopt);
}

}  // namespace

FilmSource::FilmSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                       const tagKorviaFormatInfo& format)
    : Source(context, info, format), transport_(makeTransport(context, info)) {
  thread_ = startSourceThread(info.moviePath, [transport = transport_] { transport->run(); });
}

FilmSource::~FilmSource() {
  close();
}

void FilmSource::close() {
  if (std::exchange(closed_, true))
    return;
  transport_->close();
  markSourceThreadClosing(thread_);
}

FrameRef FilmSource::pullFrame(int ticks) {
  return transport_->pull(ticks);
}

SourceFigures FilmSource::figures() {
  SourceFigures figures;
  const FrameSize size = transport_->pictureSize();
  const QString name = QFileInfo(info().moviePath).fileName();
  figures.description =
      size.isEmpty() ? name : QStringLiteral("%1, %2 x %3").arg(name).arg(size.width).arg(size.height);
  figures.framesDecoded = transport_->arrivals().total();
  figures.framesHeld = transport_->framesHeld();
  figures.framesSkipped = transport_->framesSkipped();
  figures.framesPerSecond = transport_->arrivals().perSecond();
  return figures;
}

void FilmSource::getState(tagKorviaSourceLinkState& state) {
  state.rate = transport_->arrivals().perSecond();
  state.reason = transport_->failureReason();
  state.pictureDuration = transport_->pictureDurationNs() / kTenthMsNs;
}

void FilmSource::play() {
  transport_->post(FilmTransport::Command::Play);
}

void FilmSource::stop() {
  transport_->post(FilmTransport::Command::Stop);
}

void FilmSource::pause() {
  transport_->post(FilmTransport::Command::Pause);
}

void FilmSource::setHold(bool hold) {
  transport_->setHold(hold);
}

void FilmSource::getDuration(qint64& duration) {
  duration = transport_->durationNs() / kTenthMsNs;
}

void FilmSource::getTime(qint64& time) {
  time = transport_->positionNs() / kTenthMsNs;
}

void FilmSource::getFrameCount(qint64& frames) {
  frames = transport_->framesShown();
}

void FilmSource::getPosition(qint64& position) {
  const std::int64_t duration = transport_->durationNs();
  position = duration > 0 ? std::clamp<std::int64_t>(
                                (transport_->positionNs() * 100 + duration / 2) / duration, 0, 100)
                          : 0;
}

void FilmSource::setPosition(qint64 position) {
  transport_->post(FilmTransport::Command::Seek, static_cast<double>(std::clamp<qint64>(position, 0, 100)));
}

int FilmSource::getPlayState() {
  return closed_ ? NothingSpecial : transport_->state();
}

}  // namespace korvia
