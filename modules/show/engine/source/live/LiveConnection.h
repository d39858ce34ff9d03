// One input of a LiveTransport and what it has delivered. Control thread of the source: start, close and the
// questions; the input's threads: the functions of LiveReceiver. What an input that was left behind still
// delivers is dropped.
#pragma once
#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>

#include "LiveInput.h"
#include "ThreadSafety.h"

namespace korvia {

/// Takes what comes through the open connection.
class LiveSink {
 public:
  virtual ~LiveSink() = default;
  virtual void onLivePicture(FrameRef picture, std::int64_t stampNs, std::int64_t arrivalNs) = 0;
  virtual void onLiveSound(StereoSpan sound, std::int64_t stampNs, std::int64_t arrivalNs) = 0;
  /// When a picture with this stamp is shown; none while that is unknown.
  virtual std::optional<std::int64_t> liveShownNs(std::int64_t stampNs) const = 0;
  virtual void onLiveStampsRestart() = 0;
  /// The state of the connection has changed: it has delivered for the first time, or is lost.
  virtual void onLiveChange() = 0;
};

class LiveConnection final : public LiveReceiver {
 public:
  /// The sink outlives the connection.
  LiveConnection(std::shared_ptr<LiveSink> sink, const LiveInputMaker& maker);
  ~LiveConnection() override;
  LiveConnection(const LiveConnection&) = delete;
  LiveConnection& operator=(const LiveConnection&) = delete;

  bool start(QString& reason) { return input_->start(reason); }
  /// Nothing reaches the sink from now on.
  void refuse() { open_ = false; }
  /// May block.
  void close() { input_.reset(); }

  bool hasDelivered() const { return delivered_; }
  bool isLost() const { return lost_; }
  /// Empty while it is not lost.
  QString reason() const;
  /// Time without pictures, or without sound when it has none; since the start when nothing has come.
  std::int64_t silentNs(std::int64_t nowNs) const;

  void onPicture(FrameRef picture, std::int64_t stampNs, std::int64_t heldNs) override;
  void onSound(StereoSpan sound, std::int64_t stampNs, std::int64_t heldNs) override;
  void onHeldBack() override { lastHeldBackNs_ = nowNs(); }
  std::optional<std::int64_t> shownNs(std::int64_t stampNs) const override;
  void onStampsRestart() override;
  void onLost(const QString& reason) override;

  /// The clock of all arrivals.
  static std::int64_t nowNs();

 private:
  void noteDelivery(std::int64_t heldNs);

  const std::shared_ptr<LiveSink> sink_;
  std::unique_ptr<LiveInput> input_;
  std::atomic<bool> open_{true};
  std::atomic<bool> delivered_{false};
  std::atomic<bool> hasPicture_{false};
  std::atomic<bool> lost_{false};
  std::atomic<std::int64_t> lastDeliveryNs_;
  std::atomic<std::int64_t> lastHeldNs_{0};      // of what was delivered last
  std::atomic<std::int64_t> lastHeldBackNs_{0};  // time; 0 when the input holds nothing back
  mutable Mutex mutex_;
  QString reason_ GUARDED_BY(mutex_);
};

}  // namespace korvia
