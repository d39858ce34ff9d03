// The GStreamer pipeline of a picture encoder: appsrc, the encoder, appsink. Used by the thread that feeds it
// only; GStreamer threads call the two functions and nothing else.
#pragma once
#include <gst/app/gstappsink.h>

#include <atomic>
#include <deque>
#include <functional>
#include <memory>

#include "EncoderTable.h"
#include "Nv12Export.h"
#include "OutputPipeline.h"
#include "Packet.h"
#include "PipelineInlet.h"

namespace korvia {

/// What is encoded, and at which quality.
struct PictureEncoding {
  FrameSize size{1920, 1080};  ///< both sides even
  FrameRate rate;              ///< of the engine and of the stream
  int kbps = 4096;

  friend bool operator==(const PictureEncoding&, const PictureEncoding&) = default;
};

/// A frame on its way to an encoder.
struct FedFrame {
  enum class Key { IfItsTurn, Now };

  FrameRef frame;
  qint64 index = 0;  ///< render frames since the start of the encoder
  Key key = Key::IfItsTurn;
};

class EncodePipeline {
 public:
  /// `onPacket` gets each packet and its track, in decoding order, on the streaming thread; the encoder waits
  /// for it. The packets have no tracks yet. `wake` is called from any thread when hasRoom(), isEnded() or
  /// hasFailed() may have changed. Neither may call back into the pipeline.
  EncodePipeline(const EncoderElement& encoder, std::function<void(const Track&, Packet)> onPacket,
                 std::function<void()> wake);
  ~EncodePipeline();
  EncodePipeline(const EncodePipeline&) = delete;
  EncodePipeline& operator=(const EncodePipeline&) = delete;

  /// Builds and starts it. `generation` counts the encoders of the stream. On failure false, with the reason
  /// in failure().
  bool open(const PictureEncoding& encoding, int generation = 0);
  /// Whether a frame can be fed without waiting long in a queue. Takes no lock.
  bool hasRoom() const { return inlet_.hasRoom(); }
  /// A frame of the encoding's size; the index makes its time stamp. Never blocks.
  void feed(const FedFrame& fed);
  /// No more frames follow: isEnded() becomes true after the last packet.
  void endStream() { inlet_.end(); }
  /// Stops without the packets of the last frames. Returns these frames, the oldest first; none of x264,
  /// which is not replaced.
  std::deque<FedFrame> stop();

  const EncoderElement& encoder() const { return element_; }
  bool isEnded() const { return pipeline_.isEnded(); }
  bool hasFailed() const { return pipeline_.hasFailed(); }
  QString failure() const { return pipeline_.failure(); }

 private:
  bool link();
  const Track& trackFor(GstCaps* caps);
  static GstPadProbeReturn onFrame(GstPad* pad, GstPadProbeInfo* info, gpointer encoder);
  static GstFlowReturn onSample(GstAppSink* sink, gpointer self);

  GstBuffer* bufferOf(const FrameRef& frame);
  void forgetFinished();

  const EncoderElement& element_;
  const std::function<void(const Track&, Packet)> onPacket_;
  PictureEncoding encoding_;
  int generation_ = 0;
  GstElement* encoder_ = nullptr;     // owned by pipeline_
  std::unique_ptr<Nv12Export> nv12_;  // null when the encoder takes the frames as they are
  std::deque<FedFrame> unfinished_;   // without a packet so far, and some more
  qint64 fed_ = 0;
  qint64 keyInterval_ = 0;
  qint64 keyIndex_ = 0;  // of the newest key frame that was fed
  std::atomic<qint64> packets_{0};
  Track track_;  // streaming thread only
  OutputPipeline pipeline_;
  PipelineInlet inlet_{pipeline_};
};

}  // namespace korvia
