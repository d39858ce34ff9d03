#include "TargetList.h"

#include <algorithm>
#include <utility>

namespace korvia {

void TargetList::join(std::shared_ptr<Target> target) {
  MutexLock lock(mutex_);
  addEntry({std::move(target), true});
}

void TargetList::leave(const Target& target) {
  MutexLock lock(mutex_);
  removeEntry(&target);
}

bool TargetList::takeKeyRequest() {
  MutexLock lock(mutex_);
  // Every request is taken, also while a key frame is on its way, which serves all.
  bool wanted = false;
  for (const Entry& entry : entries_)
    wanted = entry.target->takeKeyRequest() || entry.waiting || wanted;
  return wanted && !std::exchange(keyAsked_, true);
}

void TargetList::deliver(const Packet& packet) {
  MutexLock lock(mutex_);
  if (packet.keyFrame)
    beginAtKeyFrame();
  for (std::size_t i = 0; i < entries_.size();) {
    if (entries_[i].waiting || entries_[i].target->push(packet))
      ++i;
    else
      removeEntry(entries_[i].target.get());
  }
}

void TargetList::finishAll() {
  MutexLock lock(mutex_);
  ended_ = true;
  while (!entries_.empty())
    removeEntry(entries_.back().target.get());
}

void TargetList::addEntry(Entry entry) {
  const Target* target = entry.target.get();
  entries_.push_back(std::move(entry));
  count_ = entries_.size();
  if (ended_)
    removeEntry(target);
}

void TargetList::removeEntry(const Target* target) {
  const auto place = std::find_if(entries_.begin(), entries_.end(),
                                  [target](const Entry& entry) { return entry.target.get() == target; });
  if (place == entries_.end())
    return;
  place->target->finish();
  janitor_.dispose(std::move(place->target));
  entries_.erase(place);
  count_ = entries_.size();
}

void TargetList::beginAtKeyFrame() {
  keyAsked_ = false;
  for (Entry& entry : entries_)
    entry.waiting = false;
}

}  // namespace korvia
