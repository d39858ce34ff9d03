// The GStreamer pipeline of a sound encoder: appsrc, AAC encoder, appsink. Used by the thread of the slot's
// encoder only; GStreamer threads call the two functions and nothing else.
#pragma once
#include <gst/app/gstappsink.h>

#include <functional>
#include <span>

#include "OutputPipeline.h"
#include "Packet.h"
#include "PipelineInlet.h"

namespace korvia {

class SoundEncodePipeline {
 public:
  static constexpr int kPacketSamples = 1024;

  /// `onPacket` gets each packet and its track on the streaming thread; the encoder waits for it. The packets
  /// have no tracks yet. `wake` is called from any thread when hasRoom(), isEnded() or hasFailed() may have
  /// changed. Neither may call back into the pipeline.
  SoundEncodePipeline(std::function<void(const Track&, Packet)> onPacket, std::function<void()> wake);
  ~SoundEncodePipeline();
  SoundEncodePipeline(const SoundEncodePipeline&) = delete;
  SoundEncodePipeline& operator=(const SoundEncodePipeline&) = delete;

  /// Builds and starts it. `firstSample` is the number of the first sample that will be fed; the time stamps
  /// of the packets are those of their samples. On failure false, with the reason in failure().
  bool open(int kbps, qint64 firstSample);
  bool hasRoom() const { return inlet_.hasRoom(); }
  /// 48 kHz, left first. Copies the samples and never blocks.
  void feed(std::span<const float> interleaved);
  /// Number of the sample that has to be fed next.
  qint64 nextSample() const { return nextSample_; }
  /// No more sound follows: isEnded() becomes true after the last packet.
  void endStream() { inlet_.end(); }

  bool isEnded() const { return pipeline_.isEnded(); }
  bool hasFailed() const { return pipeline_.hasFailed(); }
  QString failure() const { return pipeline_.failure(); }

 private:
  bool link();
  static GstFlowReturn onSample(GstAppSink* sink, gpointer self);

  const std::function<void(const Track&, Packet)> onPacket_;
  int kbps_ = 0;
  qint64 firstSample_ = 0;
  qint64 nextSample_ = 0;
  qint64 packets_ = 0;  // streaming thread only, as the next one
  Track track_;
  OutputPipeline pipeline_;
  PipelineInlet inlet_{pipeline_};
};

}  // namespace korvia
