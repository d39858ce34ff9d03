#include "OutputSlot.h"

#include <QDeadlineTimer>
#include <utility>

namespace korvia {

OutputSlot::OutputSlot(EncoderSettings encoder, Targets targets, Janitor& janitor)
    : targets_(std::move(targets)), encoder_(std::move(encoder), janitor) {
  for (const std::shared_ptr<Target>& target : targets_)
    encoder_.join(target);
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
  stopped_ = true;
  encoder_.finish();
}

tagKorviaShowOutputReport OutputSlot::report() const {
  const EncoderFigures encoder = encoder_.figures();
  tagKorviaShowOutputReport report;
  report.droppedFrames = encoder.framesDropped;
  report.reason = encoder.failure;
  bool up = false;
  bool allEnded = true;
  for (const std::shared_ptr<Target>& target : targets_) {
    const TargetFigures own = target->figures();
    report.droppedFrames += own.framesDropped;
    if (report.fileName.isEmpty())
      report.fileName = own.location;
    if (report.reason.isEmpty())
      report.reason = own.reason;
    up = up || own.state == TargetState::Up || own.state == TargetState::Finishing;
    allEnded = allEnded && (own.state == TargetState::Failed || own.state == TargetState::Finished);
  }
  // An output that ends without a stop has failed, even if its file is complete.
  if (!encoder.failure.isEmpty() || (allEnded && (!stopped_ || !report.reason.isEmpty())))
    report.state = KorviaShowOutputState::Failed;
  else if (allEnded)
    report.state = KorviaShowOutputState::Finished;
  else
    report.state = up || stopped_ ? KorviaShowOutputState::Running : KorviaShowOutputState::Starting;
  if (report.state != KorviaShowOutputState::Failed)
    report.reason.clear();
  return report;
}

OutputFigures OutputSlot::figures() const {
  const EncoderFigures encoder = encoder_.figures();
  OutputFigures figures;
  figures.framesEncoded = encoder.framesEncoded;
  figures.framesDropped = encoder.framesDropped;
  figures.videoKbps = encoder.videoKbps;
  figures.framesPerSecond = encoder.framesPerSecond;
  figures.soundKbps = encoder.soundKbps;
  figures.samplesPerSecond = encoder.samplesPerSecond;
  for (const std::shared_ptr<Target>& target : targets_) {
    const TargetFigures own = target->figures();
    figures.up = figures.up || own.state == TargetState::Up;
    figures.framesDropped += own.framesDropped;
    figures.bytesWritten += own.bytesWritten;
  }
  return figures;
}

}  // namespace korvia
