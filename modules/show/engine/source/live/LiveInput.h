// One connection of a live source to what it shows: a stream, a camera, a card, a helper process. LiveSource
// makes an input, closes it when it is lost, and makes another one. Source's control thread: start and the
// destructor. The input's own threads call the receiver, pictures and sound at the same time.
#pragma once
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include "engine/audio/StereoSpan.h"
#include "engine/frame/Frame.h"

namespace korvia {

/// Takes what an input receives. No call waits. Stamps are those of the input's own clock, the same for
/// pictures and sound, in nanoseconds; they may begin anywhere.
class LiveReceiver {
 public:
  virtual ~LiveReceiver() = default;
  /// A picture in the render size. It came `heldNs` ago, and the input has held it back since on purpose.
  virtual void onPicture(FrameRef picture, std::int64_t stampNs, std::int64_t heldNs) = 0;
  /// Sound, in the same way; the span is valid during the call.
  virtual void onSound(StereoSpan sound, std::int64_t stampNs, std::int64_t heldNs) = 0;
  /// Something has come that is held back at first.
  virtual void onHeldBack() = 0;
  /// When a picture with this stamp is shown, by the clock of LiveConnection; none while that is unknown.
  virtual std::optional<std::int64_t> shownNs(std::int64_t /*stampNs*/) const { return std::nullopt; }
  /// The stamps that follow have nothing to do with those before.
  virtual void onStampsRestart() = 0;
  /// Nothing comes any more. `reason` is for the log and the operator, without addresses and keys.
  virtual void onLost(const QString& reason) = 0;
};

class LiveInput {
 public:
  /// Closes. No call of the receiver runs any more when it returns. May block.
  virtual ~LiveInput() = default;
  /// Begins to receive; false with a reason when that is impossible. May block.
  virtual bool start(QString& reason) = 0;
};

using LiveInputMaker = std::function<std::unique_ptr<LiveInput>(LiveReceiver&)>;

/// What LiveSource must know of its inputs.
struct LiveSettings {
  /// For the operator and the log, without keys.
  QString description;
  /// From the arrival of data to their display; takes up the jitter of the input.
  std::int64_t latencyNs = 40'000'000;
  /// An input that has delivered and then delivers nothing for this time is lost. 0: never, for an input that
  /// delivers only when its picture changes.
  std::int64_t silenceNs = 5'000'000'000;
  /// An input that has not delivered anything since its start is given up after this time; 0: never.
  std::int64_t openingNs = 15'000'000'000;
  /// The longest wait before an input that was lost is opened again. The first wait is short, each failure
  /// makes the next one longer by half.
  std::int64_t mostWaitNs = 1'000'000'000;
  /// What the input adds to the latency of the clock, for the figures.
  std::int64_t inputLatencyNs = 0;
  /// Why no input can ever be opened, so that none is tried; empty when one can.
  QString neverOpens;
};

}  // namespace korvia
