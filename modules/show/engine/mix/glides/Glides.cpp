#include "Glides.h"

#include <cmath>

#include "engine/mix/glides/PlacedPicture.h"

namespace korvia {

namespace {

/// The placement moved towards the side by `distance`; 1 is just outside the frame.
Placement movedTowards(SideDirection side, double distance, const Placement& whole) {
  Placement place = whole;
  place.x += side.x * static_cast<int>(std::lround(whole.width * distance));
  place.y += side.y * static_cast<int>(std::lround(whole.height * distance));
  return place;
}

}  // namespace

void Glide::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                Frame& out) const {
  const Placement whole = wholeFrame(out.size());
  if (movement_ == Out) {
    placePictures(from, movedTowards(side_, point.position, whole), to, whole, scratch, out);
    return;
  }
  const Placement incoming = movedTowards(side_, 1 - point.position, whole);
  Placement behind = whole;
  if (movement_ == Push) {
    behind.x = incoming.x - side_.x * whole.width;
    behind.y = incoming.y - side_.y * whole.height;
  }
  placePictures(to, incoming, from, behind, scratch, out);
}

}  // namespace korvia
