#include "FileDelay.h"

#include <algorithm>
#include <utility>

#include "PackedPicture.h"
#include "engine/EngineLog.h"
#include "engine/frame/FrameFit.h"

namespace korvia {

FileDelay::FileDelay(FrameSize size, const DelayPlan& plan, const QString& folder, std::int64_t reserveBytes)
    : plan_(plan),
      folder_(folder),
      reserveBytes_(reserveBytes),
      shown_(-plan.frames),
      pool_(size),
      stored_(static_cast<std::size_t>(plan.places)) {}

// Engine thread.

FrameRef FileDelay::pull(int ticks) {
  MutexLock lock(mutex_);
  shown_ += ticks;
  bool isThere = shown_ < 1 || !failure_.isEmpty();
  while (ready_.count > 0 && ready_.front().number <= shown_) {
    Item item = ready_.pop();
    isThere = item.number == shown_;
    if (!item.isPictureBefore)
      current_ = std::move(item.picture);
  }
  if (!isThere)
    ++held_;
  return current_;
}

void FileDelay::push(const FrameRef& picture, int ticks) {
  {
    MutexLock lock(mutex_);
    number_ += ticks;
    if (!failure_.isEmpty())
      return;
    if (waiting_.isFull())
      ++lost_;
    else
      waiting_.push({number_, picture, false});
  }
  wake_.notify_one();
}

// Any thread.

void FileDelay::close() {
  {
    MutexLock lock(mutex_);
    closing_ = true;
  }
  wake_.notify_one();
}

QString FileDelay::failure() const {
  MutexLock lock(mutex_);
  return failure_;
}

int FileDelay::framesWaiting() const {
  MutexLock lock(mutex_);
  return waiting_.count;
}

int FileDelay::framesReady() const {
  MutexLock lock(mutex_);
  return ready_.count;
}

// The delay's own thread.

void FileDelay::run() {
  QString reason;
  if (!file_.open(folder_, plan_.places * plan_.placeBytes, reserveBytes_, reason)) {
    fail(reason);
    return;
  }
  bytes_.resize(static_cast<std::size_t>(plan_.placeBytes));
  while (work())
    noteSpeed();
}

void FileDelay::fail(const QString& reason) {
  qCWarning(logSource, "delay cannot be stored : %s", qUtf8Printable(reason));
  MutexLock lock(mutex_);
  failure_ = reason;
  while (waiting_.count > 0)
    waiting_.pop();
}

bool FileDelay::work() {
  MutexLock lock(mutex_);
  wake_.wait(lock, [this]() REQUIRES(mutex_) { return closing_ || waiting_.count > 0 || canFetch(); });
  if (closing_)
    return false;
  if (canFetch()) {
    if (nextFetch_ <= shown_) {
      lateFetches_ += shown_ + 1 - nextFetch_;
      nextFetch_ = shown_ + 1;
    }
    const std::int64_t number = nextFetch_++;
    lock.unlock();
    fetch(number);
  } else {
    // It leaves the queue when it is stored, so that whoever looks at the queue knows when all is.
    const Item item = waiting_.front();
    lock.unlock();
    store(item);
  }
  return true;
}

bool FileDelay::canFetch() const {
  return !ready_.isFull() && std::max(nextFetch_, shown_ + 1) <= lastStored_;
}

void FileDelay::fetch(std::int64_t number) {
  const Stored& stored = storedAt(number);
  Item item;
  item.number = number;
  item.isPictureBefore = stored.number != number || stored.content == kPictureBefore;
  if (!item.isPictureBefore && stored.content != kBlack) {
    if (stored.content != fetchedContent_) {
      fetched_ = readPicture(stored.content);
      fetchedContent_ = stored.content;
    }
    item.picture = fetched_;
    item.isPictureBefore = !fetched_;
  }
  MutexLock lock(mutex_);
  ready_.push(std::move(item));
}

void FileDelay::store(const Item& item) {
  // The numbers between are of ticks that were missed, or of pictures that found no room in the queue.
  for (std::int64_t missing = std::max(lastStored_ + 1, item.number - plan_.places + 1);
       missing < item.number; ++missing)
    storedAt(missing) = {missing, kPictureBefore};
  storedAt(item.number) = {item.number, contentFor(item)};
  MutexLock lock(mutex_);
  lastStored_ = item.number;
  waiting_.pop();
}

std::int64_t FileDelay::contentFor(const Item& item) {
  const bool isSame = item.picture == lastIn_ && lastContent_ != kPictureBefore;
  if (!item.picture) {
    lastContent_ = kBlack;
  } else if (!isSame || item.number - lastContent_ > kDelayReuseFrames) {
    lastContent_ = writePicture(item.number, *item.picture) ? item.number : kPictureBefore;
  }
  lastIn_ = item.picture;
  return lastContent_;
}

bool FileDelay::writePicture(std::int64_t number, const Frame& picture) {
  const std::int64_t count = packedBytes(pool_.size(), plan_.scale);
  if (picture.size() == pool_.size()) {
    packPicture(picture, plan_.scale, bytes_.data());
  } else {
    MutableFrame fitted = pool_.acquire();
    fitFrame(picture, fitRect(picture.size(), 1, 1, pool_.size()), *fitted);
    packPicture(*fitted, plan_.scale, bytes_.data());
  }
  const bool isWritten = file_.write(offsetOf(number), bytes_.data(), count);
  if (!isWritten && !std::exchange(writeFails_, true))
    qCWarning(logSource, "delay cannot be written, its picture stands still");
  if (isWritten && std::exchange(writeFails_, false))
    qCInfo(logSource, "delay can be written again");
  return isWritten;
}

FrameRef FileDelay::readPicture(std::int64_t number) {
  if (!file_.read(offsetOf(number), bytes_.data(), packedBytes(pool_.size(), plan_.scale)))
    return {};
  MutableFrame frame = pool_.acquire();
  unpackPicture(bytes_.data(), plan_.scale, *frame);
  return std::move(frame).publish();
}

void FileDelay::noteSpeed() {
  const std::int64_t trouble = lateFetches_ + lost_;
  if (trouble > std::exchange(reportedTrouble_, trouble)) {
    if (!std::exchange(isSlow_, true))
      qCWarning(logSource, "disk is too slow for the delay, pictures are left out");
  } else if (isSlow_) {
    MutexLock lock(mutex_);
    isSlow_ = !ready_.isFull();
  }
}

}  // namespace korvia
