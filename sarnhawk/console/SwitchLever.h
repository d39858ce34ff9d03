// The lever between preview and program. A move asks the engine for a position; the lever shows the position
// that the engine reports. Console thread.
#pragma once
#include "console/GSlider.h"

class SwitchLever : public GSlider {
 public:
  /// Full travel of the lever.
  static constexpr int kRange = 10000;

  /// Position from 0 to 1 that a value stands for.
  static float positionOf(int value);

  explicit SwitchLever(QWidget* parent);

  /// Shows the engine's position, 0 to 1, without posting it again. Exactly 1 means that the switch is
  /// finished: it ends the operator's drag and sets the lever to 0.
  void showPosition(float position);
};
