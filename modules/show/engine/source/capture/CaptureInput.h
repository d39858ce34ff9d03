// An input that a run of the capture program delivers: a page, a window or a screen. Source's control thread:
// start and the destructor. The receiver is called on the thread of the CaptureProcess.
#pragma once
#include <gst/gst.h>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "CaptureProcess.h"
#include "engine/source/VideoFrameMaker.h"
#include "engine/source/live/LiveInput.h"

namespace korvia {

class CaptureInput final : public LiveInput, private CaptureListener {
 public:
  /// `windowIsGone` becomes true when the window of the request has been closed.
  CaptureInput(const CaptureRequest& request, FrameSize renderSize,
               std::shared_ptr<std::atomic<bool>> windowIsGone, LiveReceiver& receiver);
  ~CaptureInput() override;

  bool start(QString& reason) override;
  /// Of the program; 0 when it does not run.
  qint64 processId() const { return process_ ? process_->processId() : 0; }

 private:
  /// What the caps of a picture depend on.
  struct Format {
    int width = 0;
    int height = 0;
    CaptureLayout layout = CaptureLayout::Opaque;
    friend bool operator==(const Format&, const Format&) = default;
  };

  void onCapturePicture(const CapturePicture& picture) override;
  void onCaptureRepeat(std::int64_t stampNs) override;
  void onCaptureSound(const float* samples, int frames, std::int64_t stampNs) override;
  void onCaptureEnded(const QString& reason) override;
  void adaptTo(const Format& format);

  const CaptureRequest request_;
  const std::shared_ptr<std::atomic<bool>> windowIsGone_;
  LiveReceiver& receiver_;
  // The thread of the process.
  VideoFrameMaker opaqueMaker_;
  VideoFrameMaker alphaMaker_;
  std::optional<Format> format_;
  GstCaps* caps_ = nullptr;
  FrameRef last_;
  std::vector<float> left_;
  std::vector<float> right_;
  // Ends its thread before the members above go.
  std::unique_ptr<CaptureProcess> process_;
};

}  // namespace korvia
