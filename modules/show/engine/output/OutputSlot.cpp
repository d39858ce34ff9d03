#include "OutputSlot.h"

#include <QDeadlineTimer>
#include <algorithm>
#include <utility>

namespace korvia {

namespace {

KorviaShowTargetState reportState(TargetState state) {
  switch (state) {
    case TargetState::Waiting:
      return KorviaShowTargetState::Connecting;
    case TargetState::Up:
    case TargetState::Finishing:
      return KorviaShowTargetState::Up;
    case TargetState::Lost:
      return KorviaShowTargetState::Lost;
    case TargetState::Finished:
      return KorviaShowTargetState::Finished;
    case TargetState::Failed:
      break;
  }
  return KorviaShowTargetState::Failed;
}

tagKorviaShowTargetReport targetReport(TargetKind kind, const TargetFigures& figures) {
  tagKorviaShowTargetReport report;
  report.name = targetName(kind);
  report.state = reportState(figures.state);
  if (report.state == KorviaShowTargetState::Lost || report.state == KorviaShowTargetState::Failed)
    report.reason = figures.reason;
  report.upSeconds = figures.upSeconds;
  report.retrySeconds = (figures.retryMs + 999) / 1000;
  report.bitrate = figures.kbps;
  return report;
}

}  // namespace

OutputSlot::OutputSlot(const EncoderSettings& settings, Targets targets, Janitor& janitor,
                       std::shared_ptr<SlotEncoder> running)
    : targets_(std::move(targets)),
      encoder_(running && running->suits(settings) ? std::move(running)
                                                   : std::make_shared<SlotEncoder>(settings, janitor)),
      share_(encoder_->addShare(settings)),
      droppedBefore_(encoder_->figures().framesDropped) {
  for (const std::shared_ptr<Target>& target : targets_)
    share_->join(target);
}

bool OutputSlot::waitFinished(int timeoutMs) {
  const QDeadlineTimer deadline(timeoutMs);
  for (const std::shared_ptr<Target>& target : targets_) {
    if (!target->waitFinished(static_cast<int>(deadline.remainingTime())))
      return false;
  }
  return true;
}

void OutputSlot::finish() {
  if (share_->isEnding())
    return;
  droppedUntilStop_ = encoder_->figures().framesDropped;
  encoder_->endShare(*share_);
}

qint64 OutputSlot::framesDropped() const {
  const qint64 untilStop = droppedUntilStop_;
  return (untilStop >= 0 ? untilStop : encoder_->figures().framesDropped) - droppedBefore_;
}

tagKorviaShowOutputReport OutputSlot::report() const {
  const QString failure = share_->failure();
  const bool stopped = share_->isEnding();
  tagKorviaShowOutputReport report;
  report.droppedFrames = framesDropped();
  report.reason = failure;
  bool up = false;
  bool allEnded = true;
  bool allTroubled = true;
  for (const std::shared_ptr<Target>& target : targets_) {
    const TargetFigures own = target->figures();
    report.targets.append(targetReport(target->kind(), own));
    report.droppedFrames += own.framesDropped + own.disk.framesLeftOut;
    if (report.fileName.isEmpty())
      report.fileName = own.location;
    report.writtenMs = std::max(report.writtenMs, own.disk.writtenNs / 1'000'000);
    report.writtenBytes += own.bytesWritten;
    report.roomSeconds = std::max(report.roomSeconds, own.disk.roomSeconds);
    if (own.disk.verifiedNs >= 0)
      report.verifiedMs = std::max(report.verifiedMs, own.disk.verifiedNs / 1'000'000);
    if (!own.disk.trouble.isEmpty())
      report.warning = own.disk.trouble;
    const bool ended = own.state == TargetState::Failed || own.state == TargetState::Finished;
    if (ended && report.reason.isEmpty())
      report.reason = own.reason;
    up = up || own.state == TargetState::Up || own.state == TargetState::Finishing ||
         (own.state == TargetState::Lost && own.bytesWritten > 0);
    allEnded = allEnded && ended;
    allTroubled = allTroubled && !own.reason.isEmpty();
  }
  // An output that ends without a stop has failed, even if its file is complete.
  if (!failure.isEmpty() || (allEnded && (!stopped || allTroubled)))
    report.state = KorviaShowOutputState::Failed;
  else if (allEnded)
    report.state = KorviaShowOutputState::Finished;
  else
    report.state = up || stopped ? KorviaShowOutputState::Running : KorviaShowOutputState::Starting;
  if (report.state != KorviaShowOutputState::Failed)
    report.reason.clear();
  return report;
}

OutputFigures OutputSlot::figures() const {
  const EncoderFigures encoder = encoder_->figures();
  OutputFigures figures;
  figures.framesEncoded = share_->framesEncoded();
  figures.framesDropped = framesDropped();
  figures.videoKbps = encoder.videoKbps;
  figures.framesPerSecond = encoder.framesPerSecond;
  figures.soundKbps = encoder.soundKbps;
  figures.samplesPerSecond = encoder.samplesPerSecond;
  figures.encodeDelayMs = encoder.encodeDelayMs;
  figures.pictureLessSoundMs = encoder.pictureLessSoundMs;
  figures.frameTypes = encoder.frameTypes;
  for (const std::shared_ptr<Target>& target : targets_) {
    const TargetFigures own = target->figures();
    figures.up = figures.up || own.state == TargetState::Up || own.state == TargetState::Lost;
    figures.framesDropped += own.framesDropped;
    figures.bytesWritten += own.bytesWritten;
    figures.kbps[static_cast<std::size_t>(target->kind())] = own.kbps;
  }
  return figures;
}

}  // namespace korvia
