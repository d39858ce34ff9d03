// Asks for a film or a picture by the system's file dialog. Console thread.
#pragma once
#include <QString>

class QWidget;
struct tagKorviaShowChannelSlot;

class MediaFileChooser {
 public:
  /// Fills the slot with the chosen file. False, with the slot untouched, when the operator cancelled.
  static bool choose(QWidget* parent, tagKorviaShowChannelSlot& slot);
  /// Makes the slot show the file: a picture by its suffix, a film otherwise.
  static void fillSlot(const QString& path, tagKorviaShowChannelSlot& slot);
};
