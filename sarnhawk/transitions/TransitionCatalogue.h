// Numbers and names of the transitions and easing curves that the operator can choose. The engine draws them.
// Console thread.
#pragma once
#include <QList>
#include <array>

#include "present/GListWidgetItemInfo.h"

class TransitionCatalogue {
 public:
  static constexpr int kCatalogCount = 8;
  /// Stands for all catalogs at once.
  static constexpr int kAllCatalog = 8;

  /// Translated name of a catalog, 0 to 7; empty for any other number.
  static QString catalogName(int catalog);
  /// The easing curves with their translated names. The index in the list is the easing code.
  static QList<GListWidgetItemInfo> easingList();
  /// Path of the picture of an easing code, beside the application.
  static QString easingThumbPath(int code);

  /// Effects of a catalog by their numbers, all of them for kAllCatalog, null for any other number. Filled at
  /// the first call and kept for the life of the catalogue.
  QList<GListWidgetItemInfo>* effectList(int catalog);
  /// The entry of an effect number, null when the catalogue does not hold it.
  const GListWidgetItemInfo* find(qint32 effect);

 private:
  void fill();

  std::array<QList<GListWidgetItemInfo>, kCatalogCount + 1> _lists;
};
