// Transitions that bend the picture, and those that let the second picture through a drawn or rolled pattern.
// Engine thread.
#pragma once
#include "engine/mix/Transition.h"
#include "engine/mix/distortions/DisplacementGrid.h"
#include "engine/mix/distortions/NodeGrid.h"

namespace korvia {

/// Fades from one picture to the other while both are bent the same way, most in the middle.
class BentFade : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const final;

 protected:
  /// Fills the grid; `swell` rises from 0 to 1 at the middle of the take and falls to 0 again, and scales all
  /// displacements.
  virtual void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
                    DisplacementGrid& grid) const = 0;
};

/// Rings around the centre turn against each other, and back.
class BandedSwirl final : public BentFade {
  void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
            DisplacementGrid& grid) const override;
};

/// Round waves run from the centre.
class Ripple final : public BentFade {
  void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
            DisplacementGrid& grid) const override;
};

/// The rows sway from side to side, and the swaying runs down.
class Wave final : public BentFade {
  void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
            DisplacementGrid& grid) const override;
};

/// A fade whose displacements only grow and shrink, so that they are made once a take.
class RisingFade : public BentFade {
 protected:
  /// Fills in each node the displacement in the middle of the take.
  virtual void fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const = 0;

 private:
  void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
            DisplacementGrid& grid) const final;
};

/// The picture breaks into pieces that scatter and come together again.
class Crumble final : public RisingFade {
  void fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const override;
};

/// Jagged rays: each direction from the centre is stretched or squeezed by a random factor.
class RadialWiggle final : public RisingFade {
  void fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const override;
};

/// Seen through glass with a woven relief.
class WovenGlass final : public RisingFade {
  void fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const override;
};

/// Each place turns from one picture to the other in its own time.
class TimedReveal : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const final;

 protected:
  /// `cellBits` as in NodeGrid; `softness` as in LevelGrid::open.
  TimedReveal(int cellBits, double softness) : cellBits_(cellBits), softness_(softness) {}
  /// Fills a time of arrival, 0 to 1, in each node; once a take.
  virtual void fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const = 0;

 private:
  int cellBits_;
  double softness_;
};

/// Clouds gather and grow together.
class CloudReveal final : public TimedReveal {
 public:
  CloudReveal();

 private:
  void fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const override;
};

/// Grain by grain.
class GrainDissolve final : public TimedReveal {
 public:
  GrainDissolve();

 private:
  void fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const override;
};

/// A circle with a ragged rim opens.
class RandomCircleReveal final : public TimedReveal {
 public:
  RandomCircleReveal();

 private:
  void fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const override;
};

/// A circle opens; the second picture is squeezed towards its rim and relaxes.
class CircleStretch final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// A lens swells in the middle, and the second picture comes out of it.
class MagnifySmooth final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia
