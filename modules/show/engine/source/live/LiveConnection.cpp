#include "LiveConnection.h"

#include <algorithm>
#include <utility>

namespace korvia {

LiveConnection::LiveConnection(std::shared_ptr<LiveSink> sink, const LiveInputMaker& maker)
    : sink_(std::move(sink)), input_(maker(*this)), lastDeliveryNs_(nowNs()) {}

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
  // What is held back shows sooner that the input is silent, and deliveries that it can be decoded.
  const std::int64_t silentNs = nowNs - lastDeliveryNs_ - lastHeldNs_;
  return delivered_ && lastHeldBackNs_ > 0 ? std::max(silentNs, nowNs - lastHeldBackNs_) : silentNs;
}

void LiveConnection::noteDelivery(std::int64_t heldNs) {
  lastHeldNs_ = heldNs;
  lastDeliveryNs_ = nowNs();
  if (!delivered_.exchange(true))
    sink_->onLiveChange();
}

void LiveConnection::onPicture(FrameRef picture, std::int64_t stampNs, std::int64_t heldNs) {
  if (!open_)
    return;
  hasPicture_ = true;
  sink_->onLivePicture(std::move(picture), stampNs, nowNs() - heldNs);
  noteDelivery(heldNs);
}

void LiveConnection::onSound(StereoSpan sound, std::int64_t stampNs, std::int64_t heldNs) {
  if (!open_)
    return;
  sink_->onLiveSound(sound, stampNs, nowNs() - heldNs);
  // Sound that goes on does not make up for pictures that have stopped.
  if (!hasPicture_)
    noteDelivery(heldNs);
}

std::optional<std::int64_t> LiveConnection::shownNs(std::int64_t stampNs) const {
  return open_ ? sink_->liveShownNs(stampNs) : std::nullopt;
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
