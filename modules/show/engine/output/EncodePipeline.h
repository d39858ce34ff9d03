// The GStreamer pipeline of a picture encoder: appsrc, x264enc, appsink. Used by the thread of the encoder
// only; GStreamer threads call the two functions and nothing else.
#pragma once
#include <gst/app/gstappsink.h>

#include <functional>
#include <memory>

#include "OutputPipeline.h"
#include "Packet.h"
#include "PipelineInlet.h"

namespace korvia {

/// What is encoded, and at which quality.
struct PictureEncoding {
  FrameSize size{1920, 1080};  ///< both sides even
  FrameRate rate;              ///< of the engine and of the stream
  int kbps = 4096;
};

class EncodePipeline {
 public:
  /// `onPacket` gets each packet and its track, in decoding order, on the streaming thread; the encoder waits
  /// for it. The packets have no tracks yet. `wake` is called from any thread when hasRoom(), isEnded() or
  /// hasFailed() may have changed. Neither may call back into the pipeline.
  EncodePipeline(std::function<void(const Track&, Packet)> onPacket, std::function<void()> wake);
  ~EncodePipeline();
  EncodePipeline(const EncodePipeline&) = delete;
  EncodePipeline& operator=(const EncodePipeline&) = delete;

  /// Builds and starts it. On failure false, with the reason in failure().
  bool open(const PictureEncoding& encoding);
  /// Whether a frame can be fed without waiting long in a queue. Takes no lock.
  bool hasRoom() const { return inlet_.hasRoom(); }
  /// A frame of the encoding's size; the index makes its time stamp. Never blocks.
  void feed(const FrameRef& frame, qint64 index);
  /// The next frame that x264 takes becomes a key frame.
  void requestKeyFrame();
  /// No more frames follow: isEnded() becomes true after the last packet.
  void endStream() { inlet_.end(); }

  bool isEnded() const { return pipeline_.isEnded(); }
  bool hasFailed() const { return pipeline_.hasFailed(); }
  QString failure() const { return pipeline_.failure(); }

 private:
  bool link();
  const Track& trackFor(GstCaps* caps);
  static GstFlowReturn onSample(GstAppSink* sink, gpointer self);

  const std::function<void(const Track&, Packet)> onPacket_;
  PictureEncoding encoding_;
  GstElement* encoder_ = nullptr;  // owned by pipeline_
  Track track_;                    // streaming thread only
  OutputPipeline pipeline_;
  PipelineInlet inlet_{pipeline_};
};

}  // namespace korvia
