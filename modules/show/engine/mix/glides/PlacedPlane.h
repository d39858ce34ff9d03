// One plane of a picture, moved and shrunk with sub-sample precision, row by row. Engine thread.
#pragma once
#include <cstdint>

#include "engine/frame/PlaneView.h"
#include "engine/kernels/ShrinkTable.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

/// One axis of a placement: position and length in the frame in 1/256 sample, and the own length in samples,
/// which equals the size of the frame or is one more.
struct PlacedSide {
  static constexpr int kWhole = 256;

  int begin = 0;
  int length = 0;
  int ownLength = 0;

  bool isShrunk() const { return length != ownLength * kWhole; }
  /// The covered part of a sample of the frame, 0 to kWhole.
  int cover(int sample) const;
  /// The samples that are covered completely, and those that are covered at least partly, of a frame of
  /// `count` samples.
  struct Range {
    int begin;
    int end;
  };
  Range whole(int count) const;
  Range touched(int count) const;
  /// The part of the plane that a sample of the frame covers, in samples of the plane.
  RowPart part(int sample) const;
};

class PlacedPlane {
 public:
  static constexpr int kScratchPlaces = 2;

  /// `plane` has the size of the frame. Uses the buffers `scratchPlace` and `scratchPlace` + 1 of the
  /// scratch as long as it lives.
  PlacedPlane(const PlaneView& plane, const PlacedSide& columns, const PlacedSide& rows,
              TransitionScratch& scratch, int scratchPlace);

  const PlacedSide& columns() const { return columns_; }
  const PlacedSide& rows() const { return rows_; }

  /// Row `y` of the frame, which must be touched. The first value belongs to the first touched column. Valid
  /// until the next call.
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
