// One output of the show: its share in an encoder and the targets that get the packets. Engine thread, except
// figures() and waitFinished(). Destroyed on the thread of the janitor, since the end of a target may wait
// for a disk.
#pragma once
#include <array>
#include <atomic>
#include <memory>
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

  /// All targets begin with the next frame. The encoder is `running` when it suits the settings, which may be
  /// null, else a new one.
  OutputSlot(const EncoderSettings& settings, Targets targets, Janitor& janitor,
             std::shared_ptr<SlotEncoder> running = nullptr);
  /// Finishes and waits for the encoder and for all targets, for these with a time-out.
  ~OutputSlot() = default;
  OutputSlot(const OutputSlot&) = delete;
  OutputSlot& operator=(const OutputSlot&) = delete;

  /// Program frames and sound are pushed to it, once for all outputs that share it.
  const std::shared_ptr<SlotEncoder>& encoder() const { return encoder_; }
  /// Ends the output: pushed frames are encoded and written, and the targets end, in the background.
  void finish();
  /// Waits until all targets have ended, by finish() or on their own. False after the time-out.
  bool waitFinished(int timeoutMs);
  OutputFigures figures() const;
  /// The report for the console.
  tagKorviaShowOutputReport report() const;

 private:
  qint64 framesDropped() const;

  const Targets targets_;
  const std::shared_ptr<SlotEncoder> encoder_;  // destroyed first: its end finishes the targets
  const std::shared_ptr<EncoderShare> share_;
  const qint64 droppedBefore_;                // by the encoder, for others
  std::atomic<qint64> droppedUntilStop_{-1};  // by the encoder; negative while the output runs
};

}  // namespace korvia
