#include "ImageSource.h"

#include <QFileInfo>

#include "PictureFile.h"
#include "SourceThreads.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

// The interface counts in tenths of a millisecond.
constexpr std::int64_t kTenthMsNs = 100'000;

}  // namespace

ImageSource::ImageSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                         const tagKorviaFormatInfo& format)
    : PictureSource(context, info, format, Opening), animation_(context.rate, context.renderSize) {}

std::shared_ptr<ImageSource> ImageSource::open(const SourceContext& context,
                                               const tagKorviaShowSourceInfo& info,
                                               const tagKorviaFormatInfo& format) {
  std::shared_ptr<ImageSource> source(new ImageSource(context, info, format));
  source->thread_ = startSourceThread(info.imagePath, [source] { source->run(); });
  return source;
}

// Engine thread.

FrameRef ImageSource::pullFrame(int ticks) {
  Animation::Pull pulled = animation_.pull(ticks);
  if (pulled.ended)
    end();
  return pulled.frame ? std::move(pulled.frame) : PictureSource::pullFrame(ticks);
}

// Console thread.

void ImageSource::close() {
  closing_ = true;
  PictureSource::close();
  animation_.close();
  markSourceThreadClosing(thread_);
}

SourceFigures ImageSource::figures() {
  SourceFigures figures = PictureSource::figures();
  if (animation_.isAnimated()) {
    const VideoQueue::Figures ofQueue = animation_.figures();
    figures.framesDecoded = animation_.framesDecoded();
    figures.framesPerSecond = animation_.framesPerSecond();
    figures.framesHeld = ofQueue.missed;
    figures.framesSkipped = ofQueue.dropped;
  }
  return figures;
}

void ImageSource::getState(tagKorviaSourceLinkState& state) {
  PictureSource::getState(state);
  state.rate = animation_.framesPerSecond();
}

void ImageSource::play() {
  if (getPlayState() == Ended)
    animation_.rewind();
  animation_.setPlaying(true);
  PictureSource::play();
}

void ImageSource::stop() {
  animation_.setPlaying(false);
  animation_.rewind();
  PictureSource::stop();
}

void ImageSource::pause() {
  animation_.setPlaying(false);
  PictureSource::pause();
}

void ImageSource::getDuration(qint64& duration) {
  duration = animation_.durationNs() / kTenthMsNs;
}

void ImageSource::getTime(qint64& time) {
  time = animation_.positionNs() / kTenthMsNs;
}

void ImageSource::getFrameCount(qint64& frames) {
  if (animation_.isAnimated())
    frames = animation_.framesShown();
  else
    PictureSource::getFrameCount(frames);
}

void ImageSource::getPosition(qint64& position) {
  const std::int64_t durationNs = animation_.durationNs();
  position = durationNs > 0 ? (animation_.positionNs() * 100 + durationNs / 2) / durationNs : 0;
}

QString ImageSource::description() const {
  const QString name = QFileInfo(info().imagePath).fileName();
  MutexLock lock(sizeMutex_);
  return size_.isEmpty() ? name : QStringLiteral("%1, %2 x %3").arg(name).arg(size_.width).arg(size_.height);
}

// The source's thread.

void ImageSource::run() {
  PictureFile file;
  QString reason;
  FittedPicture picture;
  if (file.open(info().imagePath, reason))
    picture = file.read(context().renderSize, reason);
  if (!picture.frame) {
    qCWarning(logSource, "picture cannot be shown : %s : %s", qUtf8Printable(info().imagePath),
              qUtf8Printable(reason));
    fail(reason);
    return;
  }
  {
    MutexLock lock(sizeMutex_);
    size_ = picture.fileSize;
  }
  showPicture(std::move(picture.frame));
  if (!closing_)
    animation_.run(file);
}

}  // namespace korvia
