#include "EncoderTable.h"

namespace korvia {

namespace {

// All encoders work without B-frames and without a look into later frames: no picture is reordered, so each
// fragment can be decoded on its own, and a packet comes soon after its frame.

// Targets join at any key frame, so the headers of the codec are in each of them.
constexpr char kHighProfile[] = "video/x-h264,stream-format=byte-stream,alignment=au,profile=high";
// Not every GPU has the high profile.
constexpr char kAnyProfile[] =
    "video/x-h264,stream-format=byte-stream,alignment=au,profile=(string){high,main,constrained-baseline}";

// The cheapest settings of x264 that keep CABAC, 8x8 transforms, deblocking and adaptive quantisation. Scene
// cuts do not make key frames, so that all GOPs have the same length, which segments of a stream need. Both
// threads work on slices of one picture: with a picture for each thread the rate control does not yet know
// the size of the picture before, and with a small buffer it stays a tenth below the bitrate. A single thread
// would save a tenth of the time and stay below too. The wide tolerance leaves the limit to that buffer
// alone. Sub-pixel refinement costs a seventh of the time and wins back the quality that the small buffer
// costs.
constexpr ElementProperty kX264[] = {
    {"pass", "cbr"},
    {"speed-preset", "superfast"},
    {"option-string", "subme=1:open-gop=0:scenecut=0:ratetol=10"},
    {"bframes", "0"},
    {"threads", "2"},
    {"sliced-threads", "true"},
    {"sync-lookahead", "0"},
};
constexpr EncoderQuantityProperty kX264Quantities[] = {
    {"bitrate", EncoderQuantity::Kbps},
    {"key-int-max", EncoderQuantity::KeyInterval},
    {"vbv-buf-capacity", EncoderQuantity::BufferMs},
};

constexpr ElementProperty kNvenc[] = {
    {"preset", "low-latency-hq"},
    {"rc-mode", "cbr"},
    {"rate-control", "cbr"},
    {"bframes", "0"},
    {"b-frames", "0"},
    {"rc-lookahead", "0"},
    {"zerolatency", "true"},
    {"zero-reorder-delay", "true"},
    {"strict-gop", "true"},
    {"aud", "true"},
};
constexpr EncoderQuantityProperty kNvencQuantities[] = {
    {"bitrate", EncoderQuantity::Kbps},
    {"max-bitrate", EncoderQuantity::Kbps},
    {"vbv-buffer-size", EncoderQuantity::BufferKbit},
    {"gop-size", EncoderQuantity::KeyInterval},
};

constexpr ElementProperty kVa[] = {
    {"rate-control", "cbr"}, {"b-frames", "0"}, {"ref-frames", "1"}, {"target-usage", "6"}, {"aud", "true"},
};
constexpr EncoderQuantityProperty kVaQuantities[] = {
    {"bitrate", EncoderQuantity::Kbps},
    {"cpb-size", EncoderQuantity::BufferKbit},
    {"key-int-max", EncoderQuantity::KeyInterval},
};

constexpr ElementProperty kQsv[] = {
    {"rate-control", "cbr"}, {"low-latency", "true"}, {"b-frames", "0"},
    {"bframes", "0"},        {"ref-frames", "1"},     {"target-usage", "6"},
};
constexpr EncoderQuantityProperty kQsvQuantities[] = {
    {"bitrate", EncoderQuantity::Kbps},
    {"max-bitrate", EncoderQuantity::Kbps},
    {"gop-size", EncoderQuantity::KeyInterval},
};

constexpr ElementProperty kVaapi[] = {
    {"rate-control", "cbr"}, {"max-bframes", "0"}, {"refs", "1"}, {"quality-level", "6"}, {"aud", "true"},
};
constexpr EncoderQuantityProperty kVaapiQuantities[] = {
    {"bitrate", EncoderQuantity::Kbps},
    {"keyframe-period", EncoderQuantity::KeyInterval},
    {"cpb-length", EncoderQuantity::BufferMs},
};

using Input = EncoderElement::Input;
using Headers = EncoderElement::Headers;

constexpr EncoderElement kSoftware{"x264enc",    "x264", Input::I420,    Headers::InKeyFrames,
                                   kHighProfile, kX264,  kX264Quantities};

// VA-API works with the GPUs of all makers and needs the driver alone. Newer chips of Intel have its
// low-power encoder only. QSV needs a runtime of its own besides. The old plugin of VA-API is no longer kept
// up.
constexpr EncoderElement kIntegrated[] = {
    {"vah264enc", "VA-API", Input::Nv12, Headers::Missing, kAnyProfile, kVa, kVaQuantities},
    {"vah264lpenc", "VA-API low power", Input::Nv12, Headers::Missing, kAnyProfile, kVa, kVaQuantities},
    {"qsvh264enc", "QSV", Input::Nv12, Headers::Missing, kAnyProfile, kQsv, kQsvQuantities},
    {"vaapih264enc", "the old VA-API plugin", Input::Nv12, Headers::Missing, kAnyProfile, kVaapi,
     kVaapiQuantities},
};

// The first one takes the GPU that is least in use; the last one is an older implementation.
constexpr EncoderElement kIndependent[] = {
    {"nvautogpuh264enc", "NVENC on any GPU", Input::Nv12, Headers::Missing, kAnyProfile, kNvenc,
     kNvencQuantities},
    {"nvcudah264enc", "NVENC", Input::Nv12, Headers::Missing, kAnyProfile, kNvenc, kNvencQuantities},
    {"nvh264enc", "NVENC by the older plugin", Input::Nv12, Headers::Missing, kAnyProfile, kNvenc,
     kNvencQuantities},
};

}  // namespace

const EncoderElement& softwareEncoder() {
  return kSoftware;
}

std::span<const EncoderElement> encodersOf(KorviaShowEncodeAccelerator accelerator) {
  switch (accelerator) {
    case EncodeAcceleratorIntegratedGpu:
      return kIntegrated;
    case EncodeAcceleratorIndependentGpu:
      return kIndependent;
    case EncodeAcceleratorSoftware:
      break;
  }
  return {};
}

}  // namespace korvia
