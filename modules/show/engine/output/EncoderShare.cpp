#include "EncoderShare.h"

namespace korvia {

void EncoderShare::deliver(const Packet& packet) {
  const qint64 endNs = endNs_;
  if (!packet.isPicture()) {
    // Sound ends with the picture.
    if (packet.ptsNs + packet.durationNs / 2 <= endNs)
      targets_.deliver(packet);
    return;
  }
  // Half a frame of tolerance, because an encoder may round its stamps.
  const qint64 middleNs = packet.ptsNs + packet.durationNs / 2;
  if (middleNs < beginNs_)
    return;
  if (middleNs >= endNs) {
    close({});
    return;
  }
  targets_.deliver(packet);
  ++framesEncoded_;
}

void EncoderShare::close(const QString& failure) {
  {
    MutexLock lock(mutex_);
    if (closed_)
      return;
    closed_ = true;
    failure_ = failure;
  }
  targets_.finishAll();
}

bool EncoderShare::isClosed() const {
  MutexLock lock(mutex_);
  return closed_;
}

QString EncoderShare::failure() const {
  MutexLock lock(mutex_);
  return failure_;
}

}  // namespace korvia
