// Who goes first when the processor is short: the frame clock, then everything else. Called on the thread
// itself.
#pragma once
#include <gst/gst.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace korvia {

/// Makes the calling thread, and those that it starts from here on, batch work: they get their share of the
/// processor, but what wakes them goes on first. Without it the engine thread loses up to ten milliseconds of
/// a tick to the encoder at the moment it hands a frame over. The niceness is set too, since a thread
/// inherits that of the thread that starts it.
inline void runAsBatch(int nice = 0) {
  const sched_param parameter{};
  pthread_setschedparam(pthread_self(), SCHED_BATCH, &parameter);
  setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), nice);
}

/// Takes less than an equal share for the calling thread: what it does gives way first.
inline void runBehind() {
  constexpr int kNice = 5;
  runAsBatch(kNice);
}

/// Asks for more than an equal share for the calling thread. Ordinary users may not have it; then nothing
/// changes.
inline void runAhead() {
  constexpr int kNice = -15;
  setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), kNice);
}

/// For a bus's synchronous handler, which runs on the thread that a message is about: makes the streaming
/// threads of a pipeline batch work as they begin.
inline void batchStreamingThread(GstMessage* message) {
  if (GST_MESSAGE_TYPE(message) != GST_MESSAGE_STREAM_STATUS)
    return;
  GstStreamStatusType type{};
  gst_message_parse_stream_status(message, &type, nullptr);
  if (type == GST_STREAM_STATUS_TYPE_ENTER)
    runAsBatch();
}

}  // namespace korvia
