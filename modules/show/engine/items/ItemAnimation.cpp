#include "ItemAnimation.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

namespace korvia {

namespace {

/// What an effect works on.
struct Scene {
  QRectF item;
  double width;   // of the picture
  double height;  // of the picture
};

// `away` goes from 1, when the item is hidden, to 0.
using Effect = void (*)(const Scene& scene, double away, LayerPose& pose);

void flyTop(const Scene& scene, double away, LayerPose& pose) {
  pose.moveY = -scene.item.bottom() * away;
}
void flyBottom(const Scene& scene, double away, LayerPose& pose) {
  pose.moveY = (scene.height - scene.item.top()) * away;
}
void flyLeft(const Scene& scene, double away, LayerPose& pose) {
  pose.moveX = -scene.item.right() * away;
}
void flyRight(const Scene& scene, double away, LayerPose& pose) {
  pose.moveX = (scene.width - scene.item.left()) * away;
}
void flyTopLeft(const Scene& scene, double away, LayerPose& pose) {
  flyTop(scene, away, pose);
  flyLeft(scene, away, pose);
}
void flyTopRight(const Scene& scene, double away, LayerPose& pose) {
  flyTop(scene, away, pose);
  flyRight(scene, away, pose);
}

// Part of the picture that an item drifts by while it fades.
constexpr double kDrift = 0.1;

void drift(const Scene& scene, double away, double right, double down, LayerPose& pose) {
  pose.moveX = scene.width * kDrift * right * away;
  pose.moveY = scene.height * kDrift * down * away;
  pose.opacity = 1 - away;
}
void floatTopLeft(const Scene& scene, double away, LayerPose& pose) {
  drift(scene, away, -1, -1, pose);
}
void floatTopRight(const Scene& scene, double away, LayerPose& pose) {
  drift(scene, away, 1, -1, pose);
}
void glide(const Scene& scene, double away, LayerPose& pose) {
  drift(scene, away, -3, 0, pose);
}
void fromBelow(const Scene& scene, double away, LayerPose& pose) {
  drift(scene, away, 0, 1, pose);
}
void fromAbove(const Scene& scene, double away, LayerPose& pose) {
  drift(scene, away, 0, -1, pose);
}

void magnify(const Scene&, double away, LayerPose& pose) {
  pose.scaleX = pose.scaleY = 1 - away;
}
/// Out of the depth in front of the picture.
void zoom(const Scene&, double away, LayerPose& pose) {
  pose.scaleX = pose.scaleY = 1 + 2 * away;
  pose.opacity = 1 - away;
}
void pinwheel(const Scene&, double away, LayerPose& pose) {
  pose.scaleX = pose.scaleY = 1 - away;
  pose.rotationDegrees = -360 * away;
}
/// Swings in from the right on an arc, and levels out.
void sling(const Scene& scene, double away, LayerPose& pose) {
  flyRight(scene, away, pose);
  pose.moveY = -0.3 * scene.height * std::sin(std::numbers::pi * away);
  pose.rotationDegrees = 90 * away;
}
/// A line that is drawn through the picture from the left, and opens.
void thread(const Scene& scene, double away, LayerPose& pose) {
  constexpr double kThin = 0.06;
  const double opened = std::clamp(1 - 2 * away, 0.0, 1.0);
  const double drawn = std::clamp(2 - 2 * away, 0.0, 1.0);
  pose.scaleY = kThin + (1 - kThin) * opened;
  pose.scaleX = 1 + 2 * (1 - drawn);
  // It is wider by then, so its right edge is farther from its middle.
  pose.moveX = -(scene.item.center().x() + scene.item.width() * pose.scaleX / 2) * (1 - drawn);
}

// By the numbers of the entrances; none for an item that appears at once.
constexpr Effect kEntrances[] = {nullptr,     flyTop,       flyBottom,     flyLeft,   flyRight, flyTopLeft,
                                 flyTopRight, floatTopLeft, floatTopRight, glide,     magnify,  pinwheel,
                                 sling,       thread,       zoom,          fromBelow, fromAbove};
constexpr int kAscend = 15;
constexpr int kDescend = 16;

LayerPose poseOf(Effect effect, double away, const QRectF& item, FrameSize bus) {
  LayerPose pose;
  if (away <= 0)
    return pose;
  if (away >= 1 || !effect) {
    pose.opacity = away >= 1 ? 0 : 1;
    return pose;
  }
  pose.anchorX = item.center().x();
  pose.anchorY = item.center().y();
  effect({item, static_cast<double>(bus.width), static_cast<double>(bus.height)}, away, pose);
  return pose;
}

Effect effectAt(int number) {
  return number >= 0 && number < static_cast<int>(std::size(kEntrances)) ? kEntrances[number] : nullptr;
}

}  // namespace

LayerPose entrancePose(int effect, double shown, const QRectF& item, FrameSize bus) {
  return poseOf(effectAt(effect), 1 - shown, item, bus);
}

LayerPose exitPose(int effect, double gone, const QRectF& item, FrameSize bus) {
  // An item that ascends leaves upwards, and does not turn back.
  const int entrance = effect - kFirstExit;
  const Effect turned = entrance == kAscend    ? fromAbove
                        : entrance == kDescend ? fromBelow
                                               : effectAt(entrance);
  return poseOf(turned, gone, item, bus);
}

}  // namespace korvia
