// Feeds the level meters of the desk: the two of the buses, which it makes, and those of the strips. Console
// thread.
#pragma once
#include "console/ConsolePage.h"

class IKorviaSarnhawkPriv;
class QVUMeter;
class StripArea;

namespace Ui {
class KorviaSarnhawk;
}

class LevelMeters : public ConsolePage {
 public:
  /// `ui` must be set up, since the meters are made in its frames. `priv` and `strips` must outlive the
  /// object.
  LevelMeters(IKorviaSarnhawkPriv* priv, const StripArea* strips, const Ui::KorviaSarnhawk& ui);

  /// Shows the engine's levels; without an engine the meters stay as they are.
  void onFrameTick() override;

 private:
  IKorviaSarnhawkPriv* _priv;
  const StripArea* _strips;
  QVUMeter* _pvmMeter;
  QVUMeter* _pgmMeter;
};
