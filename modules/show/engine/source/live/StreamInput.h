// A stream from the network: finds out what comes under the address, takes the first picture and the first
// sound of it, and decodes them without the delay of frame threads. Control thread of the source, except the
// callbacks: GStreamer's threads.
#pragma once
#include <vector>

#include "LiveInput.h"
#include "LivePipeline.h"
#include "StreamAddress.h"
#include "ThreadSafety.h"

namespace korvia {

class StreamInput final : public LiveInput {
 public:
  StreamInput(const StreamAddress& address, FrameSize renderSize, LiveReceiver& receiver);
  ~StreamInput() override;

  bool start(QString& reason) override;

 private:
  enum class Media { None, Picture, Sound };

  bool makeSource(QString& reason);
  bool makeDemuxer(QString& reason);
  /// A coded stream of the demuxer or of the source.
  void onStream(GstPad* pad);
  void onDecoded(GstPad* pad);
  /// True for the first stream of its media.
  bool choose(Media media) EXCLUDES(mutex_);
  /// False with a reason, or without one when the input is being closed.
  bool decode(GstPad* pad, Media media, QString& reason);
  void onElementAdded(GstElement* element);
  void noteDuration();
  void closeDecoders() EXCLUDES(mutex_);

  static Media mediaOf(GstCaps* caps);

  const StreamAddress address_;
  GstElement* source_ = nullptr;   // owned by the pipeline, as the one below
  GstElement* demuxer_ = nullptr;  // null when the source gives the streams itself
  Mutex mutex_;
  bool hasPicture_ GUARDED_BY(mutex_) = false;
  bool hasSound_ GUARDED_BY(mutex_) = false;
  bool closing_ GUARDED_BY(mutex_) = false;
  std::vector<GstElement*> decoders_ GUARDED_BY(mutex_);  // bins; owned by the pipeline
  // Goes first, and ends the threads that use the members above.
  LivePipeline live_;
};

}  // namespace korvia
