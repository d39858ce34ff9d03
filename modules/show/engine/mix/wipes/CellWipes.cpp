#include "CellWipes.h"

#include <array>
#include <cstring>

#include "engine/kernels/MaskKernels.h"
#include "engine/mix/SeededRandom.h"
#include "engine/mix/wipes/CellJoin.h"

namespace korvia {

namespace {

constexpr int kBoardColumns = 12;
constexpr int kDissolveColumns = 64;
constexpr int kSquareColumns = 16;
constexpr int kNarrowest = 4;
/// Parts of the take during which one cell fades in and one square grows.
constexpr double kCellFade = 0.15;
constexpr double kSquareGrowth = 0.22;

/// Width of the soft borders between cells, and of the edges within them.
double joinOf(const CellGrid& cells) {
  return cells.feather(0.25);
}

double boardCoverage(const CellGrid& cells, double position, int column, int row, double along) {
  const int turn = (column + row) % 2;
  return swept(std::clamp(2 * position - turn, 0.0, 1.0), along, 1, joinOf(cells));
}

/// The coverage of each cell; the cells fade in one after the other in random order.
class Dissolve {
 public:
  Dissolve(const CellGrid& cells, const MixPoint& point)
      : cells_(cells), position_(point.position), order_(cells.columns * cells.rows, point.seed) {}

  double coverage(int column, int row) const {
    const int count = cells_.columns * cells_.rows;
    return swept(position_, order_.place(row * cells_.columns + column), std::max(1, count - 1),
                 kCellFade * count);
  }

 private:
  const CellGrid& cells_;
  double position_;
  Shuffle order_;
};

double squareFeather(const CellGrid& cells) {
  return cells.feather(0.125);
}

/// Half of the width of a square, with its soft edge, as a part of the width of its cell. A full square
/// covers the cell up to its corners.
double squareHalf(const CellGrid& cells, double position, int column, int row) {
  const int last = std::max(1, cells.columns + cells.rows - 2);
  return swept(position, column + row, last, kSquareGrowth * last) * (0.5 + squareFeather(cells));
}

/// Coverage on one axis of a square.
double squareEdge(const CellGrid& cells, double half, double fromMiddle) {
  return std::clamp((half - fromMiddle) / squareFeather(cells), 0.0, 1.0);
}

/// The masks of rows of cells, blended at the borders between two of them. `fill(row, mask)` computes the
/// mask of the middle of a row of cells; it repeats after `period` of them.
template <typename Fill>
class CellRowsMask {
 public:
  CellRowsMask(const PlaneGrid& grid, int rows, double join, int period, TransitionScratch& scratch,
               Fill fill)
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
    blendedMaskRow(masksOf(at.cell), masksOf(at.neighbour), at.weight, mask_, grid_.width);
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

/// Fills the mask of a row of cells of which each has one value.
class PlainCells {
 public:
  /// `values` are the values of the cells, 0 to 255, row by row.
  PlainCells(const PlaneGrid& grid, const CellGrid& cells, double join, const float* values,
             TransitionScratch& scratch)
      : columns_(cells.columns),
        width_(grid.width),
        values_(values),
        ends_(scratch.buffer<int>(4, static_cast<std::size_t>(cells.columns))),
        borders_(scratch.buffer<Border>(5, static_cast<std::size_t>(grid.width))) {
    std::fill_n(ends_, columns_, 0);
    for (int x = 0; x < width_; ++x) {
      const CellJoin at = joinAt(grid.x(x) / grid.size.width * columns_, columns_, join);
      ends_[at.cell] = x + 1;
      if (at.weight > 0)
        borders_[borderCount_++] = {x, at.cell, at.neighbour, static_cast<float>(at.weight) / 256};
    }
  }

  void operator()(int row, std::uint8_t* mask) const {
    const float* values = values_ + static_cast<std::ptrdiff_t>(row) * columns_;
    int x = 0;
    for (int column = 0; column < columns_; ++column)
      if (ends_[column] > x) {
        std::memset(mask + x, static_cast<int>(values[column] + kRounding),
                    static_cast<std::size_t>(ends_[column] - x));
        x = ends_[column];
      }
    for (const Border* border = borders_; border < borders_ + borderCount_; ++border) {
      const float own = values[border->cell];
      mask[border->x] =
          static_cast<std::uint8_t>(own + (values[border->neighbour] - own) * border->weight + kRounding);
    }
  }

 private:
  /// A sample on the soft border of two cells.
  struct Border {
    int x = 0;
    int cell = 0;
    int neighbour = 0;
    float weight = 0;
  };

