// Wipes that divide the picture into squares. Engine thread.
#pragma once
#include "engine/mix/wipes/Wipe.h"

namespace korvia {

/// A grid of cells that are as square as whole numbers of them in the picture allow.
struct CellGrid {
  CellGrid(FrameSize picture, int columnsMax);

  /// Width of a soft edge, 1 % of the width of the picture, as a part of a cell; at most `most`.
  double feather(double most) const;

  FrameSize size;
  int columns;
  int rows;
  /// In luma samples.
  double cellWidth;
  double cellHeight;
};

/// Each cell is wiped from its left: the cells of one colour of the board first, then the others.
class CheckerboardWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Small cells fade in one by one, in random order.
class DissolveWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Squares grow from the centre of their cells, diagonal after diagonal from the top left.
class DiagonalSquaresWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia
