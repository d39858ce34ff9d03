// How a stage strip asks the operator what to show. The console holds one chooser for all strips. Console
// thread.
#pragma once
#include <functional>

class QWidget;
struct tagKorviaStageSlot;

struct StripChooser {
  /// Runs modally over a private copy of the slot; true when the operator accepted it. Empty while no stages
  /// are installed.
  std::function<bool(QWidget* parent, tagKorviaStageSlot& slot)> stage;
};
