// Names threads, so that a debugger, top and the bench can tell them apart. Any thread.
#pragma once
#include <pthread.h>

namespace korvia {

/// Names the calling thread; at most 15 characters count.
inline void nameThread(const char* name) {
  pthread_setname_np(pthread_self(), name);
}

}  // namespace korvia
