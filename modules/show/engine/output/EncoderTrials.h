// Finds out which encoders of GPUs work, and remembers it as long as it lives. An installed encoder may fail
// for lack of a device, a driver or a free session, so each is tried with a few black pictures. Any thread
// that may wait; not the engine's.
#pragma once
#include <map>
#include <utility>

#include "EncodePipeline.h"
#include "EncoderTable.h"
#include "ThreadSafety.h"

namespace korvia {

class EncoderTrials {
 public:
  /// Time-out of all encoders together.
  static constexpr int kLimitMs = 2000;

  EncoderTrials() = default;
  EncoderTrials(const EncoderTrials&) = delete;
  EncoderTrials& operator=(const EncoderTrials&) = delete;

  /// The first encoder of the accelerator that works for the encoding; x264 when none does. Waits for trials
  /// of encoders that were not tried before, which a machine without such encoders does not have.
  const EncoderElement& choose(KorviaShowEncodeAccelerator accelerator, const PictureEncoding& encoding)
      EXCLUDES(mutex_);
  /// An encoder that fails in use is not chosen again.
  void noteFailure(const EncoderElement& encoder, const PictureEncoding& encoding) EXCLUDES(mutex_);

 private:
  // A GPU may encode small pictures only.
  using Case = std::pair<const EncoderElement*, std::pair<int, int>>;

  Mutex mutex_;  // also held during a trial, so that no other one takes the session
  std::map<Case, bool> works_ GUARDED_BY(mutex_);
};

}  // namespace korvia
