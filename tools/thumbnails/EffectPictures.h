// Draws transitions with the engine's own effects, between the two sample scenes. Needs a QGuiApplication;
// main thread.
#pragma once
#include <QImage>

#include "engine/frame/Frame.h"
#include "engine/mix/TransitionScratch.h"

namespace korvia {

class EffectPictures {
 public:
  /// All pictures will have this size, in pixels.
  explicit EffectPictures(QSize size);

  QSize size() const { return size_; }
  /// An effect at a position of 0 to 1, opaque; a null image for a number without a transition.
  QImage picture(int effect, double position);

 private:
  /// The two scenes in one of the sizes in which effects are mixed.
  struct Scenes {
    FrameRef from;
    FrameRef to;
  };

  Scenes scenes(int zoom) const;

  const QSize size_;
  const Scenes fine_;
  const Scenes smooth_;
  TransitionScratch scratch_;
};

}  // namespace korvia
