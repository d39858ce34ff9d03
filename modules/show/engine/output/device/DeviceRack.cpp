#include "DeviceRack.h"

#include <chrono>
#include <utility>

#include "DevicePacedFeed.h"
#include "SdiModes.h"
#include "ShowPacedFeed.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

/// What the device takes; nothing for an SDI format that is not known.
std::optional<DevicePicture> pictureFor(const DeviceSettings& settings, const ShowFormat& format) {
  if (settings.kind != DeviceKind::Sdi)
    return DevicePicture{format.size, format.rate};
  const std::optional<SdiMode> mode = findSdiMode(settings.sdiFormat);
  return mode ? std::optional(mode->picture) : std::nullopt;
}

std::unique_ptr<DeviceFeed> makeFeed(DeviceKind kind, FrameRate show, FrameRate device) {
  using Sound = ShowPacedFeed::Sound;
  if (kind == DeviceKind::Sdi)
    return std::make_unique<DevicePacedFeed>(show, device);
  return std::make_unique<ShowPacedFeed>(show, kind == DeviceKind::Ndi ? Sound::Program : Sound::None);
}

}  // namespace

DeviceRack::DeviceRack(Janitor& janitor, DeviceOutput::FindCamera findCamera, DeviceOutput::Times times)
    : janitor_(janitor), findCamera_(std::move(findCamera)), times_(times) {}

void DeviceRack::open(const ShowFormat& format) {
  format_ = format;
  for (Place& place : places_) {
    end(place);
    begin(place);
  }
}

void DeviceRack::close() {
  format_.reset();
  for (int kind = 0; kind < kDeviceKinds; ++kind)
    stop(static_cast<DeviceKind>(kind));
}

void DeviceRack::start(DeviceKind kind, const tagKorviaShowOutputParam& param) {
  Place& place = places_[static_cast<std::size_t>(kind)];
  // All settings of devices lie in the item of the stream.
  DeviceSettings settings = DeviceSettings::of(kind, param.items[OutputSlotStream]);
  if (place.wanted == settings)
    return;
  end(place);
  {
    MutexLock lock(mutex_);
    place.wanted = std::move(settings);
  }
  begin(place);
}

void DeviceRack::stop(DeviceKind kind) {
  Place& place = places_[static_cast<std::size_t>(kind)];
  end(place);
  MutexLock lock(mutex_);
  place.wanted.reset();
}

void DeviceRack::begin(Place& place) {
  if (!place.wanted || !format_)
    return;
  const DeviceSettings& settings = *place.wanted;
  const std::optional<DevicePicture> picture = pictureFor(settings, *format_);
  if (!picture) {
    qCWarning(logOutput, "%s does not run : the output format \"%s\" is unknown",
              qPrintable(settings.label()), qPrintable(settings.sdiFormat));
    MutexLock lock(mutex_);
    place.failure = QStringLiteral("the output format \"%1\" is unknown").arg(settings.sdiFormat);
    return;
  }
  // The element of the cards has no property for it.
  if (!settings.sdiSignal.isEmpty() &&
      settings.sdiSignal.compare(QLatin1String("SDI"), Qt::CaseInsensitive) != 0)
    qCWarning(logOutput,
              "%s : the output signal \"%s\" cannot be set, that of the card's own settings is used",
              qPrintable(settings.label()), qPrintable(settings.sdiSignal));
  auto output = std::make_unique<DeviceOutput>(settings, *picture,
                                               makeFeed(settings.kind, format_->rate, picture->rate),
                                               findCamera_, place.inUse, times_);
  MutexLock lock(mutex_);
  place.output = std::move(output);
}

void DeviceRack::end(Place& place) {
  std::unique_ptr<DeviceOutput> output;
  {
    MutexLock lock(mutex_);
    place.failure.clear();
    output = std::exchange(place.output, nullptr);
  }
  if (!output)
    return;
  // At once, because the janitor may wait for a recording before it comes to this.
  output->stop();
  janitor_.dispose(std::move(output));
}

void DeviceRack::push(const FrameRef& frame, int count) {
  for (const Place& place : places_) {
    for (int i = 0; place.output && i < count; ++i)
      place.output->pushFrame(frame);
  }
}

void DeviceRack::pushSound(StereoSpan sound) {
  const qint64 nowNs = std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
  for (const Place& place : places_) {
    if (place.output)
      place.output->pushSound(sound, nowNs);
  }
}

QList<tagKorviaShowTargetReport> DeviceRack::reports() const {
  QList<tagKorviaShowTargetReport> reports;
  MutexLock lock(mutex_);
  for (const Place& place : places_) {
    if (place.output) {
      reports.append(place.output->report());
    } else if (place.wanted && !place.failure.isEmpty()) {
      tagKorviaShowTargetReport report;
      report.name = place.wanted->name();
      report.state = KorviaShowTargetState::Failed;
      report.reason = place.failure;
      reports.append(report);
    }
  }
  return reports;
}

}  // namespace korvia
