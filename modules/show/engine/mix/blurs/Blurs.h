// The blur transitions, one in each file of this folder. The picture is blurred more and more towards the
// middle of the take, fades there and gets sharp again. Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

/// Smears along circles around the centre.
class CircularBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Smears along the rays from the centre, which stays sharp.
class RadialBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Smears horizontally, like a fast pan of a camera.
class DirectionalBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Like a lens out of focus: a Poisson disk of fixed taps that grows and shrinks.
class GrowablePoissonDisk final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Pixelates the fade: blocks whose side doubles up to the middle and halves again. Between two sizes, the
/// smaller of which divides the larger, one fades into the other.
class Pixelate final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Oversharpens every edge instead of blurring it.
class Sharpen final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// An eyepiece that narrows and opens again: sharp inside; dark, blurred and larger around it.
class TelescopicBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Zooms into the first picture with a radial smear and out of the second.
class ZoomBlur final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia
