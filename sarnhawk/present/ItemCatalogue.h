// What the editors of items offer: animations and looks of text, with their pictures beside the program.
// Console thread.
#pragma once
#include <QList>

#include "present/GListWidgetItemInfo.h"

class ItemCatalogue {
 public:
  /// Masks uncover a picture in parts. Texts do without them.
  enum class Masks { Without, With };

  /// `program` is the base name of the application file, beside which the pictures lie.
  explicit ItemCatalogue(const QString& program = runningProgram());

  /// In the order of display. Names are not translated.
  QList<GListWidgetItemInfo> entrances(Masks masks) const;
  QList<GListWidgetItemInfo> exits(Masks masks) const;
  /// The presets of text styles, without captions. The id is a KorviaShowTextStylePreset.
  QList<GListWidgetItemInfo> textPresets() const;

 private:
  static QString runningProgram();

  QString _folder;
};
