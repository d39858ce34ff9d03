// The blurs: the picture loses its sharpness towards the middle of the way, where one fades into the other,
// and finds it again. Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

/// Smears along circles round the middle.
class CircularBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Smears along the rays from the middle, which stays sharp.
class RadialBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Smears sideways, as a camera that swings round does.
class DirectionalBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Puts the lens out of focus: a disk of fixed taps grows and shrinks.
class GrowablePoissonDisk final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// The other way round: overdraws every edge.
class Sharpen final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Looks through an eyepiece that narrows and opens again: sharp inside, dark, blurred and larger round it.
class TelescopicBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Flies into the first picture with a smear and comes to rest in the second.
class ZoomBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia
