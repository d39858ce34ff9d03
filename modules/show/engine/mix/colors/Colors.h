// Transitions that decide by the colours of the two pictures, or by a fine raster over them, what changes
// first. Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

/// Of the two pictures the brighter one is seen, pixel by pixel, half-way.
class MostBright : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// The new picture comes through where the old one is brightest first, behind a rim of light.
class BrightExtract : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// The old picture turns to its negative, from its bright parts on, and the new one comes out of its own.
class InvertColor : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// A fine checker raster, one half of its cells after the other, each by way of the product of both pictures.
class PixelsMultiplied : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Bands of a few lines become transparent, every other one first, then those between.
class Scanlines : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// "ApplyTextureMap": the picture takes on the relief of linen, and changes from the highest threads down.
class LinenFade : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia
