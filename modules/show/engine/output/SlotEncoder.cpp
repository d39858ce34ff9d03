#include "SlotEncoder.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "engine/EngineLog.h"
#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"
#include "engine/frame/FrameFit.h"

namespace korvia {

namespace {

constexpr int kMeasureMs = 1000;
constexpr int kQueuedSamples = kSampleRate;
// While encoders of GPUs are tried, so many times the frames and samples wait.
constexpr int kTrialQueues = 1 + (EncoderTrials::kLimitMs + 999) / 1000;
// A longer gap comes from a wrong time stamp; only so much of it is filled.
constexpr qint64 kMostSilence = 60LL * kSampleRate;

int queuesOf(const EncoderSettings& settings) {
  return settings.accelerator == EncodeAcceleratorSoftware ? 1 : kTrialQueues;
}

const char* noneWorks(KorviaShowEncodeAccelerator accelerator) {
  return accelerator == EncodeAcceleratorIntegratedGpu ? ": no encoder of an integrated GPU works"
                                                       : ": no encoder of an independent GPU works";
}

qint64 nowNs() {
  return std::chrono::steady_clock::now().time_since_epoch() / std::chrono::nanoseconds(1);
}

}  // namespace

SlotEncoder::SlotEncoder(EncoderSettings settings, Janitor& janitor)
    : settings_(std::move(settings)),
      janitor_(janitor),
      queue_(settings_.queueCapacity * queuesOf(settings_)),
      sound_(settings_.soundKbps > 0 ? kQueuedSamples * queuesOf(settings_) : 1) {
  thread_ = std::thread([this] { run(); });
}

SlotEncoder::~SlotEncoder() {
  finish();
  thread_.join();
}

std::shared_ptr<EncoderShare> SlotEncoder::addShare(const EncoderSettings& settings) {
  const auto isClosed = [](const std::shared_ptr<EncoderShare>& share) { return share->isClosed(); };
  ownShares_.erase(std::remove_if(ownShares_.begin(), ownShares_.end(), isClosed), ownShares_.end());
  for (const std::shared_ptr<EncoderShare>& other : ownShares_) {
    if (!other->isEnding())
      qCInfo(logOutput, "%s shares the encoder of %s", qPrintable(settings.label),
             qPrintable(other->label()));
  }
  auto share = std::make_shared<EncoderShare>(settings.label, settings.burstFrames,
                                              settings_.picture.rate.nsOf(pushedFrames_), janitor_);
  ownShares_.push_back(share);
  takeBurst();
  MutexLock lock(sharesMutex_);
  shares_ = ownShares_;
  if (closed_)
    share->close(closeReason_);
  return share;
}

void SlotEncoder::endShare(EncoderShare& share) {
  share.end(settings_.picture.rate.nsOf(pushedFrames_));
  takeBurst();
  if (std::all_of(ownShares_.begin(), ownShares_.end(),
                  [](const std::shared_ptr<EncoderShare>& other) { return other->isEnding(); }))
    finish();
}

bool SlotEncoder::suits(const EncoderSettings& settings) const {
  if (settings.picture != settings_.picture || settings.soundKbps != settings_.soundKbps ||
      settings.soundDelaySamples != settings_.soundDelaySamples ||
      settings.accelerator != settings_.accelerator)
    return false;
  MutexLock lock(mutex_);
  return accepting_;
}

bool SlotEncoder::isWanted() const {
  return std::any_of(ownShares_.begin(), ownShares_.end(),
                     [](const std::shared_ptr<EncoderShare>& share) { return share->hasTargets(); });
}

void SlotEncoder::takeBurst() {
  int burst = settings_.queueCapacity;
  for (const std::shared_ptr<EncoderShare>& share : ownShares_)
    burst = share->isEnding() ? burst : std::min(burst, share->burstFrames());
  MutexLock lock(mutex_);
  burstFrames_ = burst;
}

SlotEncoder::Shares SlotEncoder::openShares() const {
  MutexLock lock(sharesMutex_);
  return shares_;
}

bool SlotEncoder::hasTargets() const {
  const Shares shares = openShares();
  return std::any_of(shares.begin(), shares.end(),
                     [](const std::shared_ptr<EncoderShare>& share) { return share->hasTargets(); });
}

void SlotEncoder::pushFrame(const FrameRef& frame) {
  const qint64 frameIndex = pushedFrames_++;
  if (!frame || !isWanted())
    return;
  pushedNs_[static_cast<std::size_t>(frameIndex) % pushedNs_.size()] = nowNs();
  {
    MutexLock lock(mutex_);
    if (!accepting_)
      return;
    const bool isFull = started_ && queue_.size() >= settings_.queueCapacity;
    if (isFull || !queue_.push(frame, frameIndex)) {
      ++figures_.framesDropped;
      return;
    }
    if (!inBurst_ && queue_.size() < burstFrames_)
      return;
    inBurst_ = true;
  }
  // After the lock is released, so that the woken thread does not wait for it.
  changed_.notify_all();
}

void SlotEncoder::pushSound(StereoSpan sound) {
  const qint64 firstSample =
      std::exchange(pushedSamples_, pushedSamples_ + sound.samples) - settings_.soundDelaySamples;
  if (settings_.soundKbps <= 0 || !isWanted())
    return;
  // What comes before the first frame belongs to a picture that was not pushed.
  const int early = static_cast<int>(std::clamp<qint64>(-firstSample, 0, sound.samples));
  MutexLock lock(mutex_);
  // It is encoded with the next frames, so the thread is not woken.
  if (accepting_ && early < sound.samples)
    sound_.push(sound.part(early, sound.samples - early), firstSample + early);
}

void SlotEncoder::finish() {
  MutexLock lock(mutex_);
  accepting_ = false;
  changed_.notify_all();
}

bool SlotEncoder::waitFinished(int timeoutMs) {
  MutexLock lock(mutex_);
  return changed_.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                           [this]() REQUIRES(mutex_) { return finished_; });
}

