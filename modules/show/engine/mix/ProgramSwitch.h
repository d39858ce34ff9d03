// Runs the take on the program bus: from which channel to which, with which effect, how far. Driven by takes
// and by the lever, stepped once a frame. Engine thread.
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
    /// Not 0: this channel is on program now.
    int taken = 0;
  };

  /// Begins a take at this frame. The same target again lets a running take go on, and lets one that the
  /// lever began run on by itself from where it stands, with the effect that it has. Another target must wait
  /// until finish() was called.
  void take(const Take& take, double framesPerSecond);
  /// The lever stands at `position`, 0 to 1, between the two channels. At 1 the take is done, at 0 given up.
  void moveLever(float position, int from, int to);
  /// Steps a running take by whole frames.
  void step(int frames);
  /// Ends a running take at its target at once.
  void finish();
  /// Gives a running take up: program stays where it was.
  void abandon();

  bool isRunning() const { return mode_ != Mode::Idle; }
  /// A take came to its end and has not been handed over yet.
  bool isDone() const { return outcome_.taken != 0; }
  int from() const { return take_.from; }
  int to() const { return take_.to; }
  /// 0 to 1, eased, and the seed of the take that is running.
  MixPoint point() const { return {position_, seed_}; }
  double position() const { return position_; }
  /// Null for a cut.
  const Transition* transition() const;

  /// Hands over what is to be reported and forgets it.
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
