// The GStreamer side of one recording: x264, a multiplexer, a file. Used by the output's own thread only;
// GStreamer's threads call the wake function, nothing else.
#pragma once
#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include <QString>
#include <atomic>
#include <functional>
#include <mutex>

#include "RecordSettings.h"

namespace korvia {

class RecordPipeline {
 public:
  /// `wake` is called from any thread when hasRoom(), isEnded() or hasFailed() may have changed. It must not
  /// call back into the pipeline.
  explicit RecordPipeline(std::function<void()> wake);
  /// Stops without an end of the file; blocks until the file system has taken what is being written.
  ~RecordPipeline();
  RecordPipeline(const RecordPipeline&) = delete;
  RecordPipeline& operator=(const RecordPipeline&) = delete;

  /// Builds and starts it; the file is overwritten. On failure false, with the reason in failure().
  bool open(const RecordSettings& settings, const QString& fileName);
  /// Whether a frame can be fed without it being queued for long. Takes no lock.
  bool hasRoom() const;
  /// A frame of the settings' size; the index makes its time stamp. Never blocks.
  void feed(const FrameRef& frame, qint64 index);
  /// No more frames: isEnded() becomes true when the file is complete.
  void endStream();

  bool isEnded() const { return ended_; }
  bool hasFailed() const { return failed_; }
  /// What went wrong, empty when nothing did.
  QString failure() const;

  qint64 framesEncoded() const { return framesEncoded_; }
  qint64 bytesEncoded() const { return bytesEncoded_; }
  qint64 bytesWritten() const { return bytesWritten_; }

 private:
  GstElement* add(const char* factory, const char* name);
  bool link(const RecordSettings& settings, const QString& fileName);
  void setFailure(const QString& text);

  static GstBusSyncReply onMessage(GstBus* bus, GstMessage* message, gpointer self);
  static GstPadProbeReturn onTaken(GstPad* pad, GstPadProbeInfo* info, gpointer self);
  static GstPadProbeReturn onEncoded(GstPad* pad, GstPadProbeInfo* info, gpointer self);
  static GstPadProbeReturn onWritten(GstPad* pad, GstPadProbeInfo* info, gpointer self);

  const std::function<void()> wake_;
  GstElement* pipeline_ = nullptr;
  GstAppSrc* source_ = nullptr;  // owned by pipeline_
  FrameRate rate_;
  qint64 framesFed_ = 0;

  mutable std::mutex mutex_;
  QString failure_;  // guarded by mutex_
  std::atomic<bool> failed_{false};
  std::atomic<bool> ended_{false};
  std::atomic<qint64> framesTaken_{0};  // by the encoder
  std::atomic<qint64> framesEncoded_{0};
  std::atomic<qint64> bytesEncoded_{0};
  std::atomic<qint64> bytesWritten_{0};
};

}  // namespace korvia