EncoderFigures SlotEncoder::figures() const {
  MutexLock lock(mutex_);
  EncoderFigures figures = figures_;
  figures.framesEncoded = framesEncoded_;
  return figures;
}

void SlotEncoder::run() {
  nameThread("kv-encoder");
  runAsBatch(kOutputNice);
  sinceMeasure_.start();
  Step result = Step::Continue;
  while (result == Step::Continue)
    result = step();
  close(result == Step::Failed);
}

SlotEncoder::Step SlotEncoder::step() {
  QueuedFrame queued;
  qint64 firstSample = 0;
  bool finishing = false;
  bool drained = false;
  {
    MutexLock lock(mutex_);
    const auto isOver = [this] { return pipeline_ && (hasEnded() || pipeline_->hasFailed()); };
    const auto canFeed = [this]() REQUIRES(mutex_) {
      return !queue_.isEmpty() && (inBurst_ || !accepting_) && (!pipeline_ || pipeline_->hasRoom());
    };
    const auto mustAct = [&]() REQUIRES(mutex_) {
      return canFeed() || isOver() || (soundPipeline_ && soundPipeline_->hasFailed()) ||
             (!accepting_ && queue_.isEmpty() && !streamEnded_);
    };
    const qint64 untilMeasure = std::max<qint64>(1, kMeasureMs - sinceMeasure_.elapsed());
    changed_.wait_for(lock, std::chrono::milliseconds(untilMeasure), mustAct);
    if (canFeed())
      queued = queue_.pop();
    // Before the first frame there is no pipeline for it.
    samples_.clear();
    if (pipeline_ || queued.frame)
      firstSample = sound_.popAll(samples_);
    finishing = !accepting_;
    drained = queue_.isEmpty();
    inBurst_ = inBurst_ && !drained;
    started_ = started_ || (pipeline_ && drained);
  }

  // Without a target the packets are not used, and x264 holds many megabytes.
  if (pipeline_ && !streamEnded_ && !hasTargets())
    closePipelines();
  if (pipeline_ && pipeline_->hasFailed() && !replaceEncoder())
    return Step::Failed;
  if (soundPipeline_ && soundPipeline_->hasFailed())
    giveUpSound();
  if (pipeline_ && hasEnded())
    return Step::Ended;
  if (queued.frame && !feed(queued))
    return Step::Failed;
  feedSound(firstSample);
  if (sinceMeasure_.hasExpired(kMeasureMs))
    measure();
  return finishing ? stepToEnd(drained) : Step::Continue;
}

SlotEncoder::Step SlotEncoder::stepToEnd(bool drained) {
  if (!sinceFinish_.isValid())
    sinceFinish_.start();
  if (drained && !streamEnded_) {
    if (!pipeline_)
      return Step::Ended;
    pipeline_->endStream();
    if (soundPipeline_)
      soundPipeline_->endStream();
    streamEnded_ = true;
  }
  if (!sinceFinish_.hasExpired(settings_.finishTimeoutMs))
    return Step::Continue;
  reason_ = QStringLiteral("the last frames were not encoded in time");
  return Step::Failed;
}

