#include "AnimationPictures.h"

#include <QLinearGradient>
#include <QPainter>
#include <array>

#include "engine/frame/PictureFrame.h"
#include "engine/items/ItemAnimation.h"
#include "engine/output/FrameExport.h"

namespace korvia {

namespace {

// Pictures are blended in a larger size and scaled down, which gives smooth edges and full colour resolution.
constexpr int kZoom = 4;

struct Colors {
  QRgb top;
  QRgb bottom;
};
// Entrances are cold and exits warm, which tells them apart where they look alike otherwise.
constexpr Colors kEntranceColors{0xff2b4a6e, 0xff13233a};
constexpr Colors kExitColors{0xff6b3f3a, 0xff331b20};
constexpr QRgb kPlate = 0xfff2f5f8;
constexpr QRgb kAccent = 0xffff9b2e;
constexpr QRgb kTrail = 0x60f2f5f8;
constexpr QRgb kHeading = 0xff28323e;
constexpr QRgb kLine = 0xff8b95a3;
constexpr QRgb kFrame = 0xffaab4c0;

// The plate as parts of the picture.
constexpr double kPlateWidth = 0.5;
constexpr double kPlateHeight = 0.28;

/// How strongly a tile shows the earlier plates, in the order of time.
constexpr std::array kTrailStrengths{0.35, 0.55, 0.8};

/// The part of an animation that a tile shows, as positions.
struct Span {
  double begin;
  double end;
};

// Not so much that plates are out of sight, and enough that a short move can be seen. Most entrances are
// shown with the plate in its place. By the numbers of the effects; an item that appears is there, or gone.
constexpr std::array kEntranceSpans{
    Span{1, 1},       // Appear
    Span{0.2, 1},     // FlyInFromTop
    Span{0.2, 1},     // FlyInFromBottom
    Span{0.2, 1},     // FlyInFromLeft
    Span{0.2, 1},     // FlyInFromRight
    Span{0.3, 1},     // FlyInFromTopLeft
    Span{0.3, 1},     // FlyInFromTopRight
    Span{0.05, 1},    // FloatFromTopLeft
    Span{0.05, 1},    // FloatFromTopRight
    Span{0.3, 1},     // Glide
    Span{0.25, 1},    // Magnify
    Span{0.35, 0.8},  // Pinwheel
    Span{0.3, 1},     // Sling
    Span{0.2, 0.75},  // Thread
    Span{0.3, 1},     // Zoom
    Span{0.05, 1},    // Ascend
    Span{0.05, 1},    // Descend
};
constexpr std::array kExitSpans{
    Span{0, 1},     // Appear
    Span{0, 0.5},   // FlyInFromTop
    Span{0, 0.5},   // FlyInFromBottom
    Span{0, 0.5},   // FlyOutToLeft
    Span{0, 0.5},   // FlyOutToRight
    Span{0, 0.5},   // FlyOutToTopLeft
    Span{0, 0.5},   // FlyOutToTopRight
    Span{0, 0.85},  // FloatFromTopLeft
    Span{0, 0.85},  // FloatFromTopRight
    Span{0, 0.75},  // Glide
    Span{0, 0.6},   // Magnify
    Span{0, 0.55},  // Pinwheel
    Span{0, 0.5},   // Sling
    Span{0, 0.4},   // Thread
    Span{0, 0.35},  // Zoom
    Span{0, 0.85},  // Ascend
    Span{0, 0.85},  // Descend
};
static_assert(kEntranceSpans.size() == kExitSpans.size());

FrameSize zoomed(QSize size) {
  return {size.width() * kZoom, size.height() * kZoom};
}

FrameRef drawBackground(FrameSize size, const Colors& colors) {
  QImage image(size.width, size.height, QImage::Format_RGB32);
  QLinearGradient gradient(0, 0, 0, size.height);
  gradient.setColorAt(0, QColor(colors.top));
  gradient.setColorAt(1, QColor(colors.bottom));
  QPainter(&image).fillRect(image.rect(), gradient);
  return frameFromImage(image);
}

struct PlatePart {
  QRectF part;  ///< of a plate of 1 x 1
  QRgb color;
};

LayerRef drawPlate(FrameSize bus, std::initializer_list<PlatePart> parts) {
  const QSize size(static_cast<int>(bus.width * kPlateWidth), static_cast<int>(bus.height * kPlateHeight));
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  for (const PlatePart& part : parts)
    painter.fillRect(QTransform::fromScale(size.width(), size.height()).mapRect(part.part),
                     QColor::fromRgba(part.color));
  painter.end();
  const QPoint corner((bus.width - size.width()) / 2, (bus.height - size.height()) / 2);
  return Layer::makeMovable(image, corner, bus, QRectF(corner, size));
}

LayerRef drawWholePlate(FrameSize bus) {
  return drawPlate(bus, {{{0, 0, 1, 1}, kPlate},
                         {{0, 0, 0.12, 1}, kAccent},
                         {{0.22, 0.2, 0.66, 0.28}, kHeading},
                         {{0.22, 0.64, 0.42, 0.16}, kLine}});
}

/// Without lines, which would be a jumble where plates overlap.
LayerRef drawTrailPlate(FrameSize bus) {
  constexpr double kThick = 0.05;
  constexpr double kThin = kThick * kPlateHeight / kPlateWidth;
  return drawPlate(bus, {{{0.12, kThick, 0.88 - kThin, 1 - 2 * kThick}, kTrail},
                         {{0, 0, 0.12, 1}, kAccent},
                         {{0.12, 0, 0.88, kThick}, kAccent},
                         {{0.12, 1 - kThick, 0.88, kThick}, kAccent},
                         {{1 - kThin, kThick, kThin, 1 - 2 * kThick}, kAccent}});
}

Span spanOf(int effect) {
  return effect < kFirstExit ? kEntranceSpans.at(static_cast<std::size_t>(effect))
                             : kExitSpans.at(static_cast<std::size_t>(effect - kFirstExit));
}

bool isSmaller(const LayerPose& a, const LayerPose& b) {
  return a.scaleX < b.scaleX || a.scaleY < b.scaleY;
}

void drawFrameLine(QImage& image) {
  QPainter painter(&image);
  painter.setPen(QColor(kFrame));
  painter.drawRect(image.rect().adjusted(0, 0, -1, -1));
}

}  // namespace

AnimationPictures::AnimationPictures(QSize size)
    : size_(size),
      frames_(zoomed(size)),
      entranceBackground_(drawBackground(frames_.size(), kEntranceColors)),
      exitBackground_(drawBackground(frames_.size(), kExitColors)),
      plate_(drawWholePlate(frames_.size())),
      trailPlate_(drawTrailPlate(frames_.size())) {}

LayerPose AnimationPictures::poseAt(int effect, double position) const {
  return effect < kFirstExit ? entrancePose(effect, position, plate_->content, frames_.size())
                             : exitPose(effect, position, plate_->content, frames_.size());
}

QImage AnimationPictures::over(int effect, const std::vector<StackedLayer>& plates) {
  const FrameRef& background = effect < kFirstExit ? entranceBackground_ : exitBackground_;
  const FrameRef frame = compositor_.over(background, plates, frames_);
  QImage image = toImage(*frame).scaled(size_, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
  drawFrameLine(image);
  return image;
}

QImage AnimationPictures::picture(int effect, double position) {
  return over(effect, {StackedLayer(plate_, poseAt(effect, position))});
}

QImage AnimationPictures::tile(int effect) {
  std::vector<StackedLayer> plates;
  std::vector<StackedLayer> smallerPlates;
  const Span span = spanOf(effect);
  const double step = (span.end - span.begin) / kTrailStrengths.size();
  const LayerPose last = poseAt(effect, span.end);
  for (std::size_t i = 0; i < kTrailStrengths.size(); ++i) {
    LayerPose pose = poseAt(effect, span.begin + static_cast<double>(i) * step);
    if (pose == last)
      continue;
    // The strength replaces the fade of the pose, which would be mistaken for the trail.
    pose.opacity = kTrailStrengths[i];
    (isSmaller(pose, last) ? smallerPlates : plates).emplace_back(trailPlate_, pose);
  }
  plates.emplace_back(plate_, last);
  if (last.opacity > 0)
    plates.back().pose.opacity = 1;
  // The last plate would hide them.
  plates.insert(plates.end(), smallerPlates.begin(), smallerPlates.end());
  return over(effect, plates);
}

}  // namespace korvia
