#include "EventFeed.h"

#include <QJsonDocument>
#include <algorithm>

namespace korvia {

void EventFeed::setState(const QByteArray& name, const QJsonObject& state) {
  MutexLock lock(mutex_);
  if (closed_)
    return;
  State& kept = states_[name];
  if (!kept.text.isEmpty() && kept.values == state)
    return;
  kept = {state, eventText(name, state)};
  add(kept.text);
}

void EventFeed::tell(const QByteArray& name, const QJsonObject& moment) {
  MutexLock lock(mutex_);
  if (!closed_)
    add(eventText(name, moment));
}

void EventFeed::setLevels(const QJsonObject& levels) {
  MutexLock lock(mutex_);
  if (closed_ || levelViewers_ == 0)
    return;
  levels_ = eventText("levels", levels);
  ++levelsNumber_;
  wakeAll();
}

int EventFeed::viewers() const {
  MutexLock lock(mutex_);
  return viewers_;
}

bool EventFeed::hasLevelViewers() const {
  MutexLock lock(mutex_);
  return levelViewers_ > 0;
}

void EventFeed::open() {
  MutexLock lock(mutex_);
  closed_ = false;
}

void EventFeed::close() {
  MutexLock lock(mutex_);
  if (closed_)
    return;
  add(eventText("bye", {}));
  closed_ = true;
  states_.clear();
}

void EventFeed::beat() {
  MutexLock lock(mutex_);
  if (!closed_ && viewers_ > 0)
    add(":\n\n");
}

void EventFeed::join(Levels levels) {
  MutexLock lock(mutex_);
  ++viewers_;
  levelViewers_ += levels == Levels::With ? 1 : 0;
}

void EventFeed::leave(Levels levels, const WebSleeper& sleeper) {
  MutexLock lock(mutex_);
  std::erase(sleeping_, &sleeper);
  --viewers_;
  levelViewers_ -= levels == Levels::With ? 1 : 0;
  if (viewers_ == 0)
    states_.clear();
}

EventFeed::Next EventFeed::next(Place& place, QByteArray& text, WebSleeper& sleeper) {
  MutexLock lock(mutex_);
  const qint64 end = first_ + static_cast<qint64>(texts_.size());
  if (place.next < first_) {
    // A new viewer, or one that has missed texts which are gone.
    if (place.next < 0)
      text = "retry: 1000\n\n";
    text += allStates();
    place.next = end;
  }
  for (; place.next < end; ++place.next)
    text += texts_[static_cast<std::size_t>(place.next - first_)];
  if (place.levels == Levels::With && place.nextLevels < levelsNumber_) {
    text += levels_;
    place.nextLevels = levelsNumber_;
  }
  if (!text.isEmpty())
    return Next::Text;
  if (closed_)
    return Next::End;
  sleeping_.push_back(&sleeper);
  sleeper.sleep();
  return Next::Wait;
}

void EventFeed::add(const QByteArray& text) {
  texts_.push_back(text);
  if (texts_.size() > kKept) {
    texts_.pop_front();
    ++first_;
  }
  wakeAll();
}

QByteArray EventFeed::eventText(const QByteArray& name, const QJsonObject& values) {
  return "id: " + QByteArray::number(++eventId_) + "\nevent: " + name +
         "\ndata: " + QJsonDocument(values).toJson(QJsonDocument::Compact) + "\n\n";
}

QByteArray EventFeed::allStates() const {
  QByteArray text;
  for (const auto& [name, state] : states_)
    text += state.text;
  return text;
}

void EventFeed::wakeAll() {
  for (WebSleeper* sleeper : sleeping_)
    sleeper->wake();
  sleeping_.clear();
}

}  // namespace korvia
