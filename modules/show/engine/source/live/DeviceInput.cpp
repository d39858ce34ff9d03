#include "DeviceInput.h"

#include "CapturePipeline.h"
#include "engine/source/GstInit.h"

namespace korvia {

DeviceInput::DeviceInput(const CaptureSettings& settings, LiveReceiver& receiver)
    : settings_(settings), receiver_(receiver) {}

bool DeviceInput::start(QString& reason) {
  if (!settings_.makePictures && !settings_.makeSound) {
    reason = QStringLiteral("no device is chosen");
    return false;
  }
  if (!startGStreamer()) {
    reason = QStringLiteral("gstreamer does not start");
    return false;
  }
  const std::int64_t baseNs = commonClockNs();
  if (settings_.makePictures && !startPictures(baseNs, reason))
    return false;
  if (settings_.makeSound)
    sound_ = std::make_unique<CaptureSound>(settings_, baseNs, receiver_);
  return true;
}

bool DeviceInput::startPictures(std::int64_t baseNs, QString& reason) {
  pictures_ = std::make_unique<LivePipeline>(settings_.renderSize, receiver_);
  if (!pictures_->make(reason))
    return false;
  GstElement* camera = settings_.makePictures(reason);
  if (!camera)
    return false;
  addAndRelease(*pictures_, camera);
  if (!linkPictures(*pictures_, camera, settings_, reason))
    return false;
  useCommonClock(*pictures_, baseNs);
  return pictures_->play(reason);
}

}  // namespace korvia
