// Shows a screen of the X display. Its size and place are read again when the display is set up in another
// way.
#pragma once
#include "Capture.h"
#include "PictureSender.h"
#include "XGrabber.h"
#include "link/CaptureRequest.h"

namespace korvia {

class ScreenCapture final : public Capture {
 public:
  ScreenCapture(const CaptureRequest& request, PictureSender& sender) : request_(request), sender_(sender) {}

  QString run() override;

 private:
  const CaptureRequest request_;
  PictureSender& sender_;
};

}  // namespace korvia
