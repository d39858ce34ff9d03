#include "OutputRack.h"

#include <algorithm>

#include "KorviaMetaType.h"
#include "KorviaShowEvents.h"
#include "OutputFactory.h"
#include "engine/EngineLog.h"

namespace korvia {

namespace {

// A little longer than a target may take to end. The next job of the janitor waits for it.
constexpr int kEndMs = 12'000;

/// Where the block of an output has the statistics of a target.
tagKorviaOutputTargetStatistics& placeOf(TargetKind kind, tagKorviaOutputStatisticsBlock& block) {
  switch (kind) {
    case TargetKind::Rtmp0:
      return block.rtmp[0];
    case TargetKind::Rtmp1:
      return block.rtmp[1];
    case TargetKind::RtmpLocal:
      return block.rtmp[2];
    case TargetKind::Http:
      return block.http;
    case TargetKind::Udp:
      return block.udp;
    case TargetKind::Hls:
      return block.hls;
    case TargetKind::Record:
      break;
  }
  return block.record;
}

}  // namespace

/// An output that ends: the janitor waits for its end, stores its report and destroys it.
struct OutputRack::Ending {
  std::shared_ptr<OutputSlot> output;
  std::shared_ptr<Ledger> ledger;
  int slot = 0;
  int start = 0;

  Ending(std::shared_ptr<OutputSlot> ending, std::shared_ptr<Ledger> book, int number, int count)
      : output(std::move(ending)), ledger(std::move(book)), slot(number), start(count) {}
  Ending(Ending&&) = default;
  Ending& operator=(Ending&&) = delete;
  ~Ending() {
    if (!output)
      return;
    const bool ended = output->waitFinished(kEndMs);
    tagKorviaShowOutputReport report = output->report();
    if (!ended) {
      report.state = KorviaShowOutputState::Failed;
      report.reason = QStringLiteral("the end was not written in time");
    }
    MutexLock lock(ledger->mutex);
    if (ledger->starts[static_cast<std::size_t>(slot)] == start)
      ledger->reports[static_cast<std::size_t>(slot)] = report;
  }
};

void OutputRack::open(const ShowFormat& format) {
  rate_ = format.rate;
}

void OutputRack::close() {
  for (int slot = 0; slot < kSlots; ++slot)
    end(slot);
  rate_.reset();
}

void OutputRack::start(int slot, const tagKorviaShowOutputParam& param, const QString& programName,
                       const tagKorviaFormatInfo& format) {
  if (!rate_) {
    qCWarning(logOutput, "no output starts before the show is open");
  } else if (slot >= 0 && slot < kSlots) {
    end(slot);
    {
      MutexLock lock(ledger_->mutex);
      ++ledger_->starts[static_cast<std::size_t>(slot)];
      ledger_->reports[static_cast<std::size_t>(slot)] = {};
    }
    IncomeTarget income;
    {
      MutexLock lock(mutex_);
      income = income_;
    }
    std::shared_ptr<OutputSlot> output = createOutputSlot(
        {slot, param, programName, format, *rate_, income, trials_}, janitor_, encoderBeside(slot));
    if (!output) {
      MutexLock lock(ledger_->mutex);
      tagKorviaShowOutputReport& report = ledger_->reports[static_cast<std::size_t>(slot)];
      report.state = KorviaShowOutputState::Failed;
      report.reason = QString::fromLatin1(kNoTarget);
    }
    MutexLock lock(mutex_);
    slots_[slot] = std::move(output);
  }
  host_->postResult(ShowEventStartOutput, slot, toVariant(param));
}

void OutputRack::stop(int slot, int kind) {
  if (slot >= 0 && slot < kSlots)
    end(slot);
  host_->postResult(ShowEventStopOutput, slot, kind);
}

void OutputRack::end(int slot) {
  if (!slots_[slot])
    return;
  slots_[slot]->finish();
  std::shared_ptr<OutputSlot> output;
  int start = 0;
  {
    // Under both locks, so that reports() finds the output in one of the two places.
    MutexLock lock(mutex_);
    MutexLock ledgerLock(ledger_->mutex);
    start = ledger_->starts[static_cast<std::size_t>(slot)];
    ledger_->reports[static_cast<std::size_t>(slot)] = slots_[slot]->report();
    output = std::move(slots_[slot]);
  }
  janitor_.dispose(Ending(std::move(output), ledger_, slot, start));
}

OutputRack::Reports OutputRack::reports() const {
  MutexLock lock(mutex_);
  MutexLock ledgerLock(ledger_->mutex);
  Reports reports = ledger_->reports;
  for (std::size_t slot = 0; slot < slots_.size(); ++slot) {
    if (slots_[slot])
      reports[slot] = slots_[slot]->report();
  }
  return reports;
}

std::shared_ptr<SlotEncoder> OutputRack::encoderBeside(int slot) const {
  for (int other = 0; other < kSlots; ++other) {
    if (other != slot && slots_[other])
      return slots_[other]->encoder();
  }
  return nullptr;
}

template <typename Function>
void OutputRack::forEachEncoder(const Function& function) const {
  for (auto slot = slots_.begin(); slot != slots_.end(); ++slot) {
    const auto isSame = [&slot](const std::shared_ptr<OutputSlot>& other) {
      return other && other->encoder() == (*slot)->encoder();
    };
    if (*slot && std::none_of(slots_.begin(), slot, isSame))
      function(*(*slot)->encoder());
  }
}

void OutputRack::push(const FrameRef& frame, int count) {
  forEachEncoder([&](SlotEncoder& encoder) {
    for (int i = 0; i < count; ++i)
      encoder.pushFrame(frame);
  });
}

void OutputRack::pushSound(StereoSpan sound) {
  forEachEncoder([&](SlotEncoder& encoder) { encoder.pushSound(sound); });
}

bool OutputRack::isRunning(int slot) const {
  MutexLock lock(mutex_);
  return slots_[slot] && slots_[slot]->figures().up;
}

void OutputRack::statistics(tagKorviaOutputStatistics& statistics) const {
  MutexLock lock(mutex_);
  for (int slot = 0; slot < kSlots; ++slot) {
    if (!slots_[slot])
      continue;
    const OutputFigures figures = slots_[slot]->figures();
    tagKorviaOutputStatisticsBlock& block = statistics.blocks[slot];
    block.videoFps = figures.framesPerSecond;
    block.videoBitrate = figures.videoKbps;
    block.audioRate = figures.samplesPerSecond;
    block.audioBitrate = figures.soundKbps;
    block.encodeDelay = figures.encodeDelayMs;
    block.videoAudioDrift = figures.pictureLessSoundMs;
    qstrncpy(block.frameType.data(), figures.frameTypes.toLatin1().constData(), block.frameType.size());
    for (std::size_t kind = 0; kind < kTargetKinds; ++kind)
      placeOf(static_cast<TargetKind>(kind), block).bitrate = figures.kbps[kind];
  }
}

}  // namespace korvia
