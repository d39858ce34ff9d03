// Shows a window of the X display, also where others cover it or it lies beside the screen. Ends when the
// window is closed.
#pragma once
#include <optional>

#include "Capture.h"
#include "PictureSender.h"
#include "XGrabber.h"
#include "link/CaptureRequest.h"

namespace korvia {

class WindowCapture final : public Capture {
 public:
  WindowCapture(const CaptureRequest& request, PictureSender& sender) : request_(request), sender_(sender) {}

  QString run() override;

 private:
  const CaptureRequest request_;
  PictureSender& sender_;
};

}  // namespace korvia
