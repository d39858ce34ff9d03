#include "LiveConnection.h"

#include <utility>

namespace korvia {

LiveConnection::LiveConnection(std::shared_ptr<LiveSink> sink, const LiveInputMaker& maker)
    : sink_(std::move(sink)), input_(maker(*this)), lastArrivalNs_(nowNs()) {}

LiveConnection::~LiveConnection() {
  refuse();
  close();
}

std::int64_t LiveConnection::nowNs() {
  return std::chrono::duration_cast<std::chrono::nanoseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

QString LiveConnection::reason() const {
  MutexLock lock(mutex_);
  return reason_;
}

std::int64_t LiveConnection::silentNs(std::int64_t nowNs) const {
  return nowNs - lastArrivalNs_;
}

void LiveConnection::noteArrival(std::int64_t arrivalNs) {
  lastArrivalNs_ = arrivalNs;
  if (!delivered_.exchange(true))
    sink_->onLiveChange();
}

void LiveConnection::onPicture(FrameRef picture, std::int64_t stampNs) {
  if (!open_)
    return;
  const std::int64_t arrivalNs = nowNs();
  hasPicture_ = true;
  sink_->onLivePicture(std::move(picture), stampNs, arrivalNs);
  noteArrival(arrivalNs);
}

void LiveConnection::onSound(StereoSpan sound, std::int64_t stampNs) {
  if (!open_)
    return;
  const std::int64_t arrivalNs = nowNs();
  sink_->onLiveSound(sound, stampNs, arrivalNs);
  // Sound that goes on does not make up for pictures that have stopped.
  if (!hasPicture_)
    noteArrival(arrivalNs);
}

void LiveConnection::onStampsRestart() {
  if (open_)
    sink_->onLiveStampsRestart();
}

void LiveConnection::onLost(const QString& reason) {
  if (!open_ || lost_.exchange(true))
    return;
  {
    MutexLock lock(mutex_);
    reason_ = reason;
  }
  sink_->onLiveChange();
}

}  // namespace korvia
