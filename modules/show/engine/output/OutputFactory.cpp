#include "OutputFactory.h"

#include <algorithm>
#include <utility>

#include "FileTarget.h"
#include "engine/EngineLog.h"
#include "engine/ShowFormat.h"
#include "engine/audio/Limiter.h"
#include "engine/output/stream/HlsTarget.h"
#include "engine/output/stream/HttpTarget.h"
#include "engine/output/stream/PushTarget.h"
#include "engine/output/stream/UdpTarget.h"

namespace korvia {

namespace {

/// Null when the request does not ask for this kind of target.
using TargetMaker = std::unique_ptr<Target> (*)(const OutputRequest& request);

// In the order of the report.
constexpr TargetMaker kTargetMakers[] = {
    PushTarget::createFirst, PushTarget::createSecond, PushTarget::createLocal, HttpTarget::create,
    UdpTarget::create,       HlsTarget::create,        FileTarget::create};

constexpr FrameSize kDefaultSize{1920, 1080};
// The range of the slider in the output settings, whose text field takes any number.
constexpr int kMinKbps = 256;
constexpr int kMaxKbps = 25600;
constexpr int kDefaultSoundKbps = 128;
constexpr qint64 kMinSoundKbps = 32;
constexpr qint64 kMaxSoundKbps = 320;
// The span of a group of frames that a recording encodes in one go.
constexpr std::int64_t kBurstNs = 200'000'000;

// Chroma is subsampled by two, so the encoder takes even sides only.
int usableSide(int side) {
  return std::clamp(side, kFrameSideMin, kFrameSideMax) / 2 * 2;
}

FrameSize encodedSize(const tagKorviaVideoFormat& video) {
  const FrameSize wanted{video.width, video.height};
  return wanted.isEmpty() ? kDefaultSize : FrameSize{usableSide(wanted.width), usableSide(wanted.height)};
}

int encodedKbps(int kbps) {
  const int clamped = std::clamp(kbps, kMinKbps, kMaxKbps);
  if (clamped != kbps)
    qCWarning(logOutput, "a bitrate of %d kbit/s is out of range, taking %d", kbps, clamped);
  return clamped;
}

KorviaShowEncodeAccelerator encodedAccelerator(qint64 accelerator) {
  const bool exists =
      accelerator == EncodeAcceleratorIntegratedGpu || accelerator == EncodeAcceleratorIndependentGpu;
  return exists ? static_cast<KorviaShowEncodeAccelerator>(accelerator) : EncodeAcceleratorSoftware;
}

int encodedSoundKbps(qint64 kbps) {
  return kbps <= 0 ? kDefaultSoundKbps : static_cast<int>(std::clamp(kbps, kMinSoundKbps, kMaxSoundKbps));
}

}  // namespace

std::unique_ptr<OutputSlot> createOutputSlot(const OutputRequest& request, Janitor& janitor,
                                             std::shared_ptr<SlotEncoder> running) {
  if (request.slot != OutputSlotStream && request.slot != OutputSlotRecord) {
    qCWarning(logOutput, "there is no output %d", request.slot);
    return nullptr;
  }
  OutputSlot::Targets targets;
  for (const TargetMaker make : kTargetMakers) {
    if (std::unique_ptr<Target> target = make(request))
      targets.push_back(std::move(target));
  }
  if (targets.empty()) {
    qCWarning(logOutput, "%s", kNoTarget);
    return nullptr;
  }
  EncoderSettings encoder;
  encoder.label =
      request.slot == OutputSlotRecord ? QStringLiteral("the recording") : QStringLiteral("the stream");
  encoder.picture = {encodedSize(request.format.video), request.rate,
                     encodedKbps(request.param.encode[request.slot].videoBitrate)};
  if (request.format.audio.enable != 0)
    encoder.soundKbps = encodedSoundKbps(request.param.encode[request.slot].audioBitrate);
  encoder.accelerator = encodedAccelerator(request.param.encode[request.slot].accelerator);
  encoder.trials = request.trials;
  encoder.soundDelaySamples = Limiter::kLatencySamples;
  encoder.queueCapacity =
      static_cast<int>(std::clamp<std::int64_t>(request.rate.framesIn(1'000'000'000), 1, 60));
  if (request.slot == OutputSlotRecord)
    encoder.burstFrames = static_cast<int>(
        std::clamp<std::int64_t>(request.rate.framesIn(kBurstNs), 1, std::max(1, encoder.queueCapacity / 2)));
  return std::make_unique<OutputSlot>(encoder, std::move(targets), janitor, std::move(running));
}

}  // namespace korvia
