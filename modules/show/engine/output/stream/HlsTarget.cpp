#include "HlsTarget.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <utility>

#include "ChunkSink.h"
#include "DrivePath.h"
#include "MuxWriter.h"
#include "SegmentFolder.h"
#include "ThreadSafety.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

constexpr qint64 kSecondNs = 1'000'000'000;
// The regular distance of key frames.
constexpr qint64 kKeyNs = 2 * kSecondNs;

/// Puts the chunks of the muxer into segments. The writer tells of each key frame before the muxer gets it.
/// Streaming thread, except plan() and hasFailed().
class SegmentCutter {
 public:
  enum class Cut { Yes, No };

  explicit SegmentCutter(SegmentFolder& folder) : folder_(folder) {}

  void plan(qint64 keyPtsNs, Cut cut) {
    MutexLock lock(mutex_);
    keys_.push_back({keyPtsNs, cut});
  }
  bool hasFailed() const { return failed_; }

  void take(const StreamChunk& chunk) {
    bool written = true;
    if (chunk.keyFrame) {
      const Key key = nextKey();
      if (key.cut == Cut::Yes)
        written = folder_.begin(key.ptsNs) && folder_.write(chunk.header);
    }
    if (!written || !folder_.write(chunk.data))
      failed_ = true;
  }

 private:
  struct Key {
    qint64 ptsNs = 0;
    Cut cut = Cut::No;
  };

  Key nextKey() {
    MutexLock lock(mutex_);
    if (keys_.empty())
      return {};
    const Key key = keys_.front();
    keys_.pop_front();
    return key;
  }

  SegmentFolder& folder_;
  std::atomic<bool> failed_{false};
  Mutex mutex_;
  std::deque<Key> keys_ GUARDED_BY(mutex_);  // on their way through the muxer
};

class HlsWriter : public TargetWriter {
 public:
  HlsWriter(HlsSettings settings, std::shared_ptr<SegmentFolder> folder);

  bool open(Wake wake) override { return mux_->open(std::move(wake)); }
  QString location() const override { return {}; }
  bool hasRoom() const override { return mux_->hasRoom(); }
  void write(const Packet& packet) override;
  void end() override { mux_->end(); }
  Progress progress() const override { return cutter_.hasFailed() ? Progress::Failed : mux_->progress(); }
  QString failure() const override {
    return cutter_.hasFailed() ? QStringLiteral("the segments cannot be written") : mux_->failure();
  }
  qint64 bytesWritten() const override { return mux_->bytesWritten(); }
  bool takeKeyRequest() override { return std::exchange(keyWanted_, false); }
  void close(const TargetOutcome& outcome) override;

 private:
  MuxPlan plan();
  void cutAt(const Packet& picture);

  const HlsSettings settings_;
  const qint64 lengthNs_;
  const std::shared_ptr<SegmentFolder> folder_;
  SegmentCutter cutter_;
  std::unique_ptr<MuxWriter> mux_;
  qint64 beginNs_ = -1;    // of the segment; -1 before the first
  qint64 endNs_ = 0;       // of the newest picture
  bool keyAsked_ = false;  // in this segment
  bool keyWanted_ = false;
};

HlsWriter::HlsWriter(HlsSettings settings, std::shared_ptr<SegmentFolder> folder)
    : settings_(std::move(settings)),
      lengthNs_(settings_.segmentSeconds * kSecondNs),
      folder_(std::move(folder)),
      cutter_(*folder_),
      mux_(std::make_unique<MuxWriter>(plan())) {}

MuxPlan HlsWriter::plan() {
  MuxPlan plan;
  plan.container = MuxPlan::tsFrames();
  if (!folder_->prepare()) {
    plan.obstacle = QStringLiteral("the folder cannot be made");
    return plan;
  }
  plan.sink = chunkSink(ChunkFormat::Ts, [this](const StreamChunk& chunk) { cutter_.take(chunk); });
  return plan;
}

void HlsWriter::write(const Packet& packet) {
  if (packet.isPicture())
    cutAt(packet);
  mux_->write(packet);
}

void HlsWriter::cutAt(const Packet& picture) {
  const bool isFull = beginNs_ < 0 || picture.ptsNs - beginNs_ >= lengthNs_ - picture.durationNs / 2;
  if (picture.keyFrame) {
    cutter_.plan(picture.ptsNs, isFull ? SegmentCutter::Cut::Yes : SegmentCutter::Cut::No);
    if (isFull) {
      beginNs_ = picture.ptsNs;
      keyAsked_ = false;
    }
  } else if (isFull && settings_.split == HlsSettings::Split::Anywhere && !std::exchange(keyAsked_, true)) {
    keyWanted_ = true;
  }
  endNs_ = picture.endNs();
}

void HlsWriter::close(const TargetOutcome& outcome) {
  // The streaming thread has ended after that.
  mux_->close(outcome);
  if (!folder_->interrupt(endNs_) || (!outcome.failed && !folder_->finish()))
    qCWarning(logOutput, "%s : the last segment cannot be written", qPrintable(targetName(TargetKind::Hls)));
}

TargetSettings targetSettings() {
  TargetSettings target{targetName(TargetKind::Hls), "kv-hls"};
  target.kind = TargetKind::Hls;
  target.finishTimeoutMs = 1500;
  return target;
}

std::unique_ptr<TargetWriter> retryingHls(const HlsSettings& settings) {
  RetrySettings retry = settings.retry;
  retry.label = targetName(TargetKind::Hls);
  const qint64 splitNs = settings.split == HlsSettings::Split::Anywhere ? 0 : kKeyNs;
  const auto folder =
      std::make_shared<SegmentFolder>(DrivePath::resolve(settings.folder), settings.listedSegments,
                                      settings.segmentSeconds * kSecondNs + splitNs);
  qCInfo(logOutput, "%s goes to the folder \"%s\"", qPrintable(retry.label), qPrintable(settings.folder));
  return std::make_unique<RetryingWriter>(
      std::move(retry), [settings, folder] { return std::make_unique<HlsWriter>(settings, folder); });
}

}  // namespace

HlsTarget::HlsTarget(const HlsSettings& settings) : Target(targetSettings(), retryingHls(settings)) {}

std::unique_ptr<Target> HlsTarget::create(const OutputRequest& request) {
  const tagKorviaShowOutputItem& item = request.param.items[OutputSlotStream];
  if (request.slot != OutputSlotStream || item.hlsEnable == 0)
    return nullptr;
  HlsSettings settings;
  settings.folder = item.hlsTemporaryFolder;
  settings.segmentSeconds = std::clamp<int>(item.hlsSegmentLength, 1, 600);
  settings.listedSegments = std::clamp<int>(item.hlsSegmentNumber, 1, 64);
  settings.split = item.hlsSplitAnywhere != 0 ? HlsSettings::Split::Anywhere : HlsSettings::Split::AtKeyFrame;
  return std::make_unique<HlsTarget>(settings);
}

}  // namespace korvia
