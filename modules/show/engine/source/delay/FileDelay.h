// A long delay, whose pictures are in a file. Its own thread writes what comes and reads ahead what is due
// soon; what the disk does not do in time is left out, and the picture before stays. Engine thread: pull and
// push; the thread of the delay: run.
#pragma once
#include <array>
#include <atomic>
#include <memory>
#include <optional>
#include <vector>

#include "DelayFile.h"
#include "DelayPlan.h"
#include "PictureDelay.h"
#include "ThreadSafety.h"
#include "engine/frame/FramePool.h"

namespace korvia {

class FileDelay final : public PictureDelay {
 public:
  /// A plan for a file.
  FileDelay(FrameSize size, const DelayPlan& plan, const QString& folder, std::int64_t reserveBytes);

  /// Works until close().
  void run() EXCLUDES(mutex_);

  FrameRef pull(int ticks) override EXCLUDES(mutex_);
  void push(const FrameRef& picture, int ticks) override EXCLUDES(mutex_);
  void close() override EXCLUDES(mutex_);
  QString failure() const override EXCLUDES(mutex_);
  std::int64_t framesHeld() const override { return held_; }
  std::int64_t framesLost() const override { return lost_; }
  int framesWaiting() const override EXCLUDES(mutex_);
  int framesReady() const override EXCLUDES(mutex_);

 private:
  // What a frame shows, instead of the number of the frame with whose picture it was stored.
  static constexpr std::int64_t kBlack = -1;
  static constexpr std::int64_t kPictureBefore = -2;
  // Few, because frames of cameras and decoders come from a few buffers.
  static constexpr int kWaitingMost = 8;
  static constexpr int kReadyMost = 8;

  struct Stored {
    std::int64_t number = 0;
    std::int64_t content = kBlack;
  };
  struct Item {
    std::int64_t number = 0;
    FrameRef picture;
    bool isPictureBefore = false;
  };
  template <int kMost>
  struct Queue {
    std::array<Item, kMost> items;
    int first = 0;
    int count = 0;

    bool isFull() const { return count == kMost; }
    Item& front() { return items[static_cast<std::size_t>(first)]; }
    void push(Item item) {
      items[static_cast<std::size_t>((first + count) % kMost)] = std::move(item);
      ++count;
    }
    Item pop() {
      Item item = std::move(front());
      first = (first + 1) % kMost;
      --count;
      return item;
    }
  };

  /// False when the delay is closed.
  bool work() EXCLUDES(mutex_);
  bool canFetch() const REQUIRES(mutex_);
  void fetch(std::int64_t number) EXCLUDES(mutex_);
  void store(const Item& item) EXCLUDES(mutex_);
  std::int64_t contentFor(const Item& item);
  bool writePicture(std::int64_t number, const Frame& picture);
  FrameRef readPicture(std::int64_t number);
  void fail(const QString& reason) EXCLUDES(mutex_);
  void noteSpeed() EXCLUDES(mutex_);

  Stored& storedAt(std::int64_t number) { return stored_[static_cast<std::size_t>(number) % stored_.size()]; }
  std::int64_t offsetOf(std::int64_t number) const { return number % plan_.places * plan_.placeBytes; }

  const DelayPlan plan_;
  const QString folder_;
  const std::int64_t reserveBytes_;
  std::atomic<std::int64_t> held_{0};
  std::atomic<std::int64_t> lost_{0};
  FrameRef current_;  // engine thread

  mutable Mutex mutex_;
  ConditionVariable wake_;
  Queue<kWaitingMost> waiting_ GUARDED_BY(mutex_);
  Queue<kReadyMost> ready_ GUARDED_BY(mutex_);
  std::int64_t number_ GUARDED_BY(mutex_) = 0;  // of the last picture that was pushed
  std::int64_t shown_ GUARDED_BY(mutex_);       // of the last picture that was pulled
  QString failure_ GUARDED_BY(mutex_);
  bool closing_ GUARDED_BY(mutex_) = false;

  // The delay's own thread.
  FramePool pool_;
  DelayFile file_;
  std::vector<std::uint8_t> bytes_;  // of one picture
  std::vector<Stored> stored_;       // by frame number
  std::int64_t lastStored_ = 0;      // number
  std::int64_t lastContent_ = kBlack;
  FrameRef lastIn_;
  std::int64_t nextFetch_ = 1;
  std::int64_t fetchedContent_ = kBlack;
  FrameRef fetched_;
  std::int64_t lateFetches_ = 0;
  std::int64_t reportedTrouble_ = 0;
  bool isSlow_ = false;
  bool writeFails_ = false;
};

}  // namespace korvia
