// Draws texts in the presets of text styles, with the engine's own painter. Needs a QGuiApplication with
// fonts; main thread.
#pragma once
#include <QSize>
#include <QString>
#include <QTemporaryDir>

#include "KorviaShowTextStylePreset.h"
#include "engine/items/text/TextPainter.h"

namespace korvia {

class PresetPictures {
 public:
  static constexpr int kCount = TextStyleTexture0004 + 1;

  /// Writes the textures into a folder of its own, where the painter finds them.
  PresetPictures();

  /// False, with a line on standard error, when the textures could not be written.
  bool hasTextures() const { return hasTextures_; }
  /// @param preset 0 to kCount - 1.
  /// @param scale  1 gives letters of 40 pixels.
  TextPicture text(int preset, const QString& letters, double scale);
  /// Two letters over a background on which every preset can be read; opaque.
  QImage tile(int preset, QSize size);

 private:
  const QTemporaryDir textures_;
  const bool hasTextures_;
  TextPainter painter_;
};

}  // namespace korvia
