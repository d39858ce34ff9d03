// Transitions in which the colours of the pictures, or a fine pattern over them, decide what changes first.
// Engine thread.
#pragma once
#include "engine/mix/Transition.h"

namespace korvia {

/// Half-way, each pixel shows the brighter one of the two pictures.
class MostBright : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// The old picture is replaced from its brightest parts on; a bright rim runs ahead of the change.
class BrightExtract : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// The old picture is inverted from its bright parts on and fades to the inverted new one, which is inverted
/// back.
class InvertColor : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// A fine checkerboard: its even cells change first, then its odd ones, each by way of the product of both
/// pictures.
class PixelsMultiplied : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Bands of a few lines fade to the new picture: every other one first, then those between.
class Scanlines : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// "ApplyTextureMap": the picture takes on the relief of linen and is replaced from the highest threads
/// down.
class LinenFade : public Transition {
 public:
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia
