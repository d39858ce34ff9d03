#include "FilmSource.h"

#include <QFileInfo>
#include <QUrl>
#include <algorithm>

#include "DrivePath.h"

namespace korvia {

namespace {

// The interface counts in tenths of a millisecond.
constexpr std::int64_t kTenthMsNs = 100'000;

QStringList pathsOf(const tagKorviaShowSourceInfo& info) {
  if (info.kind == SourceKindUrl) {
    const QUrl url(info.url);
    return {DrivePath::resolve(url.isLocalFile() ? url.toLocalFile() : info.url)};
  }
  QStringList paths;
  for (const QString& path : info.kind == SourceKindMovieList ? info.movieList : QStringList(info.moviePath))
    paths << DrivePath::resolve(path);
  return paths;
}

std::shared_ptr<FilmTransport> makeTransport(const SourceContext& context,
                                             const tagKorviaShowSourceInfo& info, const QStringList& paths) {
  const bool isList = info.kind == SourceKindMovieList;
  const int endAction = isList ? info.listEndAction : info.movieEndAction;
  const int switchChannel = isList ? info.listSwitchChannel : info.movieSwitchChannel;
  const bool switches = endAction == EndActionStopAndSwitch;
  const bool stops = endAction == EndActionStop || switches;
  const auto afterLast = stops ? FilmSequence::AfterLast::Nothing : FilmSequence::AfterLast::First;
  return std::make_shared<FilmTransport>(context, FilmSequence(paths, afterLast),
                                         switches ? std::optional<int>(switchChannel) : std::nullopt);
}

}  // namespace

FilmSource::FilmSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                       const tagKorviaFormatInfo& format)
    : Source(context, info, format), paths_(pathsOf(info)), transport_(makeTransport(context, info, paths_)) {
  thread_ = startSourceThread(paths_.value(0), [transport = transport_] { transport->run(); });
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

bool FilmSource::pullSound(StereoSpan out) {
  return transport_->pullSound(out);
}

SourceFigures FilmSource::figures() {
  SourceFigures figures;
  const FrameSize size = transport_->pictureSize();
  figures.description = QFileInfo(paths_.value(getItemIndex())).fileName();
  if (isList())
    figures.description += QStringLiteral(" (%1/%2)").arg(getItemIndex() + 1).arg(getItemCount());
  if (!size.isEmpty())
    figures.description += QStringLiteral(", %1 x %2").arg(size.width).arg(size.height);
  figures.framesDecoded = transport_->framesDecoded();
  figures.framesHeld = framesHeld();
  figures.framesSkipped = transport_->framesSkipped();
  figures.framesQueued = transport_->framesQueued();
  figures.samplesQueued = transport_->samplesQueued();
  figures.framesPerSecond = transport_->framesPerSecond();
  figures.samplesPerSecond = transport_->samplesPerSecond();
  figures.videoAudioDriftMs = transport_->videoAudioDriftNs() / 1'000'000;
  return figures;
}

void FilmSource::getState(tagKorviaSourceLinkState& state) {
  const auto playState = static_cast<KorviaShowPlayState>(getPlayState());
  // On hold the decoder waits as on pause.
  const bool waits = held_ && playState == Playing;
  state.rate = linkRate(waits ? Paused : playState, transport_->framesPerSecond(), transport_->nominalRate());
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
  held_ = hold;
  transport_->setHold(hold);
}

void FilmSource::prev() {
  if (isList())
    transport_->post(FilmTransport::Command::Step, -1);
}

void FilmSource::next() {
  if (isList())
    transport_->post(FilmTransport::Command::Step, 1);
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

int FilmSource::getItemCount() {
  return paths_.size();
}

int FilmSource::getItemIndex() {
  return transport_->filmIndex();
}

}  // namespace korvia
