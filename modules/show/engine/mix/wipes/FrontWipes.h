// Wipes whose edge is a front over the columns: straight from a corner, or running down in drops. Engine
// thread.
#pragma once
#include "engine/mix/wipes/Wipe.h"

namespace korvia {

/// How the front crosses one column.
struct FrontColumn {
  /// When it reaches the column's top and when its bottom, both within 0 to 1; between them it runs evenly.
  double top = 0;
  double bottom = 1;
  /// Of the soft edge, as a part of the take, `featherMax` of the wipe at most.
  double feather = 1;
};

/// The mask of a row needs a column's numbers and one multiplication.
class FrontWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const final;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const final;

 protected:
  virtual FrontColumn column(FrameSize size, std::uint32_t seed, double x) const = 0;
  virtual double featherMax(FrameSize size) const = 0;

 private:
  /// When a column's places are half covered, in its own times.
  double reached(FrameSize size, const MixPoint& point) const;
};

enum class Corner { TopLeft, TopRight, BottomRight, BottomLeft };

/// From a corner to the opposite one, along the picture's other diagonal.
class CornerWipe : public FrontWipe {
 public:
  explicit CornerWipe(Corner corner) : corner_(corner) {}

 protected:
  FrontColumn column(FrameSize size, std::uint32_t seed, double x) const override;
  double featherMax(FrameSize size) const override;

 private:
  Corner corner_;
};

/// Runs down from the top in drops of lengths that the seed draws.
class BloodWipe : public FrontWipe {
 protected:
  FrontColumn column(FrameSize size, std::uint32_t seed, double x) const override;
  double featherMax(FrameSize size) const override;
};

}  // namespace korvia
