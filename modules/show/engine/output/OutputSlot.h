// One output of the show: an encoder and the targets that get its packets. Engine thread, except figures()
// and waitFinished(). Destroyed on the thread of the janitor, since the end of a target may wait for a disk.
#pragma once
#include <array>
#include <atomic>
#include <memory>
#include <utility>
#include <vector>

#include "SlotEncoder.h"
#include "tagKorviaShowOutputReport.h"

namespace korvia {

struct OutputFigures {
  bool up = false;  ///< a target is up, or lost and tried again
  qint64 framesEncoded = 0;
  qint64 framesDropped = 0;                ///< by the encoder and by the targets
  qint64 bytesWritten = 0;                 ///< by all targets
  std::array<float, kTargetKinds> kbps{};  ///< of each TargetKind, of the last second
  float videoKbps = 0;
  float framesPerSecond = 0;
  float soundKbps = 0;
  float samplesPerSecond = 0;
  qint64 encodeDelayMs = 0;  ///< see EncoderFigures, as the next two
  qint64 pictureLessSoundMs = 0;
  QString frameTypes;
};

class OutputSlot {
 public:
  using Targets = std::vector<std::shared_ptr<Target>>;

  /// All targets begin with the first frame.
  OutputSlot(EncoderSettings encoder, Targets targets, Janitor& janitor);
  /// Finishes and waits for the encoder and for all targets, for these with a time-out.
  ~OutputSlot() = default;
  OutputSlot(const OutputSlot&) = delete;
  OutputSlot& operator=(const OutputSlot&) = delete;

  /// The next program frame: the n-th call makes the n-th time stamp. Never blocks.
  void pushFrame(const FrameRef& frame) { encoder_.pushFrame(frame, frames_++); }
  /// The sound of the frames that were pushed since the last call. Never blocks.
  void pushSound(StereoSpan sound) {
    encoder_.pushSound(sound, std::exchange(samples_, samples_ + sound.samples));
  }
  /// Ends the output: pushed frames are encoded and written, and the targets end, in the background.
  void finish();
  /// Waits until all targets have ended, by finish() or on their own. False after the time-out.
  bool waitFinished(int timeoutMs);
  OutputFigures figures() const;
  /// The report for the console.
  tagKorviaShowOutputReport report() const;

 private:
  const Targets targets_;
  SlotEncoder encoder_;  // destroyed first: its end finishes the targets
  qint64 frames_ = 0;
  qint64 samples_ = 0;
  std::atomic<bool> stopped_{false};  // by finish()
};

}  // namespace korvia