bool SlotEncoder::feed(const QueuedFrame& queued) {
  if (!hasTargets())
    return true;
  if (!pipeline_ && !open())
    return false;
  FrameRef frame = queued.frame;
  const FrameSize size = settings_.picture.size;
  if (frame->size() != size) {
    if (!scaled_)
      scaled_ = std::make_unique<FramePool>(size);
    MutableFrame target = scaled_->acquire();
    fitFrame(*frame, fitRect(frame->size(), 1, 1, size), *target);
    frame = std::move(target).publish();
  }
  const bool key = takeKeyRequest(settings_.picture.rate.nsOf(queued.index));
  pipeline_->feed({frame, queued.index, key ? FedFrame::Key::Now : FedFrame::Key::IfItsTurn});
  return true;
}

bool SlotEncoder::takeKeyRequest(qint64 frameNs) {
  bool wanted = false;
  for (const std::shared_ptr<EncoderShare>& share : openShares())
    wanted = share->takeKeyRequest(frameNs) || wanted;
  return wanted;
}

void SlotEncoder::feedSound(qint64 firstSample) {
  if (samples_.empty() || !pipeline_ || soundFailed_)
    return;
  if (!soundPipeline_) {
    soundPipeline_ = std::make_unique<SoundEncodePipeline>(
        [this](const Track& track, Packet packet) {
          samplesEncoded_ += SoundEncodePipeline::kPacketSamples;
          soundBytesEncoded_ += packet.bytes;
          interleaver_->pushSound(track, std::move(packet));
        },
        [this] { wake(); });
    if (!soundPipeline_->open(settings_.soundKbps, firstSample)) {
      giveUpSound();
      return;
    }
  }
  qint64 silence = firstSample - soundPipeline_->nextSample();
  for (silence = std::clamp<qint64>(silence, 0, kMostSilence); silence > 0; silence -= kQueuedSamples)
    soundPipeline_->feed(
        std::vector<float>(2 * static_cast<std::size_t>(std::min<qint64>(silence, kQueuedSamples))));
  soundPipeline_->feed(samples_);
}

void SlotEncoder::giveUpSound() {
  soundFailed_ = true;
  for (const std::shared_ptr<EncoderShare>& share : openShares())
    qCWarning(logOutput, "%s has no sound : %s", qPrintable(share->label()),
              qPrintable(soundPipeline_->failure()));
  soundPipeline_.reset();
  interleaver_->endSound();
}

bool SlotEncoder::open() {
  using Sound = PacketInterleaver::Sound;
  interleaver_ =
      std::make_unique<PacketInterleaver>(settings_.soundKbps > 0 && !soundFailed_ ? Sound::Yes : Sound::No,
                                          [this](const Packet& packet) { onPacket(packet); });
  const EncoderElement& encoder = settings_.trials->choose(settings_.accelerator, settings_.picture);
  const bool isWish = settings_.accelerator == EncodeAcceleratorSoftware || &encoder != &softwareEncoder();
  for (const std::shared_ptr<EncoderShare>& share : openShares())
    qCInfo(logOutput, "%s is encoded by %s%s", qPrintable(share->label()), encoder.name,
           isWish ? "" : noneWorks(settings_.accelerator));
  return openPicture(encoder) || replaceEncoder();
}

bool SlotEncoder::openPicture(const EncoderElement& encoder) {
  pipeline_ = std::make_unique<EncodePipeline>(
      encoder,
      [this](const Track& track, Packet packet) { interleaver_->pushPicture(track, std::move(packet)); },
      [this] { wake(); });
  return pipeline_->open(settings_.picture, generation_++);
}

bool SlotEncoder::replaceEncoder() {
  reason_ = pipeline_->failure();
  const EncoderElement& failed = pipeline_->encoder();
  if (&failed == &softwareEncoder())
    return false;
  settings_.trials->noteFailure(failed, settings_.picture);
  for (const std::shared_ptr<EncoderShare>& share : openShares())
    qCWarning(logOutput, "%s has failed, %s is encoded by %s from here on : %s", failed.name,
              qPrintable(share->label()), softwareEncoder().name, qPrintable(reason_));
  const std::deque<FedFrame> unfinished = pipeline_->stop();
  if (!openPicture(softwareEncoder())) {
    reason_ = pipeline_->failure();
    return false;
  }
  for (const FedFrame& fed : unfinished)
    pipeline_->feed(fed);
  if (streamEnded_)
    pipeline_->endStream();
  return true;
}

void SlotEncoder::closePipelines() {
  pipeline_.reset();
  soundPipeline_.reset();
  interleaver_.reset();
  MutexLock lock(mutex_);
  sound_.clear();
}

bool SlotEncoder::hasEnded() const {
  return pipeline_->isEnded() && (!soundPipeline_ || soundPipeline_->isEnded());
}

