// The reading side of the pictures: follows the rings that the program makes, and checks what it says of
// them. One thread at a time.
#pragma once
#include <optional>

#include "CaptureChannel.h"
#include "SharedMemory.h"

namespace korvia {

/// A picture in shared memory.
struct CapturePicture {
  const std::uint8_t* data = nullptr;
  int width = 0;
  int height = 0;
  int stride = 0;  ///< bytes from one row to the next
  CaptureLayout layout = CaptureLayout::Opaque;
  /// Nanoseconds of the monotonic clock.
  std::int64_t stampNs = 0;
};

class PictureRing {
 public:
  /// Takes the memory of the pictures that follow; false when the message is wrong.
  bool takeRing(CapturePacket& packet);
  /// The picture of a message; nothing when it does not lie in the ring.
  std::optional<CapturePicture> pictureOf(const PictureMessage& message) const;

 private:
  RingMessage ring_;
  SharedMemory memory_;
};

}  // namespace korvia
