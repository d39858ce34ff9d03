// Scheduling of the threads: the frame clock comes before everything else. Called on the thread itself.
#pragma once
#include <gst/gst.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace korvia {

/// Gives the calling thread, and those that it starts later, the policy SCHED_BATCH: they get their share of
/// the CPU, but waking them does not preempt the thread that wakes them. Without it the engine thread loses
/// up to ten milliseconds of a tick to the encoder when it hands over a frame. The niceness is set too,
/// since a thread inherits it from the one that starts it.
inline void runAsBatch(int nice = 0) {
  const sched_param parameter{};
  pthread_setschedparam(pthread_self(), SCHED_BATCH, &parameter);
  setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), nice);
}

/// Gives the calling thread a lower share of the CPU than the others.
inline void runBehind() {
  constexpr int kNice = 5;
  runAsBatch(kNice);
}

/// Of an output, which must not fall behind when the CPU is short: asks for a higher share than decoders and
/// other programs have. Without the permission the share is an equal one.
constexpr int kOutputNice = -5;

/// Asks for a higher share of the CPU for the calling thread. Without the permission nothing changes.
inline void runAhead() {
  constexpr int kNice = -15;
  setpriority(PRIO_PROCESS, static_cast<id_t>(syscall(SYS_gettid)), kNice);
}

/// For the synchronous handler of a bus, which runs on the thread that posts the message: gives the
/// streaming threads of a pipeline the policy SCHED_BATCH when they begin.
inline void batchStreamingThread(GstMessage* message, int nice = 0) {
  if (GST_MESSAGE_TYPE(message) != GST_MESSAGE_STREAM_STATUS)
    return;
  GstStreamStatusType type{};
  gst_message_parse_stream_status(message, &type, nullptr);
  if (type == GST_STREAM_STATUS_TYPE_ENTER)
    runAsBatch(nice);
}

}  // namespace korvia
