#include "CardInput.h"

#include <utility>

#include "CapturePipeline.h"
#include "engine/EngineLog.h"
#include "engine/HappensBefore.h"
#include "engine/source/GstInit.h"

namespace korvia {

CardInput::CardInput(const CaptureSettings& settings, LiveReceiver& receiver)
    : settings_(settings), receiver_(receiver) {}

CardInput::~CardInput() = default;

bool CardInput::start(QString& reason) {
  if (!startGStreamer()) {
    reason = QStringLiteral("gstreamer does not start");
    return false;
  }
  pipeline_ = std::make_unique<LivePipeline>(settings_.renderSize, static_cast<LiveReceiver&>(*this));
  if (!pipeline_->make(reason))
    return false;
  GstElement* pictures = settings_.makePictures(reason);
  if (!pictures)
    return false;
  addAndRelease(*pipeline_, pictures);
  annotateHappensBefore(&signalOrder_);
  GstPad* pad = gst_element_get_static_pad(pictures, "src");
  gst_pad_add_probe(
      pad, GST_PAD_PROBE_TYPE_BUFFER,
      [](GstPad*, GstPadProbeInfo* info, gpointer self) {
        auto* card = static_cast<CardInput*>(self);
        const HappensBeforeScope scope(&card->signalOrder_);
        return card->hasSignal(GST_PAD_PROBE_INFO_BUFFER(info)) ? GST_PAD_PROBE_OK : GST_PAD_PROBE_DROP;
      },
      this, nullptr);
  gst_object_unref(pad);
  if (!linkPictures(*pipeline_, pictures, settings_, reason) || !addSound(reason))
    return false;
  useCommonClock(*pipeline_, commonClockNs());
  return pipeline_->play(reason);
}

bool CardInput::addSound(QString& reason) {
  GstElement* sound = settings_.makeSound(reason);
  if (!sound)
    return false;
  addAndRelease(*pipeline_, sound);
  if (linkToPad(sound, pipeline_->soundInlet()))
    return true;
  reason = QStringLiteral("card has no sound that can be heard");
  return false;
}

bool CardInput::hasSignal(GstBuffer* buffer) {
  const bool signal = !GST_BUFFER_FLAG_IS_SET(buffer, GST_BUFFER_FLAG_GAP);
  if (std::exchange(signal_, signal) != signal) {
    if (signal)
      qCInfo(logSource, "%s has a signal again", qUtf8Printable(settings_.name));
    else
      qCWarning(logSource, "%s has no signal", qUtf8Printable(settings_.name));
  }
  return signal;
}

void CardInput::onSound(StereoSpan sound, std::int64_t stampNs, std::int64_t heldNs) {
  applySides(settings_.sides, sound);
  receiver_.onSound(sound, stampNs, heldNs);
}

}  // namespace korvia
