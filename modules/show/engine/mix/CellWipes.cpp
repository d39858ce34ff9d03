#include "CellWipes.h"

#include <array>

#include "engine/kernels/RowKernels.h"
#include "engine/mix/CellJoin.h"
#include "engine/mix/Chance.h"

namespace korvia {

namespace {

constexpr int kBoardColumns = 12;
constexpr int kDissolveColumns = 64;
constexpr int kSquareColumns = 16;
constexpr int kNarrowest = 4;
/// Parts of the take in which one cell fades in, and in which one square grows.
constexpr double kCellFade = 0.15;
constexpr double kSquareGrowth = 0.35;

double boardJoin(const CellGrid& cells) {
  return cells.feather(0.25);
}

double boardCoverage(const CellGrid& cells, double position, int column, int row, double along) {
  const int turn = (column + row) % 2;
  return swept(std::clamp(2 * position - turn, 0.0, 1.0), along, 1, boardJoin(cells));
}

double dissolveJoin(const CellGrid& cells) {
  return cells.feather(0.25);
}

double dissolveCoverage(const CellGrid& cells, const MixPoint& point, int column, int row) {
  const int count = cells.columns * cells.rows;
  const std::uint32_t turn = shuffled(static_cast<std::uint32_t>(row * cells.columns + column),
                                      static_cast<std::uint32_t>(count), point.seed);
  return swept(point.position, turn, std::max(1, count - 1), kCellFade * count);
}

/// Half of a square's width as a part of its cell's, its soft edge included; a cell that is full is full to
/// its corners.
double squareHalf(const CellGrid& cells, double position, int column, int row) {
  const int last = std::max(1, cells.columns + cells.rows - 2);
  return swept(position, column + row, last, kSquareGrowth * last) * (0.5 + cells.feather(0.125));
}

/// Coverage on one axis of a square.
double squareEdge(const CellGrid& cells, double half, double fromMiddle) {
  const double feather = cells.feather(0.125);
  return std::clamp((half - fromMiddle) / feather, 0.0, 1.0);
}

/// Masks of whole rows of cells, and of the rows between two of them. `fill(row, mask)` makes the mask of the
/// middle of a row of cells, which is the same for each `period`th of them.
template <typename Fill>
class CellRowsMask {
 public:
  CellRowsMask(const PlaneGrid& grid, int rows, double join, int period, TransitionScratch& scratch, Fill fill)
      : grid_(grid), rows_(rows), join_(join), period_(period), fill_(fill) {
    const auto width = static_cast<std::size_t>(grid.width);
    mask_ = scratch.buffer<std::uint8_t>(0, width);
    masks_ = {scratch.buffer<std::uint8_t>(1, width), scratch.buffer<std::uint8_t>(2, width)};
  }

  const std::uint8_t* row(int y) {
    const CellJoin at = joinAt(grid_.y(y) / grid_.size.height * rows_, rows_, join_);
    if (at.weight == 0) {
      const bool again = at.cell == last_;
      last_ = at.cell;
      return again ? nullptr : masksOf(at.cell);
    }
    last_ = -1;
    mixRow(masksOf(at.cell), masksOf(at.neighbour), at.weight, mask_, grid_.width);
    return mask_;
  }

 private:
  const std::uint8_t* masksOf(int row) {
    const auto place = static_cast<std::size_t>(row % 2);
    if (held_[place] != row % period_) {
      held_[place] = row % period_;
      fill_(row, masks_[place]);
    }
    return masks_[place];
  }

  PlaneGrid grid_;
  int rows_;
  double join_;
  int period_;
  Fill fill_;
  std::uint8_t* mask_ = nullptr;
  std::array<std::uint8_t*, 2> masks_{};
  /// The row of cells that each mask is for.
  std::array<int, 2> held_{-1, -1};
  int last_ = -1;
};

/// Each row of the picture cuts the rows of its squares down to where the row lies in them.
class SquaresMask {
 public:
  SquaresMask(const PlaneGrid& grid, double position, TransitionScratch& scratch)
      : grid_(grid),
        cells_(grid.size, kSquareColumns),
        position_(position),
        across_(scratch.buffer<std::uint8_t>(0, static_cast<std::size_t>(grid.width))),
        mask_(scratch.buffer<std::uint8_t>(1, static_cast<std::size_t>(grid.width))),
        squares_(scratch.buffer<Square>(2, static_cast<std::size_t>(cells_.columns))) {}

  const std::uint8_t* row(int y) {
    const double place = grid_.y(y) / cells_.cellHeight;
    const int row = std::clamp(static_cast<int>(place), 0, cells_.rows - 1);
    if (row != row_) {
      row_ = row;
      fillAcross();
    }
    const double fromMiddle = std::abs(place - row - 0.5);
    for (const Square* square = squares_; square < squares_ + cells_.columns; ++square) {
      const std::uint8_t most = maskOf(squareEdge(cells_, square->half, fromMiddle));
      for (int x = square->begin; x < square->end; ++x)
        mask_[x] = std::min(across_[x], most);
    }
    return mask_;
  }

