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
  const char* element = nullptr;
  const char* addressProperty = nullptr;
  QByteArray address;
  std::vector<ElementProperty> properties;
  /// Called with the element before the pipeline runs; may be empty.
  std::function<void(GstElement*)> prepare = nullptr;
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
  /// GStreamer's number for the failure, a GstResourceError; 0 for another one.
  int resourceError() const { return pipeline_.resourceError(); }
  /// What came to the sink.
  qint64 bytesWritten() const { return bytesWritten_; }
  /// What came before the newest buffer that the sink has taken. A connection may hang in a buffer, and
  /// headers are taken before there is a connection.
  qint64 bytesTaken() const { return bytesTaken_; }

 private:
  bool link(const TrackList& tracks, const RecordContainer& container, const MuxSink& sink);
  bool addTrack(const Track& track, const RecordContainer& container, GstElement* muxer);
  static GstPadProbeReturn onMuxed(GstPad* pad, GstPadProbeInfo* info, gpointer self);
  static GstPadProbeReturn onWritten(GstPad* pad, GstPadProbeInfo* info, gpointer self);

  std::atomic<qint64> bytesWritten_{0};
  std::atomic<qint64> bytesTaken_{0};
  bool mediaWritten_ = false;  // streaming thread only: the newest buffer is no header
  OutputPipeline pipeline_;
  std::vector<std::unique_ptr<PipelineInlet>> inlets_;  ///< one a track
};

}  // namespace korvia
