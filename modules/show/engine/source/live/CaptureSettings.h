// What is captured, and by which elements. Plain values; the makers are called on the threads of the inputs
// and may block.
#pragma once
#include <gst/gst.h>

#include <QString>
#include <functional>

#include "CaptureFormat.h"
#include "SoundSides.h"

namespace korvia {

/// Makes the element that opens a device; the caller has a reference to it. Null with a reason when the
/// device is not there.
using ElementMaker = std::function<GstElement*(QString& reason)>;

enum class Interlaced { MakeProgressive, AsItComes };

struct CaptureSettings {
  FrameSize renderSize;
  CaptureFormat wanted;
  Interlaced interlaced = Interlaced::MakeProgressive;
  int sampleRate = 48000;
  SoundSides sides = SoundSides::AsTheyAre;
  /// Empty for a source without pictures, or without sound. Pictures and sound have their own elements.
  ElementMaker makePictures;
  ElementMaker makeSound;
  /// For the log.
  QString name;
};

}  // namespace korvia