 private:
  struct Square {
    int begin = 0;
    int end = 0;
    double half = 0;
  };

  void fillAcross() {
    int x = 0;
    for (int column = 0; column < cells_.columns; ++column) {
      Square& square = squares_[column];
      square = {x, grid_.width, squareHalf(cells_, position_, column, row_)};
      for (; x < grid_.width; ++x) {
        const double along = grid_.x(x) / cells_.cellWidth - column;
        if (along >= 1 && column + 1 < cells_.columns)
          break;
        across_[x] = maskOf(squareEdge(cells_, square.half, std::abs(along - 0.5)));
      }
      square.end = x;
    }
  }

  PlaneGrid grid_;
  CellGrid cells_;
  double position_;
  std::uint8_t* across_;
  std::uint8_t* mask_;
  Square* squares_;
  int row_ = -1;
};

}  // namespace

CellGrid::CellGrid(FrameSize picture, int columnsMax)
    : size(picture),
      columns(std::clamp(picture.width / kNarrowest, 1, columnsMax)),
      rows(std::max(1, static_cast<int>(std::lround(static_cast<double>(columns) * picture.height / picture.width)))),
      cellWidth(static_cast<double>(picture.width) / columns),
      cellHeight(static_cast<double>(picture.height) / rows) {}

double CellGrid::feather(double most) const {
  return std::min(featherOf(size) / cellWidth, most);
}

double CheckerboardWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const CellGrid cells(size, kBoardColumns);
  const double join = boardJoin(cells);
  return joined(y / size.height * cells.rows, cells.rows, join, [&](int row, double) {
    return joined(x / size.width * cells.columns, cells.columns, join, [&](int column, double along) {
      return boardCoverage(cells, point.position, column, row, along);
    });
  });
}

void CheckerboardWipe::mix(const Frame& from, const Frame& to, const MixPoint& point,
                           TransitionScratch& scratch, Frame& out) const {
  const CellGrid cells(out.size(), kBoardColumns);
  const double join = boardJoin(cells);
  mixByMask(from, to, scratch, out, [&](const PlaneGrid& grid) {
    return CellRowsMask(grid, cells.rows, join, 2, scratch, [&, grid](int row, std::uint8_t* mask) {
      for (int x = 0; x < grid.width; ++x)
        mask[x] = maskOf(joined(grid.x(x) / grid.size.width * cells.columns, cells.columns, join,
                                [&](int column, double along) {
                                  return boardCoverage(cells, point.position, column, row, along);
                                }));
    });
  });
}

double DissolveWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const CellGrid cells(size, kDissolveColumns);
  const double join = dissolveJoin(cells);
  return joined(y / size.height * cells.rows, cells.rows, join, [&](int row, double) {
    return joined(x / size.width * cells.columns, cells.columns, join,
                  [&](int column, double) { return dissolveCoverage(cells, point, column, row); });
  });
}

void DissolveWipe::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                       Frame& out) const {
  const CellGrid cells(out.size(), kDissolveColumns);
  const double join = dissolveJoin(cells);
  mixByMask(from, to, scratch, out, [&](const PlaneGrid& grid) {
    CellJoin* joins = scratch.buffer<CellJoin>(3, static_cast<std::size_t>(grid.width));
    for (int x = 0; x < grid.width; ++x)
      joins[x] = joinAt(grid.x(x) / grid.size.width * cells.columns, cells.columns, join);
    float* values = scratch.buffer<float>(4, static_cast<std::size_t>(cells.columns));
    return CellRowsMask(grid, cells.rows, join, cells.rows, scratch,
                        [&cells, &point, grid, joins, values](int row, std::uint8_t* mask) {
                          for (int column = 0; column < cells.columns; ++column)
                            values[column] = static_cast<float>(255 * dissolveCoverage(cells, point, column, row));
                          for (int x = 0; x < grid.width; ++x) {
                            const CellJoin& at = joins[x];
                            const float own = values[at.cell];
                            // A cell at the picture's border has no neighbour there, nor a weight for it.
                            const float next = at.weight == 0 ? own : values[at.neighbour];
                            mask[x] = static_cast<std::uint8_t>(
                                own + (next - own) * static_cast<float>(at.weight) / 256 + 0.5F);
                          }
                        });
  });
}

double DiagonalSquaresWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const CellGrid cells(size, kSquareColumns);
  const int column = std::clamp(static_cast<int>(x / cells.cellWidth), 0, cells.columns - 1);
  const int row = std::clamp(static_cast<int>(y / cells.cellHeight), 0, cells.rows - 1);
  const double half = squareHalf(cells, point.position, column, row);
  return std::min(squareEdge(cells, half, std::abs(x / cells.cellWidth - column - 0.5)),
                  squareEdge(cells, half, std::abs(y / cells.cellHeight - row - 0.5)));
}

void DiagonalSquaresWipe::mix(const Frame& from, const Frame& to, const MixPoint& point,
                              TransitionScratch& scratch, Frame& out) const {
  mixByMask(from, to, scratch, out,
            [&](const PlaneGrid& grid) { return SquaresMask(grid, point.position, scratch); });
}

}  // namespace korvia
