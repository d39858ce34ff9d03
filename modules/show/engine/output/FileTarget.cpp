#include "FileTarget.h"

#include <QDateTime>
#include <QFileInfo>
#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>
#include <vector>

#include "RecordFileName.h"
#include "RecordingGuard.h"
#include "RecordingPart.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

// A recording goes on when there is room for this many times the space at which it paused, so that it does
// not pause again at once.
constexpr int kRoomToGoOn = 2;
constexpr qint64 kPartOfSmallDisk = 10;
// TargetWorker asks about once a second whether a writer may go on.
constexpr int kCheckRoomMs = 1000;

qint64 freeBytesAt(const QString& folder) {
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(folder.toStdString(), error);
  return error ? -1 : static_cast<qint64>(space.available);
}

qint64 capacityOf(const QString& folder) {
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(folder.toStdString(), error);
  return error ? std::numeric_limits<qint64>::max() : static_cast<qint64>(space.capacity);
}

/// Writes one file after the other: a new one when the cut duration is over, and after a pause in which the
/// disk had no room.
class FileWriter : public TargetWriter {
 public:
  explicit FileWriter(FileSettings settings) : settings_(std::move(settings)) {
    if (!settings_.freeBytes)
      settings_.freeBytes = freeBytesAt;
  }

  bool open(Wake wake) override;
  QString location() const override { return fileName_; }
  bool hasRoom() const override { return !part_ || part_->hasRoom(); }
  void write(const Packet& packet) override;
  void end() override;
  Progress progress() const override;
  QString failure() const override;
  bool mayGoOn() override;
  qint64 bytesWritten() const override;
  TargetLink link() const override;
  DiskFigures disk() const override {
    return {nsOfEnded_ + (part_ ? part_->lengthNs() : 0), roomSeconds_, verifiedNs_, trouble_,
            framesLeftOut_};
  }
  bool takeKeyRequest() override { return std::exchange(wantsKeyFrame_, false); }
  void close(const TargetOutcome& outcome) override;

 private:
  /// Makes the next file; null with the reason in reason_.
  std::unique_ptr<RecordingPart> reserve(const QString& name);
  QString nextName() const { return settings_.nextName ? settings_.nextName() : settings_.name; }
  /// A part whose end could not be written; null when there is none.
  const RecordingPart* failedEnd() const;
  bool isCutDue(const Packet& packet) const;
  void cut(const Packet& first);
  void endPart();
  void pause(const QString& reason);
  void resumeAt(const Packet& keyFrame);
  void forgetEndedParts();
  void measureRoom(qint64 freeBytes);
  void askGuard();

  FileSettings settings_;
  qint64 minimumFreeBytes_ = 0;  // on the disk of the first file
  Wake wake_;
  QString fileName_;  // of the newest part
  QString reason_;    // of a failure or of a pause
  std::shared_ptr<const TrackList> tracks_;
  std::unique_ptr<RecordingPart> part_;                 // null during a pause and after the end
  std::vector<std::unique_ptr<RecordingPart>> ending_;  // that write their end
  qint64 bytesOfEnded_ = 0;
  qint64 nsOfEnded_ = 0;
  qint64 roomSeconds_ = -1;
  std::unique_ptr<RecordingGuard> guard_;  // of part_, from its first packet on
  qint64 verifiedNs_ = -1;
  QString trouble_;
  qint64 framesLeftOut_ = 0;
  bool hasRoomAgain_ = false;  // the pause ends with the next key frame
  bool wantsKeyFrame_ = false;
  bool paused_ = false;
};

std::unique_ptr<RecordingPart> FileWriter::reserve(const QString& name) {
  const QString fileName =
      RecordFileName::reserve(settings_.folder, name, QLatin1String(settings_.container.suffix), &reason_);
  if (fileName.isEmpty())
    return nullptr;
  fileName_ = fileName;
  return std::make_unique<RecordingPart>(fileName, settings_.container, wake_);
}

