#include "OutputFactory.h"

#include <QDateTime>
#include <algorithm>

#include "OutputLog.h"
#include "RecordFileName.h"
#include "RecordOutput.h"

namespace korvia {

namespace {

constexpr int kMinSide = 16;
constexpr int kMaxSide = 8192;
constexpr FrameSize kDefaultSize{1920, 1080};
constexpr int kDefaultKbps = 4096;
constexpr int kMinKbps = 64;
constexpr int kMaxKbps = 200000;

// Chroma samples cover two pixels, so the encoder takes even sides only.
int usableSide(int side) {
  return std::clamp(side, kMinSide, kMaxSide) / 2 * 2;
}

FrameSize recordSize(const tagKorviaVideoFormat& video) {
  const FrameSize wanted{video.width, video.height};
  return wanted.isEmpty() ? kDefaultSize : FrameSize{usableSide(wanted.width), usableSide(wanted.height)};
}

// The record's text field gives 0 for what is no number.
int recordKbps(int kbps) {
  return kbps <= 0 ? kDefaultKbps : std::clamp(kbps, kMinKbps, kMaxKbps);
}

}  // namespace

std::unique_ptr<ProgramOutput> createProgramOutput(const OutputRequest& request) {
  if (request.slot == OutputSlotStream) {
    qCWarning(logOutput, "streams are not available in this version");
    return nullptr;
  }
  if (request.slot != OutputSlotRecord) {
    qCWarning(logOutput, "there is no output %d", request.slot);
    return nullptr;
  }
  const tagKorviaShowOutputItem& item = request.param.items[OutputSlotRecord];
  RecordSettings settings;
  settings.folder = item.recordPath;
  settings.name = RecordFileName::make(item.recordNameFormat, item.recordTimeFormat, request.programName,
                                       QDateTime::currentDateTime());
  settings.container = RecordContainer::of(item.recordEncapsulation);
  settings.size = recordSize(request.format.video);
  settings.rate = request.rate;
  settings.videoKbps = recordKbps(request.param.encode[OutputSlotRecord].videoBitrate);
  return std::make_unique<RecordOutput>(std::move(settings));
}

}  // namespace korvia
