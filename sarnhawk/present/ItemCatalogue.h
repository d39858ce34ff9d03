// What the editors of items offer: animations and looks of text, with their pictures beside the program.
// Console thread.
#pragma once
#include <QList>

#include "present/GListWidgetItemInfo.h"

class ItemCatalogue {
 public:
  /// Masks uncover a picture in parts. Texts do without them.
  enum class Masks { Without, With };

  /// In the order of display. Names are not translated.
  static QList<GListWidgetItemInfo> entrances(Masks masks);
  static QList<GListWidgetItemInfo> exits(Masks masks);
  /// The presets of text styles, without captions. The id is a KorviaShowTextStylePreset.
  static QList<GListWidgetItemInfo> textPresets();

  /// Folder of the pictures, with a slash at its end.
  static QString folder();
};
