#include "LiveFeed.h"

#include <algorithm>

namespace korvia {

void LiveFeed::push(const QByteArray& header, const QByteArray& data, bool keyFrame) {
  MutexLock lock(mutex_);
  header_ = header;
  if (keyFrame) {
    newestKey_ = first_ + static_cast<qint64>(chunks_.size());
    ++keys_;
  }
  bytes_ += data.size();
  chunks_.push_back({data, keyFrame});
  trim();
  wakeAll();
}

void LiveFeed::trim() {
  while (chunks_.size() > 1 && (bytes_ > maxBytes_ || keys_ > kGroups)) {
    bytes_ -= chunks_.front().data.size();
    keys_ -= chunks_.front().keyFrame ? 1 : 0;
    chunks_.pop_front();
    ++first_;
  }
}

void LiveFeed::close() {
  MutexLock lock(mutex_);
  closed_ = true;
  chunks_.clear();
  bytes_ = 0;
  wakeAll();
}

void LiveFeed::wakeAll() {
  for (LiveReader* reader : sleeping_)
    reader->wake();
  sleeping_.clear();
}

LiveFeed::Next LiveFeed::next(Place& place, QByteArray& chunk, LiveReader& reader) {
  MutexLock lock(mutex_);
  if (closed_)
    return Next::End;
  const bool isNew = place.next < 0;
  const bool hasKey = newestKey_ >= first_;
  if (isNew && hasKey) {
    place.next = newestKey_;
    chunk = header_;
    if (!chunk.isEmpty())
      return Next::Chunk;
  }
  if (place.next < first_ && hasKey)
    place.next = newestKey_;
  const qint64 at = place.next - first_;
  if (at < 0 || at >= static_cast<qint64>(chunks_.size())) {
    reader.sleep();
    sleeping_.push_back(&reader);
    return Next::Wait;
  }
  chunk = chunks_[static_cast<std::size_t>(at)].data;
  ++place.next;
  return Next::Chunk;
}

void LiveFeed::forget(const LiveReader& reader) {
  MutexLock lock(mutex_);
  sleeping_.erase(std::remove(sleeping_.begin(), sleeping_.end(), &reader), sleeping_.end());
}

qint64 LiveFeed::bytes() const {
  MutexLock lock(mutex_);
  return bytes_;
}

}  // namespace korvia
