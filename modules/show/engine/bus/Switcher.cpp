#include "Switcher.h"

#include "KorviaShowEvents.h"
#include "backend/BusSelection.h"

namespace korvia {

void Switcher::open(const ShowFormat& format) {
  rate_ = format.rate;
  pool_ = std::make_unique<FramePool>(format.size);
}

void Switcher::take(int channel, int effect, double seconds, int easing) {
  if (channel == 0)
    return;
  if (switch_.to() != channel)
    switch_.finish();
  reportDoneTake();
  switch_.take({pgm_.channel(), channel, effect, seconds, easing}, rate_.framesPerSecond());
}

void Switcher::moveLever(int, float position) {
  reportDoneTake();
  switch_.moveLever(position, pgm_.channel(), pvm_.channel());
}

void Switcher::selectChannel(int bus, int channel) {
  reportDoneTake();
  if (bus == PVMObject) {
    pvm_.select(channel);
  } else if (bus == PGMObject) {
    // Selecting a channel on program abandons the take that was running there.
    switch_.abandon();
    pgm_.select(channel);
  } else {
    return;
  }
  host_->postResult(ShowEventSelectChannel, static_cast<qulonglong>(bus), channel);
}

void Switcher::step(int frames) {
  switch_.step(frames);
  report();
}

// Each event must find the buses as the event before it left them, also within a frame.
void Switcher::reportDoneTake() {
  if (switch_.isDone())
    report();
}

void Switcher::report() {
  const ProgramSwitch::Outcome outcome = switch_.takeOutcome();
  if (outcome.moved)
    host_->postResult(ShowEventSwitchPosition, outcome.position);
  if (outcome.taken == 0)
    return;
  const BusSelection before{pvm_.channel(), pgm_.channel()};
  const BusSelection after = before.afterTake(outcome.taken);
  pvm_.select(after.pvm);
  pgm_.select(after.pgm);
  after.reportChanges(before, *host_);
}

FrameRef Switcher::previewPicture() {
  return channels_.picture(pvm_.channel());
}

FrameRef Switcher::programPicture() {
  if (!switch_.isRunning())
    return channels_.picture(pgm_.channel());
  FrameRef from = channels_.picture(switch_.from());
  const FrameRef to = channels_.picture(switch_.to());
  const Transition* transition = switch_.transition();
  if (!transition || switch_.position() <= 0 || from == to)
    return from;
  MutableFrame mixed = pool_->acquire();
  transition->mix(*from, *to, switch_.point(), scratch_, *mixed);
  return std::move(mixed).publish();
}

BusChannels Switcher::channels() const {
  if (!switch_.isRunning())
    return {pvm_.channel(), pgm_.channel()};
  // A cut that the lever drives is the first channel up to its end.
  const double position = switch_.transition() ? switch_.position() : 0;
  return {pvm_.channel(), switch_.from(), switch_.to(), position};
}

}  // namespace korvia
