// Wipes whose edge is a front that crosses each column once: straight from a corner, or running down in
// drops. Engine thread.
#pragma once
#include "engine/mix/wipes/Wipe.h"

namespace korvia {

/// How the front crosses one column.
struct FrontColumn {
  /// The positions, 0 to 1, at which the front reaches the top and the bottom of the column; between them
  /// its speed is constant.
  double top = 0;
  double bottom = 1;
  /// Width of the soft edge as a part of the take, at most the `featherMax` of the wipe.
  double feather = 1;
};

/// The mask of a row takes one multiplication for each column.
class FrontWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const final;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const final;

 protected:
  virtual FrontColumn column(FrameSize size, std::uint32_t seed, double x) const = 0;
  virtual double featherMax(FrameSize size) const = 0;

 private:
  /// The time, on the scale of FrontColumn, at which places are half covered now.
  double reached(FrameSize size, const MixPoint& point) const;
};

enum class Corner { TopLeft, TopRight, BottomRight, BottomLeft };

/// From a corner to the opposite one; the edge is parallel to the other diagonal.
class CornerWipe : public FrontWipe {
 public:
  explicit CornerWipe(Corner corner) : corner_(corner) {}

 protected:
  FrontColumn column(FrameSize size, std::uint32_t seed, double x) const override;
  double featherMax(FrameSize size) const override;

 private:
  Corner corner_;
};

/// Runs down from the top in drops of random lengths.
class BloodWipe : public FrontWipe {
 protected:
  FrontColumn column(FrameSize size, std::uint32_t seed, double x) const override;
  double featherMax(FrameSize size) const override;
};

}  // namespace korvia
