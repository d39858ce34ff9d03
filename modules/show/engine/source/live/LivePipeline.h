// The GStreamer pipeline of a live input: turns decoded pictures and sound into frames and samples for the
// receiver, and its errors into a loss. The input adds what comes before to pipeline(), and links it. Control
// thread of the source, except the callbacks: GStreamer's threads, those of pictures and of sound at the same
// time.
#pragma once
#include <gst/gst.h>

#include <QString>
#include <atomic>
#include <optional>

#include "CodedHold.h"
#include "LiveInput.h"
#include "StampPacer.h"
#include "engine/source/StereoSoundMaker.h"
#include "engine/source/VideoFrameMaker.h"

namespace korvia {

class LivePipeline {
 public:
  enum class Pacing {
    AsItComes,
    /// Data wait until their stamps are due, for inputs that deliver faster than the pictures are shown.
    ByStamps
  };

  /// `latencyNs` is that of the source's clock, for an input that holds coded pictures back until they are
  /// nearly due; 0 for one that does not.
  LivePipeline(FrameSize renderSize, LiveReceiver& receiver, std::int64_t latencyNs = 0);
  /// Stops; returns when no call of the receiver runs any more.
  ~LivePipeline();
  LivePipeline(const LivePipeline&) = delete;
  LivePipeline& operator=(const LivePipeline&) = delete;

  /// Makes the pipeline and its sinks; false with a reason when GStreamer or an element is missing.
  bool make(QString& reason);
  GstElement* pipeline() const { return pipeline_; }
  /// Makes an element and adds it. Null with a reason when it is missing; owned by the pipeline.
  GstElement* add(const char* factory, QString& reason);
  /// Where decoded pictures and decoded sound go. Any format. The caller unreferences the pads.
  GstPad* pictureInlet() const { return gst_element_get_static_pad(pictureSink_, "sink"); }
  GstPad* soundInlet() const { return gst_element_get_static_pad(soundConverter_, "sink"); }
  void setPacing(Pacing pacing) { pacing_ = pacing; }
  /// Holds the coded pictures back that pass through this queue. Any thread, before data reach it.
  void holdBack(GstElement* queue);
  bool play(QString& reason);
  /// Ends waits for pacing and lets nothing through any more. To be called before elements are stopped.
  void close();

  /// Tells the receiver that the input is lost. Any thread.
  void lose(const QString& reason) { receiver_.onLost(reason); }

 private:
  bool makePictureSink(QString& reason);
  bool makeSoundSink(QString& reason);
  void onPicture(GstSample* sample);
  void onSound(GstSample* sample);
  /// Waits until data with this stamp may pass. How long they were held back; none when the pipeline is being
  /// closed.
  std::optional<std::int64_t> pace(std::int64_t stampNs);
  void onCodedArrival(GstPad* pad, GstPadProbeInfo* info);
  void onCodedDeparture(GstPad* pad, GstPadProbeInfo* info);
  void onError(GstMessage* message);

  static GstBusSyncReply onMessage(GstBus* bus, GstMessage* message, gpointer self);

  LiveReceiver& receiver_;
  GstElement* pipeline_ = nullptr;
  GstElement* pictureSink_ = nullptr;     // owned by pipeline_, as the one below
  GstElement* soundConverter_ = nullptr;  // the first element of the sound's way
  std::atomic<Pacing> pacing_{Pacing::AsItComes};
  std::atomic<bool> closing_{false};
  std::atomic<bool> hasPicture_{false};
  CodedHold hold_;
  StampPacer pacer_;
  VideoFrameMaker frames_;   // thread of the pictures
  StereoSoundMaker sounds_;  // thread of the sound
  char codedOrder_ = 0;      // stand for the order of the callbacks of coded pictures, of pictures and sound
  char pictureOrder_ = 0;
  char soundOrder_ = 0;
};

}  // namespace korvia
