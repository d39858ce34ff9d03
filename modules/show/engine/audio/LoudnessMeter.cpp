#include "LoudnessMeter.h"

#include <ebur128.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "engine/ThreadName.h"
#include "engine/ThreadPriority.h"

namespace korvia {

namespace {

constexpr int kCapacity = kSampleRate;
// EBU Tech 3341 asks for a new momentary loudness ten times a second.
constexpr std::chrono::milliseconds kPeriod{100};
constexpr int kPiece = 4800;
constexpr unsigned kSides = 2;

double orSilence(double decibels) {
  return std::max(decibels, tagKorviaShowEngineFigures::Loudness::kSilence);
}

}  // namespace

/// The state of libebur128 for one show.
class LoudnessMeter::Analysis {
 public:
  Analysis() { restart(); }

  void restart() {
    // A histogram keeps the memory of the integrated loudness constant, however long the show is.
    constexpr int kModes =
        EBUR128_MODE_M | EBUR128_MODE_S | EBUR128_MODE_I | EBUR128_MODE_TRUE_PEAK | EBUR128_MODE_HISTOGRAM;
    state_.reset(ebur128_init(kSides, kSampleRate, kModes));
  }
  void add(const float* pairs, int samples) {
    ebur128_add_frames_float(state_.get(), pairs, static_cast<std::size_t>(samples));
  }
  Loudness loudness() const {
    Loudness result;
    result.momentaryLufs = orSilence(of(ebur128_loudness_momentary));
    result.shortTermLufs = orSilence(of(ebur128_loudness_shortterm));
    result.integratedLufs = orSilence(of(ebur128_loudness_global));
    double peak = 0;
    for (unsigned side = 0; side < kSides; ++side) {
      double ofSide = 0;
      ebur128_true_peak(state_.get(), side, &ofSide);
      peak = std::max(peak, ofSide);
    }
    result.truePeakDbtp = orSilence(20 * std::log10(peak));
    return result;
  }

 private:
  struct Destroy {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
  };
  double of(int (*measure)(ebur128_state*, double*)) const {
    double lufs = 0;
    return measure(state_.get(), &lufs) == EBUR128_SUCCESS ? lufs : Loudness::kSilence;
  }

  std::unique_ptr<ebur128_state, Destroy> state_;
};

LoudnessMeter::LoudnessMeter() : ring_(kCapacity), thread_([this] { run(); }) {}

LoudnessMeter::~LoudnessMeter() {
  {
    MutexLock lock(mutex_);
    stop_ = true;
  }
  wake_.notify_all();
  thread_.join();
}

void LoudnessMeter::restart() {
  showBegin_ = ring_.pushed();
}

LoudnessMeter::Loudness LoudnessMeter::loudness() const {
  MutexLock lock(mutex_);
  return measuredShow_ == showBegin_ ? loudness_ : Loudness();
}

bool LoudnessMeter::isUpToDate() const {
  MutexLock lock(mutex_);
  return measuredShow_ == showBegin_ && measured_ == ring_.pushed();
}

void LoudnessMeter::run() {
  nameThread("kv-loudness");
  runAsBatch();
  Analysis analysis;
  MutexLock lock(mutex_);
  while (!wake_.wait_for(lock, kPeriod, [this]() REQUIRES(mutex_) { return stop_; })) {
    lock.unlock();
    measure(analysis);
    lock.lock();
  }
}

void LoudnessMeter::measure(Analysis& analysis) {
  std::array<float, kSides * kPiece> pairs;
  std::size_t show = 0;
  {
    MutexLock lock(mutex_);
    show = measuredShow_;
  }
  for (;;) {
    const std::size_t begin = showBegin_;
    if (begin != show) {
      analysis.restart();
      show = begin;
    }
    const std::size_t at = ring_.popped();
    // Up to the begin of the show what is popped is dropped.
    const bool isOld = static_cast<std::ptrdiff_t>(begin - at) > 0;
    const int most = isOld ? static_cast<int>(std::min<std::size_t>(kPiece, begin - at)) : kPiece;
    const int count = ring_.pop(pairs.data(), most);
    if (count == 0)
      break;
    if (!isOld)
      analysis.add(pairs.data(), count);
  }
  const Loudness loudness = analysis.loudness();
  MutexLock lock(mutex_);
  loudness_ = loudness;
  measured_ = ring_.popped();
  measuredShow_ = show;
}

}  // namespace korvia