  int columns_;
  int width_;
  const float* values_;
  int* ends_;
  Border* borders_;
  int borderCount_ = 0;
};

/// The mask of the squares of a row of cells: in each row of the picture the minimum of the coverage across
/// and the coverage down.
class SquaresMask {
 public:
  SquaresMask(const PlaneGrid& grid, double position, TransitionScratch& scratch)
      : grid_(grid),
        cells_(grid.size, kSquareColumns),
        position_(position),
        across_(scratch.buffer<std::uint8_t>(0, static_cast<std::size_t>(grid.width))),
        mask_(scratch.buffer<std::uint8_t>(1, static_cast<std::size_t>(grid.width))),
        growing_(scratch.buffer<Square>(2, static_cast<std::size_t>(cells_.columns))) {}

  const std::uint8_t* row(int y) {
    const double place = grid_.y(y) / cells_.cellHeight;
    const int row = std::clamp(static_cast<int>(place), 0, cells_.rows - 1);
    const bool first = row != row_;
    if (first) {
      row_ = row;
      fillAcross();
    }
    const double fromMiddle = std::abs(place - row - 0.5);
    for (const Square* square = growing_; square < growing_ + growingCount_; ++square)
      cappedMaskRow(across_ + square->begin, maskOf(squareEdge(cells_, square->half, fromMiddle)),
                    mask_ + square->begin, square->end - square->begin);
    return first || growingCount_ > 0 ? mask_ : nullptr;
  }

 private:
  struct Square {
    int begin = 0;
    int end = 0;
    double half = 0;
  };

  /// Finds the growing squares of a row of cells, and draws the others, which are complete or have not
  /// begun.
  void fillAcross() {
    const double full = squareHalf(cells_, 1, 0, 0);
    growingCount_ = 0;
    int x = 0;
    for (int column = 0; column < cells_.columns; ++column) {
      const double half = squareHalf(cells_, position_, column, row_);
      const int begin = x;
      const bool last = column + 1 == cells_.columns;
      while (x < grid_.width && (last || grid_.x(x) < (column + 1) * cells_.cellWidth))
        ++x;
      if (half <= 0 || half >= full) {
        std::memset(mask_ + begin, half <= 0 ? 0 : 255, static_cast<std::size_t>(x - begin));
        continue;
      }
      growing_[growingCount_++] = {begin, x, half};
      for (int i = begin; i < x; ++i)
        across_[i] = maskOf(squareEdge(cells_, half, std::abs(grid_.x(i) / cells_.cellWidth - column - 0.5)));
    }
  }

  PlaneGrid grid_;
  CellGrid cells_;
  double position_;
  std::uint8_t* across_;
  std::uint8_t* mask_;
  Square* growing_;
  int growingCount_ = 0;
  int row_ = -1;
};

}  // namespace

CellGrid::CellGrid(FrameSize picture, int columnsMax)
    : size(picture),
      columns(std::clamp(picture.width / kNarrowest, 1, columnsMax)),
      rows(std::max(
          1, static_cast<int>(std::lround(static_cast<double>(columns) * picture.height / picture.width)))),
      cellWidth(static_cast<double>(picture.width) / columns),
      cellHeight(static_cast<double>(picture.height) / rows) {}

double CellGrid::feather(double most) const {
  return std::min(featherOf(size) / cellWidth, most);
}

double CheckerboardWipe::coverage(FrameSize size, const MixPoint& point, double x, double y) const {
  const CellGrid cells(size, kBoardColumns);
  const double join = joinOf(cells);
  return joined(y / size.height * cells.rows, cells.rows, join, [&](int row, double) {
    return joined(x / size.width * cells.columns, cells.columns, join, [&](int column, double along) {
      return boardCoverage(cells, point.position, column, row, along);
    });
  });
}

void CheckerboardWipe::mix(const Frame& from, const Frame& to, const MixPoint& point,
                           TransitionScratch& scratch, Frame& out) const {
  const CellGrid cells(out.size(), kBoardColumns);
  const double join = joinOf(cells);
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
  const Dissolve dissolve(cells, point);
  const double join = joinOf(cells);
  return joined(y / size.height * cells.rows, cells.rows, join, [&](int row, double) {
    return joined(x / size.width * cells.columns, cells.columns, join,
                  [&](int column, double) { return dissolve.coverage(column, row); });
  });
}

void DissolveWipe::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                       Frame& out) const {
  const CellGrid cells(out.size(), kDissolveColumns);
  const Dissolve dissolve(cells, point);
  const auto count = static_cast<std::size_t>(cells.columns) * static_cast<std::size_t>(cells.rows);
  float* values = scratch.buffer<float>(3, count);
  for (int row = 0; row < cells.rows; ++row)
    for (int column = 0; column < cells.columns; ++column)
      values[row * cells.columns + column] = static_cast<float>(255 * dissolve.coverage(column, row));
  const double join = joinOf(cells);
  mixByMask(from, to, scratch, out, [&](const PlaneGrid& grid) {
    return CellRowsMask(grid, cells.rows, join, cells.rows, scratch,
                        PlainCells(grid, cells, join, values, scratch));
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
