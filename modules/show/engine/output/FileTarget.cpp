#include "FileTarget.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <filesystem>
#include <system_error>
#include <utility>

#include "FragmentedFile.h"
#include "MuxPipeline.h"
#include "RecordFileName.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

// Unbuffered, so that written data survives a crash of the process.
const std::vector<ElementProperty> kFileSink = {
    {"buffer-mode", "unbuffered"}, {"sync", "false"}, {"enable-last-sample", "false"}};

qint64 freeBytesAt(const QString& folder) {
  std::error_code error;
  const std::filesystem::space_info space = std::filesystem::space(folder.toStdString(), error);
  return error ? -1 : static_cast<qint64>(space.available);
}

class FileWriter : public TargetWriter {
 public:
  explicit FileWriter(FileSettings settings) : settings_(std::move(settings)) {
    if (!settings_.freeBytes)
      settings_.freeBytes = freeBytesAt;
  }

  bool open(Wake wake) override;
  QString location() const override { return fileName_; }
  bool hasRoom() const override { return !mux_ || mux_->hasRoom(); }
  void write(const Packet& packet) override;
  void end() override { mux_->endStream(); }
  Progress progress() const override;
  QString failure() const override { return mux_ && reason_.isEmpty() ? mux_->failure() : reason_; }
  bool mayGoOn() override;
  qint64 bytesWritten() const override { return mux_ ? mux_->bytesWritten() : bytesWritten_; }
  void close(const TargetOutcome& outcome) override;

 private:
  bool hasSpace() const;
  bool begin(const Packet& first);

  FileSettings settings_;
  Wake wake_;
  QString fileName_;
  QString reason_;
  std::unique_ptr<MuxPipeline> mux_;
  qint64 bytesWritten_ = 0;
};

bool FileWriter::open(Wake wake) {
  wake_ = std::move(wake);
  fileName_ = RecordFileName::reserve(settings_.folder, settings_.name,
                                      QLatin1String(settings_.container.suffix), &reason_);
  if (fileName_.isEmpty())
    return false;
  if (hasSpace())
    return true;
  reason_ = QStringLiteral("the disk is full");
  return false;
}

bool FileWriter::begin(const Packet& first) {
  mux_ = std::make_unique<MuxPipeline>(wake_);
  const MuxSink sink{"filesink", "location", QFile::encodeName(fileName_), kFileSink};
  if (!mux_->open(*first.tracks, settings_.container, sink))
    return false;
  const Track& picture = first.tracks->front();
  const int soundKbps = first.tracks->size() > 1 ? first.tracks->back().kbps : 0;
  qCInfo(logOutput, "recording to \"%s\" : %dx%d, %d/%d fps, %d kbit/s, sound %d kbit/s",
         qPrintable(fileName_), picture.size.width, picture.size.height,
         static_cast<int>(picture.rate.numerator), static_cast<int>(picture.rate.denominator), picture.kbps,
         soundKbps);
  return true;
}

void FileWriter::write(const Packet& packet) {
  if (mux_ || begin(packet))
    mux_->feed(packet);
}

TargetWriter::Progress FileWriter::progress() const {
  if (!mux_)
    return Progress::Open;
  if (mux_->hasFailed())
    return Progress::Failed;
  return mux_->isEnded() ? Progress::Ended : Progress::Open;
}

bool FileWriter::hasSpace() const {
  const qint64 bytes = settings_.freeBytes(QFileInfo(fileName_).path());
  return bytes < 0 || bytes >= settings_.minimumFreeBytes;
}

bool FileWriter::mayGoOn() {
  if (hasSpace())
    return true;
  reason_ = QStringLiteral("the disk is nearly full");
  qCWarning(logOutput, "the disk is nearly full, closing \"%s\"", qPrintable(fileName_));
  return false;
}

void FileWriter::close(const TargetOutcome& outcome) {
  bytesWritten_ = bytesWritten();
  mux_.reset();
  if (outcome.failed && settings_.container.boxes && !fileName_.isEmpty())
    dropPartialBox(fileName_);
  if (!fileName_.isEmpty() && QFileInfo(fileName_).size() == 0)
    QFile::remove(fileName_);
  if (outcome.failed)
    qCWarning(logOutput, "recording \"%s\" failed : %s", qPrintable(settings_.name),
              qPrintable(outcome.reason));
  else
    qCInfo(logOutput, "recording \"%s\" closed : %lld frames, %lld dropped", qPrintable(fileName_),
           static_cast<long long>(outcome.framesWritten), static_cast<long long>(outcome.framesDropped));
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
  settings.name = RecordFileName::make(item.recordNameFormat, item.recordTimeFormat, request.programName,
                                       QDateTime::currentDateTime());
  settings.container = RecordContainer::of(item.recordEncapsulation);
  return std::make_unique<FileTarget>(settings);
}

}  // namespace korvia
