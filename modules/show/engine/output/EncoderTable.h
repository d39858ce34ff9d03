// The H.264 encoders that an output may use, and how they are set. A table of constants, any thread.
#pragma once
#include <span>

#include "ElementProperty.h"
#include "tagKorviaShowOutputParam.h"

namespace korvia {

/// What the settings of an output say, as the value of a property.
enum class EncoderQuantity {
  Kbps,
  KeyInterval,  ///< frames from key frame to key frame
  BufferKbit,   ///< of the rate control
  BufferMs,
};

struct EncoderQuantityProperty {
  const char* name;
  EncoderQuantity quantity;
};

struct EncoderElement {
  enum class Input { I420, Nv12 };
  enum class Headers {
    InKeyFrames,  ///< the encoder repeats them there
    Missing,      ///< a parser has to put them into each key frame
  };

  const char* factory;
  const char* name;  ///< in the log
  Input input;
  Headers headers;
  const char* caps;  ///< of its output
  /// Names differ between versions: a property that the element does not have is left out.
  std::span<const ElementProperty> properties;
  std::span<const EncoderQuantityProperty> quantities;
};

/// x264, which every machine has.
const EncoderElement& softwareEncoder();
/// The encoders of an accelerator, the one to try first at the beginning; none for the CPU.
std::span<const EncoderElement> encodersOf(KorviaShowEncodeAccelerator accelerator);

}  // namespace korvia
