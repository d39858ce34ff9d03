// The lever between preview and program. It asks the engine for a position when it is moved, and stands where
// the engine says. Console thread.
#pragma once
#include "console/GSlider.h"

class SwitchLever : public GSlider {
 public:
  /// Full travel of the lever.
  static constexpr int kRange = 10000;

  /// Position from 0 to 1 that a value stands for.
  static float positionOf(int value);

  explicit SwitchLever(QWidget* parent);

  /// Shows the engine's position, 0 to 1, without asking for it in turn. Exactly 1 is a finished switch: it
  /// ends the operator's drag and parks the lever at 0.
  void showPosition(float position);
};