void SlotEncoder::onPacket(const Packet& packet) {
  for (const std::shared_ptr<EncoderShare>& share : openShares())
    share->deliver(packet);
  if (packet.endsTrack)
    return;
  if (!packet.isPicture()) {
    newestSoundNs_ = packet.ptsNs;
    return;
  }
  // From the middle of the frame, since time stamps are rounded down.
  const qint64 index = settings_.picture.rate.framesIn(packet.ptsNs + packet.durationNs / 2);
  delayNs_ += nowNs() - pushedNs_[static_cast<std::size_t>(index) % pushedNs_.size()];
  newestPictureNs_ = packet.ptsNs;
  keyFramesEncoded_ += packet.keyFrame ? 1 : 0;
  bytesEncoded_ += packet.bytes;
  ++framesEncoded_;
}

void SlotEncoder::wake() {
  // Taking the lock once makes sure that the waiting thread is not between its test and its wait, where it
  // would miss the notification.
  { MutexLock lock(mutex_); }
  changed_.notify_all();
}

void SlotEncoder::measureTimes(EncoderFigures& figures, qint64 frames) {
  const qint64 delayNs = delayNs_;
  const qint64 keyFrames = keyFramesEncoded_;
  const qint64 soundNs = newestSoundNs_;
  const qint64 newFrames = frames - lastFrames_;
  // The streaming thread may have counted one more since.
  const qint64 newKeyFrames = std::min(newFrames, keyFrames - lastKeyFrames_);
  figures.encodeDelayMs = newFrames > 0 ? (delayNs - lastDelayNs_) / newFrames / 1'000'000 : 0;
  figures.pictureLessSoundMs = soundNs == kNoSound ? 0 : (newestPictureNs_ - soundNs) / 1'000'000;
  figures.frameTypes = newFrames > 0
                           ? QStringLiteral("I %1, P %2").arg(newKeyFrames).arg(newFrames - newKeyFrames)
                           : QString();
  lastDelayNs_ = delayNs;
  lastKeyFrames_ = keyFrames;
}

void SlotEncoder::measure() {
  const qint64 elapsedMs = std::max<qint64>(1, sinceMeasure_.restart());
  const qint64 frames = framesEncoded_;
  const qint64 bytes = bytesEncoded_;
  const qint64 samples = samplesEncoded_;
  const qint64 soundBytes = soundBytesEncoded_;
  qint64 dropped = 0;
  {
    MutexLock lock(mutex_);
    figures_.framesPerSecond =
        static_cast<float>(frames - lastFrames_) * 1000.0F / static_cast<float>(elapsedMs);
    figures_.videoKbps = static_cast<float>(bytes - lastBytes_) * 8.0F / static_cast<float>(elapsedMs);
    figures_.samplesPerSecond =
        static_cast<float>(samples - lastSamples_) * 1000.0F / static_cast<float>(elapsedMs);
    figures_.soundKbps =
        static_cast<float>(soundBytes - lastSoundBytes_) * 8.0F / static_cast<float>(elapsedMs);
    measureTimes(figures_, frames);
    dropped = figures_.framesDropped;
  }
  if (dropped > lastDropped_) {
    for (const std::shared_ptr<EncoderShare>& share : openShares())
      qCWarning(logOutput, "%s cannot keep up, %lld frames dropped", qPrintable(share->label()),
                static_cast<long long>(dropped - lastDropped_));
  }
  lastFrames_ = frames;
  lastBytes_ = bytes;
  lastSamples_ = samples;
  lastSoundBytes_ = soundBytes;
  lastDropped_ = dropped;
}

void SlotEncoder::close(bool failed) {
  // What the interleaver still keeps comes in its order, as far as it came.
  if (interleaver_) {
    interleaver_->endPicture();
    interleaver_->endSound();
  }
  {
    MutexLock lock(sharesMutex_);
    closed_ = true;
    closeReason_ = failed ? reason_ : QString();
  }
  // All packets are delivered to the targets at this point.
  for (const std::shared_ptr<EncoderShare>& share : openShares()) {
    if (failed && !share->isClosed())
      qCWarning(logOutput, "%s cannot be encoded : %s", qPrintable(share->label()), qPrintable(reason_));
    share->close(failed ? reason_ : QString());
  }
  // After the targets, whose files must not wait for a driver that hangs.
  closePipelines();
  MutexLock lock(mutex_);
  accepting_ = false;
  while (!queue_.isEmpty())
    queue_.pop();
  EncoderFigures last;
  last.framesDropped = figures_.framesDropped;
  figures_ = last;
  finished_ = true;
  changed_.notify_all();
}

}  // namespace korvia
