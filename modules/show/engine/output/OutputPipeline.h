// A GStreamer pipeline of an output with its elements, its end of stream and its failure. Made and destroyed
// on one thread; GStreamer threads call the wake function and nothing else.
#pragma once
#include <gst/gst.h>

#include <QString>
#include <atomic>
#include <functional>

#include "ElementProperty.h"
#include "ThreadSafety.h"

namespace korvia {

class OutputPipeline {
 public:
  /// `wake` is called from any thread when isEnded() or hasFailed() has changed. It must not call back.
  explicit OutputPipeline(std::function<void()> wake);
  ~OutputPipeline();
  OutputPipeline(const OutputPipeline&) = delete;
  OutputPipeline& operator=(const OutputPipeline&) = delete;

  /// Initialises GStreamer and makes an empty pipeline. On failure false, with the reason in failure().
  bool create(const char* name);
  /// Makes an element and adds it to the pipeline; null when it is not installed.
  GstElement* add(const char* factory, const char* name);
  /// Adds an element that was made elsewhere, and takes over the caller's reference to it.
  void adopt(GstElement* element);
  bool play();
  /// Stops without an end of stream. Blocks until the sink has written its current buffer; the streaming
  /// threads have ended after that.
  void stop();

  /// Any thread. The first text is kept.
  void setFailure(const QString& text);
  void wake() const { wake_(); }

  bool isEnded() const { return ended_; }
  bool hasFailed() const { return failed_; }
  /// The GstResourceError of the failure; 0 for another one.
  int resourceError() const { return resourceError_; }
  /// The reason of the failure; empty without one.
  QString failure() const;

  template <typename Properties>
  static void setProperties(GstElement* element, const Properties& properties) {
    for (const ElementProperty& property : properties)
      gst_util_set_object_arg(G_OBJECT(element), property.name, property.value);
  }
  /// Adds a probe for the buffers and buffer lists of a static pad.
  static void addProbe(GstElement* element, const char* padName, GstPadProbeCallback callback, gpointer self);

 private:
  static GstBusSyncReply onMessage(GstBus* bus, GstMessage* message, gpointer self);

  const std::function<void()> wake_;
  GstElement* pipeline_ = nullptr;
  std::atomic<bool> failed_{false};
  std::atomic<bool> ended_{false};
  std::atomic<int> resourceError_{0};
  mutable Mutex mutex_;
  QString failure_ GUARDED_BY(mutex_);
};

}  // namespace korvia
