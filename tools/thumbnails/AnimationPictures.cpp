#include "AnimationPictures.h"

#include <QLinearGradient>
#include <QPainter>
#include <cmath>

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
constexpr QRgb kHeading = 0xff28323e;
constexpr QRgb kLine = 0xff8b95a3;
constexpr QRgb kFrame = 0xffaab4c0;

// The plate as parts of the picture.
constexpr double kPlateWidth = 0.46;
constexpr double kPlateHeight = 0.26;

/// A moment of a tile, and how strongly the plate is seen there, 0 to 1.
struct Moment {
  double position;
  double strength;
};
constexpr Moment kEntranceMoments[] = {{0.25, 0.18}, {0.5, 0.3}, {0.75, 0.45}, {1, 1}};
constexpr Moment kExitMoments[] = {{0, 0.45}, {0.2, 0.3}, {0.4, 0.3}, {0.6, 1}};

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

LayerRef drawPlate(FrameSize bus) {
  const QSize size(static_cast<int>(bus.width * kPlateWidth), static_cast<int>(bus.height * kPlateHeight));
  QImage image(size, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(size.width(), size.height());
  const auto drawPart = [&painter](const QRectF& part, QRgb color) { painter.fillRect(part, QColor(color)); };
  drawPart({0, 0, 1, 1}, kPlate);
  drawPart({0, 0, 0.12, 1}, kAccent);
  drawPart({0.22, 0.2, 0.66, 0.28}, kHeading);
  drawPart({0.22, 0.64, 0.42, 0.16}, kLine);
  painter.end();
  const QPoint corner((bus.width - size.width()) / 2, (bus.height - size.height()) / 2);
  return Layer::makeMovable(image, corner, bus, QRectF(corner, size));
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
      plate_(drawPlate(frames_.size())) {}

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
  const auto add = [&](const Moment& moment) {
    LayerPose pose = poseAt(effect, moment.position);
    // A fade would be mistaken for the trail.
    if (pose.opacity > 0)
      pose.opacity = moment.strength;
    plates.emplace_back(plate_, pose);
  };
  if (effect < kFirstExit)
    std::for_each(std::begin(kEntranceMoments), std::end(kEntranceMoments), add);
  else
    std::for_each(std::begin(kExitMoments), std::end(kExitMoments), add);
  return over(effect, plates);
}

}  // namespace korvia