bool FileWriter::open(Wake wake) {
  wake_ = std::move(wake);
  part_ = reserve(settings_.name);
  if (!part_)
    return false;
  const QString folder = QFileInfo(fileName_).path();
  minimumFreeBytes_ = std::min(settings_.minimumFreeBytes, capacityOf(folder) / kPartOfSmallDisk);
  const qint64 free = settings_.freeBytes(folder);
  if (free < 0 || free >= minimumFreeBytes_)
    return true;
  reason_ = QStringLiteral("the disk is full");
  return false;
}

bool FileWriter::isCutDue(const Packet& packet) const {
  if (!packet.keyFrame || !part_->hasBegun())
    return false;
  const bool hasOtherHeaders = packet.tracks->front().generation != part_->generation();
  return hasOtherHeaders ||
         (settings_.cutNs > 0 && part_->lengthNs() + packet.durationNs / 2 >= settings_.cutNs);
}

void FileWriter::cut(const Packet& first) {
  std::unique_ptr<RecordingPart> next = reserve(nextName());
  if (next && next->begin(first)) {
    endPart();
    part_ = std::move(next);
    return;
  }
  // The recording goes on in the file that it has, and the next key frame tries again.
  qCWarning(logOutput, "recording \"%s\" is not cut : %s", qPrintable(settings_.name),
            qPrintable(next ? next->failure() : reason_));
  fileName_ = part_->fileName();
  reason_.clear();
}

void FileWriter::endPart() {
  askGuard();
  guard_.reset();
  part_->end();
  nsOfEnded_ += part_->lengthNs();
  ending_.push_back(std::move(part_));
}

void FileWriter::pause(const QString& reason) {
  qCWarning(logOutput, "%s, closing \"%s\"", qPrintable(reason), qPrintable(fileName_));
  reason_ = reason;
  paused_ = true;
  hasRoomAgain_ = false;
  endPart();
}

void FileWriter::resumeAt(const Packet& keyFrame) {
  hasRoomAgain_ = false;
  std::unique_ptr<RecordingPart> next = reserve(nextName());
  if (!next || !next->begin(keyFrame))
    return;
  part_ = std::move(next);
  paused_ = false;
  reason_.clear();
}

void FileWriter::write(const Packet& packet) {
  tracks_ = packet.tracks;
  if (paused_ && hasRoomAgain_ && packet.keyFrame)
    resumeAt(packet);
  else if (part_ && !part_->hasBegun())
    part_->begin(packet);
  else if (part_ && isCutDue(packet))
    cut(packet);
  if (part_)
    part_->write(packet);
  else if (packet.isPicture())
    ++framesLeftOut_;
}

void FileWriter::end() {
  if (part_)
    endPart();
  paused_ = false;
}

TargetWriter::Progress FileWriter::progress() const {
  if (part_)
    return part_->hasFailed() && !part_->isOutOfSpace() ? Progress::Failed : Progress::Open;
  if (paused_)
    return Progress::Open;
  if (failedEnd())
    return Progress::Failed;
  const auto isEnded = [](const auto& part) { return part->isEnded(); };
  return std::all_of(ending_.begin(), ending_.end(), isEnded) ? Progress::Ended : Progress::Open;
}

QString FileWriter::failure() const {
  if (part_ && part_->hasFailed())
    return part_->failure();
  const RecordingPart* failed = part_ ? nullptr : failedEnd();
  return failed ? failed->failure() : reason_;
}

const RecordingPart* FileWriter::failedEnd() const {
  const auto hasFailed = [](const auto& part) { return part->hasFailed(); };
  const auto found = std::find_if(ending_.begin(), ending_.end(), hasFailed);
  return found == ending_.end() ? nullptr : found->get();
}

TargetLink FileWriter::link() const {
  if (paused_)
    return {TargetLink::State::Lost, reason_, kCheckRoomMs};
  return TargetWriter::link();
}

qint64 FileWriter::bytesWritten() const {
  qint64 bytes = bytesOfEnded_ + (part_ ? part_->bytesWritten() : 0);
  for (const auto& part : ending_)
    bytes += part->bytesWritten();
  return bytes;
}

