// The transitions that the operator can choose from, and the easing curves. The engine draws them; here they
// are only numbered and named. Console thread.
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
  /// The easing curves under their translated names; the place in the list is the code.
  static QList<GListWidgetItemInfo> easingList();
  /// Where the picture of an easing code lies, beside the application.
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
