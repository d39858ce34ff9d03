// How a strip asks the operator what it is to show. The console holds one for all strips. Console thread.
#pragma once
#include <functional>

class QWidget;
struct tagKorviaShowChannelSlot;
struct tagKorviaStageSlot;

struct StripChooser {
  /// Runs modally over a private copy of the slot; true when the operator accepted it.
  std::function<bool(QWidget* parent, tagKorviaShowChannelSlot& slot)> media;
  /// The same for a stage channel. Empty while there is nothing to choose a stage from.
  std::function<bool(QWidget* parent, tagKorviaStageSlot& slot)> stage;
};