void FileWriter::forgetEndedParts() {
  const auto isOver = [this](const std::unique_ptr<RecordingPart>& part) {
    if (part->hasFailed()) {
      trouble_ = part->failure();
      qCWarning(logOutput, "the end of \"%s\" is not written : %s", qPrintable(part->fileName()),
                qPrintable(trouble_));
    } else if (!part->isEnded()) {
      return false;
    }
    bytesOfEnded_ += part->bytesWritten();
    return true;
  };
  ending_.erase(std::remove_if(ending_.begin(), ending_.end(), isOver), ending_.end());
}

void FileWriter::askGuard() {
  if (!part_ || !part_->hasBegun())
    return;
  if (!guard_)
    guard_ = std::make_unique<RecordingGuard>(fileName_, settings_.container, settings_.guardInterval);
  const RecordingGuard::Verdict verdict = guard_->ask(part_->lengthNs());
  if (verdict.verifiedNs >= 0 && trouble_.isEmpty())
    verifiedNs_ = nsOfEnded_ + verdict.verifiedNs;
  if (!verdict.trouble.isEmpty())
    trouble_ = verdict.trouble;
}

void FileWriter::measureRoom(qint64 freeBytes) {
  roomSeconds_ = -1;
  qint64 kbps = 0;
  for (std::size_t i = 0; tracks_ && i < tracks_->size(); ++i)
    kbps += (*tracks_)[i].kbps;
  if (freeBytes >= 0 && kbps > 0)
    roomSeconds_ = std::max<qint64>(0, freeBytes - minimumFreeBytes_) * 8 / (kbps * 1000);
}

bool FileWriter::mayGoOn() {
  // At the end of the recording progress() tells of them.
  if (part_ || paused_)
    forgetEndedParts();
  const qint64 free = settings_.freeBytes(QFileInfo(fileName_).path());
  measureRoom(free);
  askGuard();
  if (part_ && (part_->isOutOfSpace() || (free >= 0 && free < minimumFreeBytes_))) {
    pause(part_->isOutOfSpace() ? QStringLiteral("the disk is full")
                                : QStringLiteral("the disk is nearly full"));
  } else if (paused_) {
    const bool roomBefore = std::exchange(hasRoomAgain_, free < 0 || free >= kRoomToGoOn * minimumFreeBytes_);
    wantsKeyFrame_ = hasRoomAgain_ && !roomBefore;
  }
  return true;
}

void FileWriter::close(const TargetOutcome& outcome) {
  const qint64 bytes = bytesWritten();
  guard_.reset();
  if (part_)
    nsOfEnded_ += part_->lengthNs();
  part_.reset();
  ending_.clear();
  bytesOfEnded_ = bytes;
  if (outcome.failed)
    qCWarning(logOutput, "recording \"%s\" failed : %s", qPrintable(settings_.name),
              qPrintable(outcome.reason));
  else if (const qint64 lacking = outcome.framesDropped + framesLeftOut_; lacking > 0)
    qCWarning(logOutput, "recording \"%s\" lacks %lld frames", qPrintable(settings_.name),
              static_cast<long long>(lacking));
}

}  // namespace

FileTarget::FileTarget(const FileSettings& settings)
    : Target(settings.target, std::make_unique<FileWriter>(settings)) {}

std::unique_ptr<Target> FileTarget::create(const OutputRequest& request) {
  if (request.slot != OutputSlotRecord)
    return nullptr;
  const tagKorviaShowOutputItem& item = request.param.items[OutputSlotRecord];
  FileSettings settings;
  settings.folder = item.recordPath;
  settings.nextName = [nameFormat = item.recordNameFormat, timeFormat = item.recordTimeFormat,
                       programName = request.programName] {
    return RecordFileName::make(nameFormat, timeFormat, programName, QDateTime::currentDateTime());
  };
  settings.name = settings.nextName();
  settings.cutNs = std::max(0, item.cutDuration) * 1'000'000'000LL;
  settings.container = RecordContainer::of(item.recordEncapsulation);
  return std::make_unique<FileTarget>(settings);
}

}  // namespace korvia
