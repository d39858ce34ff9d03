#include "LiveSource.h"

#include <utility>

namespace korvia {

namespace {

// The interface counts in tenths of a millisecond.
constexpr std::int64_t kTenthMsNs = 100'000;

}  // namespace

LiveSource::LiveSource(const SourceContext& context, const tagKorviaShowSourceInfo& info,
                       const tagKorviaFormatInfo& format, const LiveSettings& settings, LiveInputMaker maker)
    : Source(context, info, format),
      description_(settings.description),
      transport_(std::make_shared<LiveTransport>(context, settings, std::move(maker))) {
  thread_ = startSourceThread(description_, [transport = transport_] { transport->run(); });
}

LiveSource::~LiveSource() {
  close();
}

void LiveSource::close() {
  if (std::exchange(closed_, true))
    return;
  transport_->close();
  markSourceThreadClosing(thread_);
}

SourceFigures LiveSource::figures() {
  SourceFigures figures;
  figures.description = description_;
  transport_->fill(figures);
  return figures;
}

void LiveSource::getState(tagKorviaSourceLinkState& state) {
  const auto playState = static_cast<KorviaShowPlayState>(getPlayState());
  // An input that is being opened may need longer than the watchdog waits, and one that never opens gains
  // nothing by it.
  const bool opens = transport_->isConnecting() || transport_->neverOpens();
  state.rate = linkRate(opens ? Opening : playState, transport_->receivedRate(), transport_->nominalRate());
  state.reason = playState == Error ? transport_->failureReason() : QString();
  state.pictureDuration = transport_->pictureDurationNs() / kTenthMsNs;
}

int LiveSource::getPlayState() {
  return closed_ ? NothingSpecial : transport_->state();
}

}  // namespace korvia
