// A capture card whose pictures and sound come from the same connector, in one pipeline. While the card has
// no signal its pictures are left out, so that the last one with a signal stays. Control thread of the
// source; the receiver and the probe: GStreamer's threads.
#pragma once
#include <memory>

#include "CaptureSettings.h"
#include "LiveInput.h"
#include "LivePipeline.h"

namespace korvia {

class CardInput final : public LiveInput, private LiveReceiver {
 public:
  /// Both makers are there.
  CardInput(const CaptureSettings& settings, LiveReceiver& receiver);
  ~CardInput() override;

  bool start(QString& reason) override;

 private:
  bool addSound(QString& reason);
  /// False for a picture that the card made up because it has no signal.
  bool hasSignal(GstBuffer* buffer);

  void onPicture(FrameRef picture, std::int64_t stampNs, std::int64_t heldNs) override {
    receiver_.onPicture(std::move(picture), stampNs, heldNs);
  }
  void onSound(StereoSpan sound, std::int64_t stampNs, std::int64_t heldNs) override;
  void onHeldBack() override { receiver_.onHeldBack(); }
  void onStampsRestart() override { receiver_.onStampsRestart(); }
  void onLost(const QString& reason) override { receiver_.onLost(reason); }

  const CaptureSettings settings_;
  LiveReceiver& receiver_;
  std::unique_ptr<LivePipeline> pipeline_;
  bool signal_ = true;    // thread of the pictures
  char signalOrder_ = 0;  // stands for the order of the calls of the probe
};

}  // namespace korvia
