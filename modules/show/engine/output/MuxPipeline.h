// The GStreamer side of a target: packets through a parser and a muxer into a sink element. Used by the
// target's own thread only; GStreamer's threads call the wake function, nothing else.
#pragma once
#include <QByteArray>
#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "OutputPipeline.h"
#include "Packet.h"
#include "PipelineInlet.h"
#include "RecordContainer.h"

namespace korvia {

/// The element at the end of a pipeline.
struct MuxSink {
  const char* element;
  const char* addressProperty;
  QByteArray address;
  std::vector<ElementProperty> properties;
};

class MuxPipeline {
 public:
  /// `wake` is called from any thread when hasRoom(), isEnded() or hasFailed() may have changed. It must not
  /// call back into the pipeline.
  explicit MuxPipeline(std::function<void()> wake);
  /// Stops without an end of the stream; blocks until the sink has taken what is being written.
  ~MuxPipeline();
  MuxPipeline(const MuxPipeline&) = delete;
  MuxPipeline& operator=(const MuxPipeline&) = delete;

  /// Builds and starts it. On failure false, with the reason in failure().
  bool open(const TrackList& tracks, const RecordContainer& container, const MuxSink& sink);
  /// Whether a packet can be fed without it being queued for long. Takes no lock.
  bool hasRoom() const;
  /// Never blocks.
  void feed(const Packet& packet);
  /// No more packets: isEnded() becomes true when the sink has taken all.
  void endStream();

  bool isEnded() const { return pipeline_.isEnded(); }
  bool hasFailed() const { return pipeline_.hasFailed(); }
  QString failure() const { return pipeline_.failure(); }
  qint64 bytesWritten() const { return bytesWritten_; }

 private:
  bool link(const TrackList& tracks, const RecordContainer& container, const MuxSink& sink);
  bool addTrack(const Track& track, const RecordContainer& container, GstElement* muxer);
  static GstPadProbeReturn onWritten(GstPad* pad, GstPadProbeInfo* info, gpointer self);

  std::atomic<qint64> bytesWritten_{0};
  OutputPipeline pipeline_;
  std::vector<std::unique_ptr<PipelineInlet>> inlets_;  ///< one a track
};

}  // namespace korvia
