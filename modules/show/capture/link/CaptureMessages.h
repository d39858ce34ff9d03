// The messages between the console and the capture program. Both are built together, so a message is a kind,
// the bytes of one of these structs, and further bytes where the struct says so. Plain values, any thread.
#pragma once
#include <cstdint>

namespace korvia {

enum class CaptureMessage : std::uint32_t {
  // To the program.
  Begin,        ///< CaptureRequest::toBytes()
  Release,      ///< ReleaseMessage
  MouseMove,    ///< PointerMessage
  MouseButton,  ///< PointerMessage
  Wheel,        ///< PointerMessage
  Key,          ///< KeyMessage and the name of the key
  Load,         ///< the address, UTF-8
  Resize,       ///< ResizeMessage
  // From the program.
  Unconfined,  ///< the kernel cannot keep it from files
  Ring,        ///< RingMessage, with the descriptor of the memory
  Picture,     ///< PictureMessage
  Repeat,      ///< RepeatMessage
  Sound,       ///< SoundMessage and the samples: floats of 48 kHz, left and right in turn
  Failed,      ///< the reason, UTF-8; the program ends
};

/// Blue, green, red and a fourth byte for each pixel: nothing, or alpha by which the colours are multiplied
/// already.
enum class CaptureLayout : std::uint32_t { Opaque, PremultipliedAlpha };

/// The memory of the pictures that follow: `slotCount` pictures of at most `slotBytes`.
struct RingMessage {
  std::uint64_t serial = 0;  ///< grows with each ring
  std::uint64_t slotBytes = 0;
  std::uint32_t slotCount = 0;
};

/// A slot is the receiver's from its picture to its release.
struct PictureMessage {
  std::uint64_t serial = 0;  ///< of the ring
  std::int64_t stampNs = 0;
  std::uint32_t slot = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t stride = 0;  ///< bytes from one row to the next
  CaptureLayout layout = CaptureLayout::Opaque;
};

/// The picture before is still the right one.
struct RepeatMessage {
  std::int64_t stampNs = 0;
};

struct ReleaseMessage {
  std::uint64_t serial = 0;
  std::uint32_t slot = 0;
};

struct SoundMessage {
  std::int64_t stampNs = 0;
  std::uint32_t samples = 0;  ///< of each side
};

struct PointerMessage {
  double x = 0;  ///< pixels of the page
  double y = 0;
  double deltaX = 0;  ///< of the wheel, in pixels
  double deltaY = 0;
  std::int32_t button = 0;  ///< 1 left, 2 middle, 3 right
  std::int32_t pressed = 0;
};

/// The next picture is told whole.
struct ResizeMessage {
  std::int32_t width = 0;  ///< of the page, in pixels
  std::int32_t height = 0;
};

struct KeyMessage {
  std::int32_t pressed = 0;
};

/// Samples of each side in one message.
inline constexpr std::uint32_t kMostSoundSamples = 2048;
inline constexpr std::uint32_t kMostSlots = 8;
/// Larger pictures are not taken.
inline constexpr std::uint64_t kMostSlotBytes = 64ULL * 1024 * 1024 * 4;
/// The longest message.
inline constexpr std::uint32_t kMostMessageBytes = 64 * 1024;

}  // namespace korvia
