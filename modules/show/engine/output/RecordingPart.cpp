#include "RecordingPart.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <utility>

#include "FragmentedFile.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

// Unbuffered, so that written data survives a crash of the process.
const std::vector<ElementProperty> kFileSink = {
    {"buffer-mode", "unbuffered"}, {"sync", "false"}, {"enable-last-sample", "false"}};

}  // namespace

RecordingPart::RecordingPart(QString fileName, RecordContainer container, std::function<void()> wake)
    : fileName_(std::move(fileName)), container_(std::move(container)), wake_(std::move(wake)) {}

RecordingPart::~RecordingPart() {
  const bool begun = mux_ != nullptr;
  const bool whole = begun && ending_ && mux_->isEnded();
  mux_.reset();
  if (begun && !whole && container_.boxes)
    dropPartialBox(fileName_);
  if (QFileInfo(fileName_).size() == 0)
    QFile::remove(fileName_);
  else
    qCInfo(logOutput, "recording \"%s\" closed : %lld frames, %.1f s", qPrintable(fileName_),
           static_cast<long long>(frames_), static_cast<double>(lengthNs()) / 1e9);
}

bool RecordingPart::begin(const Packet& first) {
  mux_ = std::make_unique<MuxPipeline>(wake_);
  startNs_ = first.ptsNs;
  endNs_ = startNs_;
  const MuxSink sink{"filesink", "location", QFile::encodeName(fileName_), kFileSink};
  if (!mux_->open(*first.tracks, container_, sink))
    return false;
  const Track& picture = first.tracks->front();
  generation_ = picture.generation;
  const int soundKbps = first.tracks->size() > 1 ? first.tracks->back().kbps : 0;
  qCInfo(logOutput, "recording to \"%s\" : %dx%d, %d/%d fps, %d kbit/s, sound %d kbit/s",
         qPrintable(fileName_), picture.size.width, picture.size.height,
         static_cast<int>(picture.rate.numerator), static_cast<int>(picture.rate.denominator), picture.kbps,
         soundKbps);
  return true;
}

void RecordingPart::write(const Packet& packet) {
  if (!mux_ || ending_)
    return;
  Packet own = packet;
  own.ptsNs -= startNs_;
  own.dtsNs -= startNs_;
  if (!packet.endsTrack && packet.isPicture()) {
    ++frames_;
    endNs_ = std::max(endNs_, packet.endNs());
  }
  mux_->feed(own);
}

void RecordingPart::end() {
  if (std::exchange(ending_, true))
    return;
  if (mux_)
    mux_->endStream();
}

}  // namespace korvia
