// Wipes by squares that the picture is divided into. Engine thread.
#pragma once
#include "engine/mix/wipes/Wipe.h"

namespace korvia {

/// Squares, or nearly so: whole numbers of them fill the picture.
struct CellGrid {
  CellGrid(FrameSize picture, int columnsMax);

  /// Width of a soft edge as a part of a cell, `most` where 1 % of the picture's width is more.
  double feather(double most) const;

  FrameSize size;
  int columns;
  int rows;
  /// In luma samples.
  double cellWidth;
  double cellHeight;
};

/// Each cell is wiped from its left, those of the one colour of the board first and the others after them.
class CheckerboardWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Small cells fade in one by one, in an order that the seed draws.
class DissolveWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

/// Squares grow from the middle of their cells, one diagonal after the other from the top left.
class DiagonalSquaresWipe : public Wipe {
 public:
  double coverage(FrameSize size, const MixPoint& point, double x, double y) const override;
  void mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
           Frame& out) const override;
};

}  // namespace korvia
