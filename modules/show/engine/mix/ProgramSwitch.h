// Runs the take on the program bus: from which channel to which, with which effect, and how far it is.
// Driven by takes and by the lever, stepped once a frame. Engine thread.
#pragma once
#include <QtGlobal>

#include "engine/mix/Transition.h"
#include "engine/mix/TransitionCatalog.h"

namespace korvia {

class ProgramSwitch {
 public:
  struct Take {
    int from = 0;
    int to = 0;
    int effect = 0;
    /// Seconds; 0, negative or not finite cuts.
    double duration = 0;
    int easing = 0;
  };

  /// What happened since the last call, for the reports to the console.
  struct Outcome {
    bool moved = false;
    float position = 0;
    /// The channel that is on program now; 0 when none was taken.
    int taken = 0;
  };

  /// Begins a take at this frame. For the same target a running automatic take goes on, and a take that the
  /// lever began continues automatically from its position with its own effect. For another target finish()
  /// must be called first.
  void take(const Take& take, double framesPerSecond);
  /// The lever is at `position`, 0 to 1, between the two channels. 1 completes the take, 0 abandons it.
  void moveLever(float position, int from, int to);
  /// Steps a running take by whole frames.
  void step(int frames);
  /// Completes a running take at once.
  void finish();
  /// Abandons a running take: program stays on the channel from which it began.
  void abandon();

  bool isRunning() const { return mode_ != Mode::Idle; }
  /// A take is complete and takeOutcome() was not called yet.
  bool isDone() const { return outcome_.taken != 0; }
  int from() const { return take_.from; }
  int to() const { return take_.to; }
  /// The eased position, 0 to 1, and the seed of the running take.
  MixPoint point() const { return {position_, seed_}; }
  double position() const { return position_; }
  /// Null for a cut.
  const Transition* transition() const;

  /// Returns what has to be reported and resets it.
  Outcome takeOutcome();

 private:
  enum class Mode { Idle, Auto, Lever };
  void setPosition(double position);
  void complete();
  void begin(const Take& take);

  Mode mode_ = Mode::Idle;
  Take take_;
  int lastEffect_ = kEffectFade;
  std::uint32_t takeCount_ = 0;
  std::uint32_t seed_ = 0;
  double position_ = 0;
  double start_ = 0;  // position at which the automatic run began
  qint64 elapsedFrames_ = 0;
  qint64 totalFrames_ = 1;
  Outcome outcome_;
};

}  // namespace korvia
