// Hands pictures and sound to the console: keeps the ring of shared pictures and knows which slots are free.
// Any thread.
#pragma once
#include <QString>
#include <array>
#include <optional>

#include "ThreadSafety.h"
#include "link/CaptureChannel.h"
#include "link/SharedMemory.h"

namespace korvia {

class PictureSender {
 public:
  /// A slot to be written, which is the caller's until send() or giveBack().
  struct Slot {
    std::uint32_t number = 0;
    std::uint8_t* data = nullptr;
    std::size_t offset = 0;    ///< in the memory of the ring
    int descriptor = -1;       ///< of that memory
    std::uint64_t serial = 0;  ///< of the ring; another one is in other memory
  };

  struct Format {
    int width = 0;
    int height = 0;
    CaptureLayout layout = CaptureLayout::Opaque;
    friend bool operator==(const Format&, const Format&) = default;
  };

  /// The channel outlives the sender.
  explicit PictureSender(CaptureChannel& channel) : channel_(channel) {}

  /// A slot for a picture of four bytes a pixel without gaps between the rows. Nothing when the console still
  /// has all of them, or the picture is too large. A picture of another size than those before begins a new
  /// ring; the caller has no slot then.
  std::optional<Slot> acquire(int width, int height);
  /// A picture that is the same as the one before is not handed over again, which spares the console its
  /// conversion.
  void send(const Slot& slot, const Format& format, std::int64_t stampNs);
  /// Hands the next picture over, also when it has not changed. Any thread.
  void forgetLast();
  /// There is no new picture at this time.
  void sendRepeat(std::int64_t stampNs);
  void giveBack(const Slot& slot);
  /// The console needs the slot no more.
  void onReleased(const ReleaseMessage& release);

  /// Pairs of samples, left and right, at 48 kHz.
  void sendSound(const float* samples, int frames, std::int64_t stampNs);
  void sendFailed(const QString& reason);

 private:
  static constexpr std::uint32_t kSlots = 3;

  bool makeRing(std::size_t slotBytes) REQUIRES(mutex_);
  /// Whether the picture before is the same.
  bool isRepeat(const Slot& slot, const Format& format) EXCLUDES(mutex_);

  CaptureChannel& channel_;
  Mutex mutex_;
  SharedMemory memory_ GUARDED_BY(mutex_);
  std::uint64_t serial_ GUARDED_BY(mutex_) = 0;
  std::size_t slotBytes_ GUARDED_BY(mutex_) = 0;
  std::array<bool, kSlots> used_ GUARDED_BY(mutex_) = {};
  /// What was sent last; it stays in its slot until another picture is sent.
  std::optional<Slot> last_ GUARDED_BY(mutex_);
  Format lastFormat_ GUARDED_BY(mutex_);
};

}  // namespace korvia
