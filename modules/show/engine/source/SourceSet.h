// The open sources, by slot. The console thread opens and closes them; the engine thread reads a copy that it
// updates only after a change.
#pragma once
#include <array>
#include <atomic>
#include <memory>

#include "KorviaShowObjectID.h"
#include "ThreadSafety.h"
#include "engine/source/Source.h"

namespace korvia {

using SourceArray = std::array<std::shared_ptr<Source>, kSourceSlotCount>;

class SourceSet {
 public:
  /// Puts a source, or null, into a slot and returns the one that was there. Console thread.
  std::shared_ptr<Source> exchange(int slot, std::shared_ptr<Source> source) {
    MutexLock lock(mutex_);
    std::swap(sources_[slot], source);
    version_.fetch_add(1, std::memory_order_release);
    return source;
  }

  /// Null for an empty slot. Console thread.
  std::shared_ptr<Source> at(int slot) const {
    MutexLock lock(mutex_);
    return sources_[slot];
  }

  /// True when the sources have changed since `version`: they are copied into `copy`, and `old` gets what
  /// `copy` held before. Engine thread.
  bool refresh(quint64& version, SourceArray& copy, SourceArray& old) const {
    if (version_.load(std::memory_order_acquire) == version)
      return false;
    MutexLock lock(mutex_);
    version = version_.load(std::memory_order_relaxed);
    old = std::move(copy);
    copy = sources_;
    return true;
  }

 private:
  mutable Mutex mutex_;
  SourceArray sources_ GUARDED_BY(mutex_);
  std::atomic<quint64> version_{1};
};

}  // namespace korvia
