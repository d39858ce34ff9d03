// A mutex, its lock and its condition variable, annotated for clang's -Wthread-safety. The static checks fail
// when a member with GUARDED_BY(mutex_) is used without the lock. clang does not check constructors and
// destructors. For other compilers the annotations are empty. Any thread.
#pragma once
#include <condition_variable>
#include <mutex>

#ifdef __clang__
#define KORVIA_THREAD_ATTRIBUTE(attribute) __attribute__((attribute))
#else
#define KORVIA_THREAD_ATTRIBUTE(attribute)
#endif

#define CAPABILITY(name) KORVIA_THREAD_ATTRIBUTE(capability(name))
#define SCOPED_CAPABILITY KORVIA_THREAD_ATTRIBUTE(scoped_lockable)
/// Behind a member: it is read and written only while the mutex is locked.
#define GUARDED_BY(mutex) KORVIA_THREAD_ATTRIBUTE(guarded_by(mutex))
/// Behind a function or the parameters of a lambda: the caller has locked the mutex.
#define REQUIRES(...) KORVIA_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
/// Behind a function: the caller has not locked the mutex, because the function locks it.
#define EXCLUDES(...) KORVIA_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define ACQUIRE(...) KORVIA_THREAD_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define RELEASE(...) KORVIA_THREAD_ATTRIBUTE(release_capability(__VA_ARGS__))
#define NO_THREAD_SAFETY_ANALYSIS KORVIA_THREAD_ATTRIBUTE(no_thread_safety_analysis)

namespace korvia {

template <typename StandardMutex>
class ScopedLock;

template <typename StandardMutex>
class CAPABILITY("mutex") BasicMutex {
 private:
  friend class ScopedLock<StandardMutex>;
  StandardMutex mutex_;
};

using Mutex = BasicMutex<std::mutex>;
/// For a call that may come back to the class that makes it.
using RecursiveMutex = BasicMutex<std::recursive_mutex>;

/// Holds the mutex from its construction to its destruction, except between unlock() and lock().
template <typename StandardMutex>
class SCOPED_CAPABILITY ScopedLock {
 public:
  explicit ScopedLock(BasicMutex<StandardMutex>& mutex) ACQUIRE(mutex) : lock_(mutex.mutex_) {}
  ~ScopedLock() RELEASE() {}
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

  void lock() ACQUIRE() { lock_.lock(); }
  void unlock() RELEASE() { lock_.unlock(); }

 private:
  friend class ConditionVariable;
  std::unique_lock<StandardMutex> lock_;
};

using MutexLock = ScopedLock<std::mutex>;
using RecursiveMutexLock = ScopedLock<std::recursive_mutex>;

/// std::condition_variable for a MutexLock. A predicate that reads guarded members says so:
/// `wake_.wait(lock, [this]() REQUIRES(mutex_) { return stop_; })`.
class ConditionVariable {
 public:
  void notify_one() noexcept { condition_.notify_one(); }
  void notify_all() noexcept { condition_.notify_all(); }

  template <typename Predicate>
  void wait(MutexLock& lock, Predicate predicate) NO_THREAD_SAFETY_ANALYSIS {
    condition_.wait(lock.lock_, std::move(predicate));
  }
  template <typename Duration, typename Predicate>
  bool wait_for(MutexLock& lock, Duration time, Predicate predicate) NO_THREAD_SAFETY_ANALYSIS {
    return condition_.wait_for(lock.lock_, time, std::move(predicate));
  }
  template <typename Time>
  void wait_until(MutexLock& lock, Time deadline) {
    condition_.wait_until(lock.lock_, deadline);
  }
  template <typename Time, typename Predicate>
  bool wait_until(MutexLock& lock, Time deadline, Predicate predicate) NO_THREAD_SAFETY_ANALYSIS {
    return condition_.wait_until(lock.lock_, deadline, std::move(predicate));
  }

 private:
  std::condition_variable condition_;
};

}  // namespace korvia
