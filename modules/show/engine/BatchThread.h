// Keeps threads that work in the background from getting in the engine thread's way. Called on the thread
// itself.
#pragma once
#include <pthread.h>
#include <sched.h>

namespace korvia {

/// Makes the calling thread, and those that it starts from here on, batch work: they get their share of the
/// processor, but what wakes them goes on first. Without it the engine thread loses up to ten milliseconds of
/// a tick to the encoder at the moment it hands a frame over.
inline void runAsBatch() {
  const sched_param parameter{};
  pthread_setschedparam(pthread_self(), SCHED_BATCH, &parameter);
}

}  // namespace korvia
