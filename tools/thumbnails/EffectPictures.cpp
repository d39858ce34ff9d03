#include "EffectPictures.h"

#include <algorithm>
#include <array>

#include "SampleScene.h"
#include "engine/frame/PictureFrame.h"
#include "engine/mix/TransitionCatalog.h"
#include "engine/output/FrameExport.h"

namespace korvia {

namespace {

// Effects are mixed in a larger size and scaled down, which gives smooth edges and full colour resolution.
constexpr int kZoom = 4;
// These effects work on single pixels and lines, which scaling down would average away.
constexpr std::array kFineEffects{77, 78};
// Any fixed seed serves: it keeps the pictures the same from build to build.
constexpr std::uint32_t kSeed = 7;

bool isFine(int effect) {
  return std::find(kFineEffects.begin(), kFineEffects.end(), effect) != kFineEffects.end();
}

}  // namespace

EffectPictures::EffectPictures(QSize size) : size_(size), fine_(scenes(1)), smooth_(scenes(kZoom)) {}

EffectPictures::Scenes EffectPictures::scenes(int zoom) const {
  return {frameFromImage(drawSceneA(size_ * zoom)), frameFromImage(drawSceneB(size_ * zoom))};
}

QImage EffectPictures::picture(int effect, double position) {
  const Transition* transition = transitionFor(effect);
  if (!transition)
    return QImage();
  const Scenes& scenes = isFine(effect) ? fine_ : smooth_;
  MutableFrame mixed(new Frame(scenes.from->size()));
  transition->mix(*scenes.from, *scenes.to, {position, kSeed}, scratch_, *mixed);
  return toImage(*mixed).scaled(size_, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

}  // namespace korvia
