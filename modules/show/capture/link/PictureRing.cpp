#include "PictureRing.h"

namespace korvia {

bool PictureRing::takeRing(CapturePacket& packet) {
  const std::optional<RingMessage> ring = packet.head<RingMessage>();
  if (!ring || ring->slotCount == 0 || ring->slotCount > kMostSlots || ring->slotBytes == 0 ||
      ring->slotBytes > kMostSlotBytes)
    return false;
  memory_ = SharedMemory::open(std::move(packet.descriptor), ring->slotCount * ring->slotBytes);
  ring_ = *ring;
  return memory_.isOpen();
}

std::optional<CapturePicture> PictureRing::pictureOf(const PictureMessage& message) const {
  constexpr std::int64_t kPixelBytes = 4;
  if (!memory_.isOpen() || message.serial != ring_.serial || message.slot >= ring_.slotCount ||
      message.width <= 0 || message.height <= 0 || message.stride < message.width * kPixelBytes ||
      static_cast<std::uint64_t>(message.stride) * static_cast<std::uint64_t>(message.height) >
          ring_.slotBytes)
    return std::nullopt;
  if (message.layout != CaptureLayout::Opaque && message.layout != CaptureLayout::PremultipliedAlpha)
    return std::nullopt;
  CapturePicture picture;
  picture.data = memory_.data() + message.slot * ring_.slotBytes;
  picture.width = message.width;
  picture.height = message.height;
  picture.stride = message.stride;
  picture.layout = message.layout;
  picture.stampNs = message.stampNs;
  return picture;
}

}  // namespace korvia
