#include "MonitorGuides.h"

#include <algorithm>
#include <cmath>

namespace korvia {

namespace {

struct Ink {
  int blue;
  int green;
  int red;
  int alpha;  ///< of 256
};

// Seen over dark and bright pictures: the lines are grey and half transparent, the one that attracts is not.
constexpr Ink kLine{200, 200, 200, 110};
constexpr Ink kAttracting{80, 220, 255, 256};
constexpr Ink kItem{255, 255, 255, 200};

class Drawing {
 public:
  Drawing(FrameSize size, std::uint8_t* pixels, int stride) : size_(size), pixels_(pixels), stride_(stride) {}

  void level(double y, double left, double right, const Ink& ink) {
    fill(pixel(left, size_.width), pixel(y, size_.height), pixel(right, size_.width), pixel(y, size_.height),
         ink);
  }
  void upright(double x, double top, double bottom, const Ink& ink) {
    fill(pixel(x, size_.width), pixel(top, size_.height), pixel(x, size_.width), pixel(bottom, size_.height),
         ink);
  }
  void frame(const QRectF& rect, const Ink& ink) {
    level(rect.top(), rect.left(), rect.right(), ink);
    level(rect.bottom(), rect.left(), rect.right(), ink);
    upright(rect.left(), rect.top(), rect.bottom(), ink);
    upright(rect.right(), rect.top(), rect.bottom(), ink);
  }

 private:
  /// A pixel from -1 to `length`, where the first and the last are outside of the picture.
  static int pixel(double fraction, int length) {
    return static_cast<int>(std::clamp(std::floor(fraction * length), -1.0, static_cast<double>(length)));
  }
  void fill(int left, int top, int right, int bottom, const Ink& ink) {
    for (int y = std::max(top, 0); y <= std::min(bottom, size_.height - 1); ++y) {
      std::uint8_t* row = pixels_ + static_cast<std::ptrdiff_t>(y) * stride_;
      for (int x = std::max(left, 0); x <= std::min(right, size_.width - 1); ++x) {
        std::uint8_t* pixel = row + static_cast<std::ptrdiff_t>(x) * 4;
        blend(pixel[0], ink.blue, ink.alpha);
        blend(pixel[1], ink.green, ink.alpha);
        blend(pixel[2], ink.red, ink.alpha);
      }
    }
  }
  static void blend(std::uint8_t& under, int over, int alpha) {
    under = static_cast<std::uint8_t>(under + (over - under) * alpha / 256);
  }

  FrameSize size_;
  std::uint8_t* pixels_;
  int stride_;
};

}  // namespace

void drawGuides(const MonitorGuides& guides, FrameSize size, std::uint8_t* pixels, int stride) {
  if (!guides.isShown)
    return;
  constexpr double kCentre = 0.5;
  Drawing drawing(size, pixels, stride);
  drawing.upright(kCentre, 0, 1, kLine);
  drawing.level(kCentre, 0, 1, kLine);
  drawing.frame({kSafeMargin, kSafeMargin, 1 - 2 * kSafeMargin, 1 - 2 * kSafeMargin}, kLine);
  if (guides.uprightLine)
    drawing.upright(*guides.uprightLine, 0, 1, kAttracting);
  if (guides.levelLine)
    drawing.level(*guides.levelLine, 0, 1, kAttracting);
  if (!guides.item.isEmpty())
    drawing.frame(guides.item, kItem);
}

}  // namespace korvia
