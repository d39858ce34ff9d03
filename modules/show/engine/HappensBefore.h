// Annotations that tell ThreadSanitizer which of two threads ran first, where GStreamer orders them by GLib's
// locks: these are bare futexes, which ThreadSanitizer does not see. Empty in all other builds. Any thread.
#pragma once
#ifdef __SANITIZE_THREAD__
#include <sanitizer/tsan_interface.h>
#endif

namespace korvia {

/// What this thread did so far happens before what another thread does after annotateHappensAfter(object).
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

/// For a callback that a library runs on one of its own threads: it happens after what was annotated before
/// it and before what follows it.
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
