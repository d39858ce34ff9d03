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

OutputFigures OutputSlot::figures() const {
  const EncoderFigures encoder = encoder_.figures();
  OutputFigures figures;
  figures.framesEncoded = encoder.framesEncoded;
  figures.framesDropped = encoder.framesDropped;
  figures.videoKbps = encoder.videoKbps;
  figures.framesPerSecond = encoder.framesPerSecond;
  for (const std::shared_ptr<Target>& target : targets_) {
    const TargetFigures own = target->figures();
    figures.up = figures.up || own.state == TargetState::Up;
    figures.framesDropped += own.framesDropped;
    figures.bytesWritten += own.bytesWritten;
  }
  return figures;
}

}  // namespace korvia
