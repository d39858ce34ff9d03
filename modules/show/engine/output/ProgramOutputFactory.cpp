#include "ProgramOutputFactory.h"

#include <QDateTime>
#include <algorithm>

#include "OutputLog.h"
#include "RecordFileName.h"
#include "RecordOutput.h"

namespace korvia {

namespace {

constexpr int kMinSide = 16;
constexpr int kMaxSide = 8192;
constexpr int kDefaultKbps = 4096;
constexpr int kMinKbps = 64;
constexpr int kMaxKbps = 200000;

// Chroma samples cover two pixels, so the encoder takes even sides only.
int usableSide(int side) { return std::clamp(side, kMinSide, kMaxSide) / 2 * 2; }

FrameSize recordSize(const tagKorviaVideoFormat& video, FrameSize renderSize) {
  const FrameSize wanted{video.width, video.height};
  const FrameSize size = wanted.isEmpty() ? renderSize : wanted;
  return {usableSide(size.width), usableSide(size.height)};
}

// The record's text field gives 0 for what is no number.
int recordKbps(int kbps) { return kbps <= 0 ? kDefaultKbps : std::clamp(kbps, kMinKbps, kMaxKbps); }

}  // namespace

std::unique_ptr<ProgramOutput> createProgramOutput(int slot, const tagKorviaShowOutputParam& param,
                                                   const QString& programName, const tagKorviaFormatInfo& format,
                                                   FrameSize renderSize, int rateNumerator, int rateDenominator) {
  if (slot == OutputSlotStream) {
    qCWarning(logOutput, "streams are not available in this version");
    return nullptr;
  }
  if (slot != OutputSlotRecord) {
    qCWarning(logOutput, "there is no output %d", slot);
    return nullptr;
  }
  const tagKorviaShowOutputItem& item = param.items[OutputSlotRecord];
  RecordSettings settings;
  settings.folder = item.recordPath;
  settings.name = RecordFileName::make(item.recordNameFormat, item.recordTimeFormat, programName,
                                       QDateTime::currentDateTime());
  settings.container = RecordContainer::of(item.recordEncapsulation);
  settings.size = recordSize(format.video, renderSize);
  settings.rateNumerator = rateNumerator;
  settings.rateDenominator = rateDenominator;
  settings.videoKbps = recordKbps(param.encode[OutputSlotRecord].videoBitrate);
  return std::make_unique<RecordOutput>(std::move(settings));
}

}  // namespace korvia
