// The GStreamer pipeline of one film: it reads a file and delivers decoded pictures and sound. The film's
// control thread makes, seeks and destroys it, and those calls may block. GStreamer's threads call the
// listener, those of pictures and of sound at the same time.
#pragma once
#include <gst/gst.h>

#include <QString>
#include <atomic>
#include <string>
#include <vector>

#include "Source.h"
#include "ThreadSafety.h"

namespace korvia {

/// Receives the pictures, the sound and the events of a pipeline.
class FilmPipelineListener {
 public:
  virtual ~FilmPipelineListener() = default;
  /// A decoded picture. The time stamps of its buffer refer to the segment of the sample. The call may wait.
  virtual void onPicture(GstSample* sample) = 0;
  /// How many of the pictures that are decoded next are needed.
  virtual DecodeRate decodeRate() = 0;
  /// Pictures have to be turned by this value of GST_TAG_IMAGE_ORIENTATION.
  virtual void onOrientation(const char* tag) = 0;
  virtual void onFlushStart() = 0;
  virtual void onFlushStop() = 0;
  virtual void onEndOfStream() = 0;
  /// Whether the film has sound; before the first picture and the first sound.
  virtual void onSoundFound(bool hasSound) = 0;
  /// Decoded sound, interleaved floats of 48 kHz. The call may wait.
  virtual void onSound(GstSample* sample) = 0;
  virtual void onSoundFlushStart() = 0;
  virtual void onSoundFlushStop() = 0;
  virtual void onSoundEnd() = 0;
  /// No sound comes any more, because it cannot be decoded.
  virtual void onSoundFailure(const QString& reason) = 0;
  /// durationNs() may have changed.
  virtual void onDurationChanged() = 0;
  virtual void onFailure(const QString& reason) = 0;
};

class FilmPipeline {
 public:
  explicit FilmPipeline(FilmPipelineListener& listener);
  /// Stops; returns when no listener call is running any more. The listener does not wait any more by then.
  ~FilmPipeline();
  FilmPipeline(const FilmPipeline&) = delete;
  FilmPipeline& operator=(const FilmPipeline&) = delete;

  /// Starts to decode; false with a reason when the path is no readable file or a plugin is missing. Never
  /// waits for the other end of a FIFO.
  bool start(const QString& path, QString& reason);
  /// Flushes and continues exactly at `positionNs`; false when the film cannot be seeked.
  bool seek(std::int64_t positionNs);
  /// 0 when unknown.
  std::int64_t durationNs() const;
  /// False for a FIFO or a device, which can be read only once.
  bool isRegularFile() const { return regularFile_; }

 private:
  GstElement* makeReader(const QString& path, QString& reason);
  bool makePictureChain(QString& reason);
  void onPadAdded(GstPad* pad);
  /// True when pictures are taken from the pad that was added: they come from the first one.
  bool takePicture(GstPad* pad);
  void onPadRemoved(GstPad* pad);
  void linkPicture(GstPad* pad);
  void keepSoundPad(GstPad* pad) EXCLUDES(streamMutex_);
  /// Decodes the sound of the pad; false when an element is missing.
  bool linkSound(GstPad* pad, QString& reason);
  GstElement* makeSoundSink(QString& reason);
  /// Takes the pads of sound that were added since the last call; the caller unreferences them.
  std::vector<GstPad*> takeSoundPads() EXCLUDES(streamMutex_);
  void linkSounds(const std::vector<GstPad*>& pads);
  void stopSound() EXCLUDES(streamMutex_);
  bool isInSound(GstObject* element) EXCLUDES(streamMutex_);
  bool wantsDecoding(GstPad* pad, GstCaps* caps);
  void onElementAdded(GstElement* element);
  /// At the reduced rate, pictures that no other one refers to do not reach the decoder.
  void thinWhatGoesInto(GstElement* decoder);
  GstPadProbeReturn onSinkProbe(GstPad* pad, GstPadProbeInfo* info);
  GstPadProbeReturn onSoundProbe(GstPad* pad, GstPadProbeInfo* info);
  void fail(const QString& reason);
  void failSound(const QString& reason);
  void onError(GstMessage* message);
  void onNoMorePads();

  static GstBusSyncReply onMessage(GstBus* bus, GstMessage* message, gpointer self);

  FilmPipelineListener& listener_;
  GstElement* pipeline_ = nullptr;
  GstElement* decoder_ = nullptr;  // owned by pipeline_, as the ones below
  GstElement* pictureSink_ = nullptr;
  int fd_ = -1;
  bool regularFile_ = true;
  std::atomic<bool> hasPicture_{false};
  std::atomic<bool> failed_{false};
  std::atomic<bool> soundFailed_{false};
  std::atomic<bool> closing_{false};  // set under streamMutex_
  char soundOrder_ = 0;  // stands for the order of the sound's callbacks, which run beside the others
  Mutex streamMutex_;
  std::string pictureStream_ GUARDED_BY(streamMutex_);
  GstPad* picturePad_ GUARDED_BY(streamMutex_) = nullptr;  // the decoder's linked pad; compared only
  bool groupIsComplete_ GUARDED_BY(streamMutex_) = false;
  std::vector<GstPad*> soundPads_ GUARDED_BY(streamMutex_);  // referenced; not linked yet
  // The decoders of sound, the one in use last. Owned by pipeline_; compared only.
  std::vector<GstElement*> soundBins_ GUARDED_BY(streamMutex_);
};

}  // namespace korvia
