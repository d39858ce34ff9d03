// Packets without an encoder, and a writer that keeps what it gets.
#pragma once
#include <QVector>
#include <condition_variable>
#include <memory>
#include <mutex>

#include "engine/output/TargetWriter.h"

namespace korvia::test {

inline constexpr qint64 kFrameNs = 40'000'000;

/// Packet `index` of a stream of 25 pictures a second.
inline Packet packetOf(qint64 index, bool keyFrame, int bytes = 100) {
  static const auto tracks = std::make_shared<const TrackList>(TrackList{Track{}});
  Packet packet;
  packet.tracks = tracks;
  packet.data = holdBuffer(gst_buffer_new_allocate(nullptr, static_cast<gsize>(bytes), nullptr));
  packet.bytes = bytes;
  packet.ptsNs = index * kFrameNs;
  packet.dtsNs = packet.ptsNs;
  packet.durationNs = kFrameNs;
  packet.keyFrame = keyFrame;
  return packet;
}

/// What a MemoryWriter has got, and what it is to do; outlives the target.
class WriterNotes {
 public:
  QVector<qint64> ptsNs() const { return locked(ptsNs_); }
  QVector<bool> keyFrames() const { return locked(keyFrames_); }
  QVector<qint64> bytes() const { return locked(bytes_); }
  TargetOutcome outcome() const { return locked(outcome_); }
  /// How often the target has asked whether it may go on.
  int checks() const { return locked(checks_); }
  /// From now on the target's thread hangs in write().
  void block() { set(blocked_, true); }
  void release() { set(blocked_, false); }
  bool waitBlocked() {
    std::unique_lock lock(mutex_);
    return changed_.wait_for(lock, std::chrono::seconds(10), [this] { return hanging_; });
  }
  /// write() fails from this packet on.
  void failAt(int packet) { set(failAt_, packet); }

 private:
  friend class MemoryWriter;

  template <typename Value>
  Value locked(const Value& value) const {
    std::lock_guard lock(mutex_);
    return value;
  }
  template <typename Value>
  void set(Value& value, Value to) {
    std::lock_guard lock(mutex_);
    value = to;
    changed_.notify_all();
  }

  mutable std::mutex mutex_;
  std::condition_variable changed_;  // all below guarded by mutex_
  QVector<qint64> ptsNs_;
  QVector<bool> keyFrames_;
  QVector<qint64> bytes_;
  TargetOutcome outcome_;
  bool blocked_ = false;
  bool hanging_ = false;
  int failAt_ = -1;
  int checks_ = 0;
};

class MemoryWriter : public TargetWriter {
 public:
  explicit MemoryWriter(std::shared_ptr<WriterNotes> notes) : notes_(std::move(notes)) {}

  bool open(Wake) override { return true; }
  QString location() const override { return QStringLiteral("memory"); }
  bool hasRoom() const override { return true; }
  void write(const Packet& packet) override {
    std::unique_lock lock(notes_->mutex_);
    notes_->hanging_ = notes_->blocked_;
    notes_->changed_.notify_all();
    notes_->changed_.wait(lock, [this] { return !notes_->blocked_; });
    notes_->hanging_ = false;
    if (notes_->failAt_ == notes_->ptsNs_.size()) {
      progress_ = Progress::Failed;
      return;
    }
    notes_->ptsNs_.append(packet.ptsNs);
    notes_->keyFrames_.append(packet.keyFrame);
    notes_->bytes_.append(packet.bytes);
    bytes_ += packet.bytes;
  }
  void end() override { progress_ = Progress::Ended; }
  Progress progress() const override { return progress_; }
  QString failure() const override { return QStringLiteral("no memory is left"); }
  bool mayGoOn() override {
    notes_->set(notes_->checks_, notes_->checks() + 1);
    return true;
  }
  qint64 bytesWritten() const override { return bytes_; }
  void close(const TargetOutcome& outcome) override { notes_->set(notes_->outcome_, outcome); }

 private:
  const std::shared_ptr<WriterNotes> notes_;
  Progress progress_ = Progress::Open;
  qint64 bytes_ = 0;
};

}  // namespace korvia::test
