#include "console/TakeButton.h"

#include <algorithm>

namespace {

constexpr int kTextLines = 2;
// Border, padding, and the gap between picture and text.
constexpr int kAround = 16;
constexpr int kPictureHeightMin = 16;
// The size in which the pictures are drawn.
constexpr QSize kPictureSize(100, 84);

}  // namespace

void TakeButton::resizeEvent(QResizeEvent* event) {
  QToolButton::resizeEvent(event);
  const int room = height() - kTextLines * fontMetrics().height() - kAround;
  const int pictureHeight = std::clamp(room, kPictureHeightMin, kPictureSize.height());
  setIconSize(QSize(pictureHeight * kPictureSize.width() / kPictureSize.height(), pictureHeight));
}
