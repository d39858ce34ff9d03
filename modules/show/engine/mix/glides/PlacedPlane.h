// One plane of a picture, moved and shrunk by parts of a sample, row by row. Engine thread.
#pragma once
#include <cstdint>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/ShrinkTable.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// One direction of a place: where the plane lies and how large it is shown, in 1/256 sample, and its own
/// size, in samples, which is that of the shown part of the frame or one more.
struct PlacedSide {
  static constexpr int kWhole = 256;

  int begin = 0;
  int length = 0;
  int ownLength = 0;

  bool isShrunk() const { return length != ownLength * kWhole; }
  /// How much of a sample of the frame is covered: 0 to kWhole.
  int cover(int sample) const;
  /// The samples that are covered wholly, and those that are at all, of a frame with `count` of them.
  struct Range {
    int begin;
    int end;
  };
  Range whole(int count) const;
  Range touched(int count) const;
  /// What of the plane shows at a sample of the frame, in samples of the plane.
  RowPart part(int sample) const;
};

class PlacedPlane {
 public:
  static constexpr int kScratchPlaces = 2;

  /// A plane that moves inside a frame of its own size. Works in the buffers `scratchPlace` and the next of
  /// the scratch, which nothing else may use as long as this lives.
  PlacedPlane(const PlaneView& plane, const PlacedSide& columns, const PlacedSide& rows,
              TransitionScratch& scratch, int scratchPlace);

  const PlacedSide& columns() const { return columns_; }
  const PlacedSide& rows() const { return rows_; }

  /// A row of the frame, for a row that is touched: the first value belongs to the first column that is
  /// touched. Valid until the next call.
  const std::uint8_t* row(int y);
  PlacedSide::Range touchedColumns() const { return touched_; }

 private:
  void prepareShrinking(ShrinkGroup* groups);
  const std::uint8_t* planeRow(int y);
  void fetchAfter(int lastRow);
  const std::uint8_t* shifted(const std::uint8_t* row);
  const std::uint8_t* shrunk(const std::uint8_t* row);

  PlaneView plane_;
  PlacedSide columns_;
  PlacedSide rows_;
  PlacedSide::Range touched_;
  std::uint8_t* line_ = nullptr;
  std::uint8_t* average_ = nullptr;
  std::uint8_t* halves_[2] = {};
  int halvings_ = 0;
  int fetched_ = 0;
  const ShrinkGroup* groups_ = nullptr;
  int groupCount_ = 0;
};

}  // namespace korvia
