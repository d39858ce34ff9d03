#include "PictureSender.h"

#include <algorithm>
#include <cstring>

namespace korvia {

namespace {

constexpr int kPixelBytes = 4;
// X servers and vector instructions like pictures to begin at a page.
constexpr std::size_t kPageBytes = 4096;

}  // namespace

bool PictureSender::makeRing(std::size_t slotBytes) {
  memory_ = SharedMemory::create(slotBytes * kSlots);
  used_.fill(false);
  last_.reset();
  slotBytes_ = 0;
  if (!memory_.isOpen())
    return false;
  RingMessage ring;
  ring.serial = ++serial_;
  ring.slotBytes = slotBytes;
  ring.slotCount = kSlots;
  if (!channel_.sendHead(CaptureMessage::Ring, ring, {}, memory_.descriptor()))
    return false;
  slotBytes_ = slotBytes;
  return true;
}

std::optional<PictureSender::Slot> PictureSender::acquire(int width, int height) {
  const std::size_t bytes = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * kPixelBytes;
  const std::size_t slotBytes = (bytes + kPageBytes - 1) / kPageBytes * kPageBytes;
  const MutexLock lock(mutex_);
  if (slotBytes == 0 || slotBytes > kMostSlotBytes || (slotBytes != slotBytes_ && !makeRing(slotBytes)))
    return std::nullopt;
  Slot slot;
  while (slot.number < kSlots && (used_[slot.number] || (last_ && last_->number == slot.number)))
    ++slot.number;
  if (slot.number == kSlots)
    return std::nullopt;
  used_[slot.number] = true;
  slot.offset = slot.number * slotBytes_;
  slot.data = memory_.data() + slot.offset;
  slot.descriptor = memory_.descriptor();
  slot.serial = serial_;
  return slot;
}

bool PictureSender::isRepeat(const Slot& slot, const Format& format) {
  // Only the thread that sends changes these, so the comparison needs no lock.
  std::optional<Slot> last;
  {
    const MutexLock lock(mutex_);
    if (format == lastFormat_)
      last = last_;
    last_ = slot;
    lastFormat_ = format;
  }
  const std::size_t bytes =
      static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height) * kPixelBytes;
  return last && last->serial == slot.serial && std::memcmp(last->data, slot.data, bytes) == 0;
}

void PictureSender::forgetLast() {
  const MutexLock lock(mutex_);
  last_.reset();
}

void PictureSender::sendRepeat(std::int64_t stampNs) {
  RepeatMessage message;
  message.stampNs = stampNs;
  channel_.sendHead(CaptureMessage::Repeat, message);
}

void PictureSender::send(const Slot& slot, const Format& format, std::int64_t stampNs) {
  if (isRepeat(slot, format)) {
    giveBack(slot);
    sendRepeat(stampNs);
    return;
  }
  PictureMessage message;
  message.serial = slot.serial;
  message.stampNs = stampNs;
  message.slot = slot.number;
  message.width = format.width;
  message.height = format.height;
  message.stride = format.width * kPixelBytes;
  message.layout = format.layout;
  if (channel_.sendHead(CaptureMessage::Picture, message))
    return;
  // The receiver has not seen it, so the next one like it is no repeat.
  {
    const MutexLock lock(mutex_);
    last_.reset();
  }
  giveBack(slot);
}

void PictureSender::giveBack(const Slot& slot) {
  ReleaseMessage release;
  release.serial = slot.serial;
  release.slot = slot.number;
  onReleased(release);
}

void PictureSender::onReleased(const ReleaseMessage& release) {
  const MutexLock lock(mutex_);
  if (release.serial == serial_ && release.slot < used_.size())
    used_[release.slot] = false;
}

void PictureSender::sendSound(const float* samples, int frames, std::int64_t stampNs) {
  constexpr std::int64_t kSecondNs = 1'000'000'000;
  constexpr std::int64_t kRate = 48000;
  for (int done = 0; done < frames;) {
    const int count = std::min(frames - done, static_cast<int>(kMostSoundSamples));
    SoundMessage message;
    message.stampNs = stampNs + done * kSecondNs / kRate;
    message.samples = static_cast<std::uint32_t>(count);
    const QByteArray bytes(reinterpret_cast<const char*>(samples + done * 2),
                           static_cast<int>(sizeof(float)) * count * 2);
    channel_.sendHead(CaptureMessage::Sound, message, bytes);
    done += count;
  }
}

void PictureSender::sendFailed(const QString& reason) {
  channel_.send(CaptureMessage::Failed, reason.toUtf8());
}

}  // namespace korvia
