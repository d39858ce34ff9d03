// Tells ThreadSanitizer of an order between threads that a library keeps by means it cannot see (GLib's locks
// are bare futexes). Nothing at all in other builds.
#pragma once
#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace korvia {

/// What this thread did so far comes before what follows takeOver() of the same thing on another thread.
inline void handOver([[maybe_unused]] void* thing) {
#ifdef __SANITIZE_THREAD__
  __tsan_release(thing);
#endif
}

inline void takeOver([[maybe_unused]] void* thing) {
#ifdef __SANITIZE_THREAD__
  __tsan_acquire(thing);
#endif
}

/// For a callback that a library makes on a thread of its own.
class HandoverScope {
 public:
  explicit HandoverScope(void* thing) : thing_(thing) { takeOver(thing_); }
  ~HandoverScope() { handOver(thing_); }
  HandoverScope(const HandoverScope&) = delete;
  HandoverScope& operator=(const HandoverScope&) = delete;

 private:
  void* const thing_;
};

}  // namespace korvia
