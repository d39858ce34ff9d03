// A GStreamer pipeline of an output: its elements, its end and what went wrong. Built and destroyed on one
// thread; GStreamer's threads call the wake function, nothing else.
#pragma once
#include <gst/gst.h>

#include <QString>
#include <atomic>
#include <functional>
#include <mutex>

#include "ElementProperty.h"

namespace korvia {

class OutputPipeline {
 public:
  /// `wake` is called from any thread when isEnded() or hasFailed() has changed. It must not call back.
  explicit OutputPipeline(std::function<void()> wake);
  ~OutputPipeline();
  OutputPipeline(const OutputPipeline&) = delete;
  OutputPipeline& operator=(const OutputPipeline&) = delete;

  /// Starts GStreamer and makes an empty pipeline. False with the reason in failure(), as below.
  bool create(const char* name);
  /// Makes an element and takes it into the pipeline; null when it is not installed.
  GstElement* add(const char* factory, const char* name);
  bool play();
  /// Stops without an end of the stream; blocks until the sink has taken what is being written. The
  /// streaming threads are gone after it.
  void stop();

  /// Any thread; the first text counts.
  void setFailure(const QString& text);
  void wake() const { wake_(); }

  bool isEnded() const { return ended_; }
  bool hasFailed() const { return failed_; }
  /// What went wrong, empty when nothing did.
  QString failure() const;

  template <typename Properties>
  static void setProperties(GstElement* element, const Properties& properties) {
    for (const ElementProperty& property : properties)
      gst_util_set_object_arg(G_OBJECT(element), property.name, property.value);
  }
  /// Watches the buffers and buffer lists that go through an element's static pad.
  static void addProbe(GstElement* element, const char* padName, GstPadProbeCallback callback, gpointer self);

 private:
  static GstBusSyncReply onMessage(GstBus* bus, GstMessage* message, gpointer self);

  const std::function<void()> wake_;
  GstElement* pipeline_ = nullptr;
  std::atomic<bool> failed_{false};
  std::atomic<bool> ended_{false};
  mutable std::mutex mutex_;
  QString failure_;  // guarded by mutex_
};

}  // namespace korvia
