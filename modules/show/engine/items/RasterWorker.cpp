#include "RasterWorker.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

template <typename Entries>
auto withKey(Entries& entries, const QString& key) {
  return std::find_if(entries.begin(), entries.end(), [&key](const auto& entry) { return entry.key == key; });
}

}  // namespace

RasterWorker::RasterWorker() : thread_([this] { run(); }) {}

RasterWorker::~RasterWorker() {
  {
    MutexLock lock(mutex_);
    stop_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void RasterWorker::request(const QString& key, Draw draw) {
  {
    MutexLock lock(mutex_);
    if (const auto waiting = withKey(requests_, key); waiting != requests_.end())
      waiting->draw.swap(draw);
    else
      requests_.push_back({key, std::move(draw)});
  }
  wake_.notify_all();
}

void RasterWorker::withdraw(const QString& key) {
  Request withdrawn;  // what its function holds goes outside of the lock
  MutexLock lock(mutex_);
  if (const auto waiting = withKey(requests_, key); waiting != requests_.end()) {
    withdrawn = std::move(*waiting);
    requests_.erase(waiting);
  }
  if (drawing_ == key)
    drawingWithdrawn_ = true;
  deliver(key, {});
}

void RasterWorker::deliver(const QString& key, LayerRef layer) {
  if (const auto waiting = withKey(drawn_, key); waiting != drawn_.end()) {
    std::swap(waiting->layer, layer);
    discarded_.push_back({{}, std::move(layer)});
  } else {
    drawn_.push_back({key, std::move(layer)});
  }
}

void RasterWorker::collect(std::vector<Drawn>& drawn) {
  bool discards = false;
  {
    MutexLock lock(mutex_);
    if (discarded_.empty())
      discarded_.swap(drawn);
    else
      std::move(drawn.begin(), drawn.end(), std::back_inserter(discarded_));
    drawn.clear();
    drawn.swap(drawn_);
    discards = !discarded_.empty();
  }
  if (discards)
    wake_.notify_all();
}

void RasterWorker::run() {
  nameThread("kv-raster");
  runAsBatch();
  std::vector<Drawn> discarded;
  MutexLock lock(mutex_);
  for (;;) {
    wake_.wait(lock,
               [this]() REQUIRES(mutex_) { return stop_ || !requests_.empty() || !discarded_.empty(); });
    if (stop_)
      return;
    discarded.swap(discarded_);
    Request next;
    if (!requests_.empty()) {
      next = std::move(requests_.front());
      requests_.erase(requests_.begin());
      drawing_ = next.key;
      drawingWithdrawn_ = false;
    }
    lock.unlock();
    discarded.clear();
    LayerRef layer = next.draw ? next.draw() : LayerRef();
    const bool wasDrawn = static_cast<bool>(std::exchange(next.draw, {}));
    lock.lock();
    drawing_.clear();
    if (wasDrawn && !drawingWithdrawn_)
      deliver(next.key, std::move(layer));
  }
}

}  // namespace korvia
