// Draws the spectrum of a sound inside a widget. Called on the console thread, except feed().
#pragma once
#include "IUnknownEx.h"
#include "KorviaShowObjectID.h"

class QWidget;

class IGWidgetAudioSpectrum : public IUnknownEx {
 public:
  /// Fills `parent` with the spectrum; `parent` stays its owner's. `reserved` is 0.
  virtual void attach(QWidget* parent, int reserved) = 0;
  /// Takes what the engine's sink got as onAudioData. Engine thread; must not block.
  virtual void feed(KorviaShowObjectID id, const void* data, unsigned a, unsigned b, int c, const void* d,
                    int e) = 0;
  /// Takes the spectrum out of its parent; comes before release().
  virtual void detach() = 0;

 protected:
  ~IGWidgetAudioSpectrum() = default;
};
