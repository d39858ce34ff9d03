// A camera and its sound device, which have pipelines of their own and the same clock. The pictures decide
// whether the input is lost. Control thread of the source.
#pragma once
#include <memory>

#include "CaptureSettings.h"
#include "CaptureSound.h"
#include "LiveInput.h"
#include "LivePipeline.h"

namespace korvia {

class DeviceInput final : public LiveInput {
 public:
  DeviceInput(const CaptureSettings& settings, LiveReceiver& receiver);

  bool start(QString& reason) override;

 private:
  bool startPictures(std::int64_t baseNs, QString& reason);

  const CaptureSettings settings_;
  LiveReceiver& receiver_;
  std::unique_ptr<LivePipeline> pictures_;
  std::unique_ptr<CaptureSound> sound_;
};

}  // namespace korvia
