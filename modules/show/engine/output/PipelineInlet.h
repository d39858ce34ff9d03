// The input of a pipeline: an appsrc and a count of the buffers that wait in it. Used by the thread that
// feeds it; one for each track.
#pragma once
#include <gst/app/gstappsrc.h>

#include <atomic>

#include "OutputPipeline.h"

namespace korvia {

class PipelineInlet {
 public:
  /// The pipeline must be stopped before the inlet is destroyed. It is woken when hasRoom() may have
  /// changed.
  /// `waitingBuffers` is the number of buffers that have room in it.
  explicit PipelineInlet(OutputPipeline& pipeline, qint64 waitingBuffers = kFewBuffers)
      : pipeline_(pipeline), waitingBuffers_(waitingBuffers) {}
  PipelineInlet(const PipelineInlet&) = delete;
  PipelineInlet& operator=(const PipelineInlet&) = delete;

  /// Makes the source element, which the pipeline owns; null when it is not installed.
  GstElement* create(const char* name, GstCaps* caps);
  /// Whether a buffer can be pushed without waiting long. Takes no lock.
  bool hasRoom() const;
  /// Takes ownership of the buffer, whose time stamps begin at 0. Never blocks.
  void push(GstBuffer* buffer);
  void end();
  /// Buffers that what comes behind has begun to take. Any thread.
  qint64 taken() const { return taken_; }

 private:
  static GstPadProbeReturn onTaken(GstPad* pad, GstPadProbeInfo* info, gpointer self);

  /// While one buffer is being processed downstream, one more waits to keep the pipeline busy.
  static constexpr qint64 kFewBuffers = 2;

  OutputPipeline& pipeline_;
  const qint64 waitingBuffers_;
  GstAppSrc* source_ = nullptr;  // owned by the pipeline
  qint64 pushed_ = 0;
  std::atomic<qint64> taken_{0};  // by what comes behind
};

}  // namespace korvia
