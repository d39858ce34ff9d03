// Pictures that are squeezed and stretched. Engine thread.
#pragma once
#include "engine/mix/Transition.h"
#include "engine/mix/glides/PictureSide.h"

namespace korvia {

/// The new picture grows from a side and squeezes the old one to the other.
class SideStretch final : public Transition {
 public:
  /// Left, Right, Top or Bottom.
  explicit SideStretch(PictureSide side) : side_(side) {}
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;

 private:
  PictureSide side_;
};

class CenterStretch final : public Transition {
 public:
  enum Movement {
    OldOut,  ///< the old picture shrinks into the centre, in front of the new one
    NewIn,   ///< the new picture grows out of the centre, in front of the old one
  };
  explicit CenterStretch(Movement movement) : movement_(movement) {}
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;

 private:
  Movement movement_;
};

}  // namespace korvia
