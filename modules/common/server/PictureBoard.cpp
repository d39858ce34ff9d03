#include "PictureBoard.h"

#include <algorithm>

namespace korvia {

namespace {
constexpr std::chrono::seconds kWantedFor{2};
}

bool PictureBoard::isWanted() const {
  MutexLock lock(mutex_);
  return asked_ != Clock::time_point::min() && Clock::now() - asked_ < kWantedFor;
}

void PictureBoard::publish(const QByteArray& jpeg) {
  MutexLock lock(mutex_);
  picture_ = {jpeg, picture_.number + 1};
  published_ = Clock::now();
  wakeSleeping();
}

void PictureBoard::clear() {
  MutexLock lock(mutex_);
  picture_.jpeg.clear();
}

void PictureBoard::open() {
  MutexLock lock(mutex_);
  closed_ = false;
}

void PictureBoard::close() {
  MutexLock lock(mutex_);
  closed_ = true;
  asked_ = Clock::time_point::min();
  wakeSleeping();
}

PictureBoard::Next PictureBoard::next(qint64 after, Wait wait, WebSleeper& sleeper, Picture& picture) {
  MutexLock lock(mutex_);
  asked_ = Clock::now();
  if (isFreshAt(asked_) && picture_.number > after) {
    picture = picture_;
    return Next::Picture;
  }
  if (wait == Wait::Over || closed_)
    return Next::None;
  sleeping_.push_back(&sleeper);
  sleeper.sleep();
  return Next::Asleep;
}

bool PictureBoard::isFresh() const {
  MutexLock lock(mutex_);
  return isFreshAt(Clock::now());
}

void PictureBoard::forget(const WebSleeper& sleeper) {
  MutexLock lock(mutex_);
  std::erase(sleeping_, &sleeper);
}

void PictureBoard::wakeAll() {
  MutexLock lock(mutex_);
  wakeSleeping();
}

bool PictureBoard::isFreshAt(Clock::time_point now) const {
  return !picture_.jpeg.isEmpty() && now - published_ < kFreshFor;
}

void PictureBoard::wakeSleeping() {
  for (WebSleeper* sleeper : sleeping_)
    sleeper->wake();
  sleeping_.clear();
}

}  // namespace korvia
