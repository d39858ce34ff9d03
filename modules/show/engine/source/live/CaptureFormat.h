// Chooses what a capture device shall deliver: of all formats that it offers the one that is nearest to what
// the operator wants. Pure function, any thread.
#pragma once
#include <gst/gst.h>

#include "FrameRate.h"
#include "engine/frame/Frame.h"

namespace korvia {

struct CaptureFormat {
  FrameSize size;
  FrameRate rate;

  friend bool operator==(const CaptureFormat&, const CaptureFormat&) = default;
};

struct CaptureChoice {
  /// One fixed format, raw or JPEG, which the caller unreferences; null when the device offers neither.
  GstCaps* caps = nullptr;
  CaptureFormat format;
  bool isJpeg = false;
};

/// The offered format whose size and rate differ least from what is wanted. A slower rate counts as much as a
/// smaller picture, a faster one hardly; of equals the raw one, since JPEG costs a decoder.
CaptureChoice chooseCaptureFormat(GstCaps* offered, const CaptureFormat& wanted);

}  // namespace korvia
