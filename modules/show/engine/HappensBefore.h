// Tells ThreadSanitizer about an order between two threads that it cannot see, because GStreamer keeps that
// order with GLib's locks. Without these calls it reports races that are none. Empty in other builds. Any
// thread.
#pragma once
#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace korvia {

/// Called after the work that another thread relies on. That thread calls annotateHappensAfter with the same
/// object first.
inline void annotateHappensBefore([[maybe_unused]] void* object) {
#ifdef __SANITIZE_THREAD__
  __tsan_release(object);
#endif
}

inline void annotateHappensAfter([[maybe_unused]] void* object) {
#ifdef __SANITIZE_THREAD__
  __tsan_acquire(object);
#endif
}

/// For a callback on a thread of a library: callbacks with the same object look ordered to ThreadSanitizer.
/// Used only where the library orders them.
class HappensBeforeScope {
 public:
  explicit HappensBeforeScope(void* object) : object_(object) { annotateHappensAfter(object_); }
  ~HappensBeforeScope() { annotateHappensBefore(object_); }
  HappensBeforeScope(const HappensBeforeScope&) = delete;
  HappensBeforeScope& operator=(const HappensBeforeScope&) = delete;

 private:
  void* const object_;
};

}  // namespace korvia
