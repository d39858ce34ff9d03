// The side or corner of the picture from which or to which something moves. Plain values, any thread.
#pragma once

namespace korvia {

enum class PictureSide { Left, Right, Top, Bottom, TopLeft, TopRight, BottomRight, BottomLeft };

/// -1, 0 or 1 in each direction, to the right and down.
struct SideDirection {
  int x = 0;
  int y = 0;
};

constexpr SideDirection directionOf(PictureSide side) {
  constexpr SideDirection kDirections[] = {{-1, 0},  {1, 0},  {0, -1}, {0, 1},
                                           {-1, -1}, {1, -1}, {1, 1},  {-1, 1}};
  return kDirections[static_cast<int>(side)];
}

}  // namespace korvia
