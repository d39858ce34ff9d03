// The distortion transitions, one in each file of this folder: those that bend the picture, and those that
// reveal the second picture through a mask that is computed at the nodes of a grid. Engine thread.
#pragma once
#include "engine/mix/Transition.h"
#include "engine/mix/distortions/DisplacementGrid.h"
#include "engine/mix/distortions/NodeGrid.h"

namespace korvia {

/// A fade during which both pictures are bent in the same way, most in the middle of the take.
class BentFade : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const final;

 protected:
  /// Fills the grid. `swell` rises from 0 to 1 in the middle of the take and falls to 0 again; all
  /// displacements are in proportion to it.
  virtual void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
                    DisplacementGrid& grid) const = 0;
};

/// Rings around the centre that rotate against each other, and back.
class BandedSwirl final : public BentFade {
  void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
            DisplacementGrid& grid) const override;
};

/// Circular waves that run from the centre.
class Ripple final : public BentFade {
  void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
            DisplacementGrid& grid) const override;
};

/// The rows move from side to side in a sine wave that runs down.
class Wave final : public BentFade {
  void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
            DisplacementGrid& grid) const override;
};

/// A bent fade whose displacements only grow and shrink, so that they are computed once for each take.
class RisingFade : public BentFade {
 protected:
  /// Writes the displacement in the middle of the take for each node.
  virtual void fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const = 0;

 private:
  void bend(const MixPoint& point, double swell, TransitionScratch& scratch,
            DisplacementGrid& grid) const final;
};

/// The picture breaks into pieces that fly apart and come together again.
class Crumble final : public RisingFade {
  void fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const override;
};

/// Jagged rays: each direction from the centre is stretched or squeezed by a random factor.
class RadialWiggle final : public RisingFade {
  void fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const override;
};

/// Refraction by glass with a woven relief.
class WovenGlass final : public RisingFade {
  void fillField(const NodeGrid& nodes, std::uint32_t seed, Displacement* field) const override;
};

/// Reveals the second picture at each place at another time.
class TimedReveal : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const final;

 protected:
  /// `cellBits` as in NodeGrid; `softness` as in LevelGrid::open.
  TimedReveal(int cellBits, double softness) : cellBits_(cellBits), softness_(softness) {}
  /// Writes for each node the time, 0 to 1, at which the second picture begins to appear; called once for
  /// each take.
  virtual void fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const = 0;

 private:
  int cellBits_;
  double softness_;
};

/// Reveals in clouds of noise that grow together.
class CloudReveal final : public TimedReveal {
 public:
  CloudReveal();

 private:
  void fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const override;
};

/// Reveals in random grains.
class GrainDissolve final : public TimedReveal {
 public:
  GrainDissolve();

 private:
  void fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const override;
};

/// A circle with a ragged edge that opens.
class RandomCircleReveal final : public TimedReveal {
 public:
  RandomCircleReveal();

 private:
  void fillArrivals(const NodeGrid& nodes, std::uint32_t seed, float* arrivals) const override;
};

/// A circle that opens. The second picture is squeezed towards its edge and relaxes.
class CircleStretch final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// A magnifying lens in the centre, in which the second picture appears.
class MagnifySmooth final : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia
