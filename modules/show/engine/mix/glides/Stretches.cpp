#include "Stretches.h"

#include <cmath>

#include "engine/mix/glides/PlacedPicture.h"

namespace korvia {

namespace {

int partOf(int length, double part) {
  return static_cast<int>(std::lround(length * part));
}

Placement atSide(PictureSide side, double part, const Placement& whole) {
  Placement place = whole;
  const SideDirection direction = directionOf(side);
  if (direction.x != 0)
    place.width = partOf(whole.width, part);
  else
    place.height = partOf(whole.height, part);
  if (side == PictureSide::Right)
    place.x = whole.width - place.width;
  if (side == PictureSide::Bottom)
    place.y = whole.height - place.height;
  return place;
}

/// The rest of the whole beside `place`, which lies at the side.
Placement besides(PictureSide side, const Placement& place, const Placement& whole) {
  Placement rest = whole;
  if (directionOf(side).x != 0)
    rest.width -= place.width;
  else
    rest.height -= place.height;
  if (side == PictureSide::Left)
    rest.x = place.width;
  if (side == PictureSide::Top)
    rest.y = place.height;
  return rest;
}

Placement inCenter(double part, const Placement& whole) {
  const int width = partOf(whole.width, part);
  const int height = partOf(whole.height, part);
  return {(whole.width - width) / 2, (whole.height - height) / 2, width, height};
}

}  // namespace

void SideStretch::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                      Frame& out) const {
  const Placement whole = wholeFrame(out.size());
  const Placement incoming = atSide(side_, point.position, whole);
  placePictures(to, incoming, from, besides(side_, incoming, whole), scratch, out);
}

void CenterStretch::mix(const Frame& from, const Frame& to, const MixPoint& point, TransitionScratch& scratch,
                        Frame& out) const {
  const Placement whole = wholeFrame(out.size());
  if (movement_ == OldOut)
    placePictures(from, inCenter(1 - point.position, whole), to, whole, scratch, out);
  else
    placePictures(to, inCenter(point.position, whole), from, whole, scratch, out);
}

}  // namespace korvia
