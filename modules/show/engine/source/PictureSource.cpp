#include "PictureSource.h"

namespace korvia {

PictureSource::PictureSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                             const tagKorviaFormatInfo& format, KorviaShowPlayState state)
    : Source(context, info, format), state_(state) {}

FrameRef PictureSource::pullFrame(int) {
  MutexLock lock(pictureMutex_);
  if (picture_ && shown_ == 0)
    shown_ = 1;
  return picture_;
}

void PictureSource::close() {
  state_ = NothingSpecial;
}

SourceFigures PictureSource::figures() {
  SourceFigures figures;
  figures.description = description();
  MutexLock lock(pictureMutex_);
  figures.framesDecoded = picture_ ? 1 : 0;
  return figures;
}

void PictureSource::change(KorviaShowPlayState state) {
  MutexLock lock(pictureMutex_);
  wanted_ = state;
  if (state_ == Playing || state_ == Paused || state_ == Stopped || state_ == Ended)
    state_ = state;
}

void PictureSource::showPicture(FrameRef picture) {
  MutexLock lock(pictureMutex_);
  std::swap(picture_, picture);  // the former picture is freed outside of the lock
  failureReason_.clear();
  if (state_ == Opening || state_ == Error)
    state_ = wanted_;
}

void PictureSource::fail(const QString& reason) {
  MutexLock lock(pictureMutex_);
  if (state_ != Opening)
    return;
  failureReason_ = reason;
  state_ = Error;
}

void PictureSource::end() {
  MutexLock lock(pictureMutex_);
  if (state_ == Playing)
    state_ = Ended;
}

void PictureSource::getState(tagKorviaSourceLinkState& state) {
  MutexLock lock(pictureMutex_);
  state.rate = 0;
  state.reason = failureReason_;
}

}  // namespace korvia
