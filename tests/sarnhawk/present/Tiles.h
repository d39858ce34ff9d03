// The tiles of a list, as a test looks at them. Console thread.
#pragma once
#include <QListWidget>

#include "present/GListWidgetItem.h"

inline QList<GListWidgetItem*> tilesOf(const QListWidget* list) {
  return list->findChildren<GListWidgetItem*>();
}

/// Null when there is none with this id.
inline GListWidgetItem* tileOf(const QListWidget* list, qint32 id) {
  for (GListWidgetItem* tile : tilesOf(list)) {
    if (tile->info().id == id)
      return tile;
  }
  return nullptr;
}

/// The ids of the tiles that are marked.
inline QList<qint32> markedOf(const QListWidget* list) {
  QList<qint32> ids;
  for (const GListWidgetItem* tile : tilesOf(list)) {
    if (tile->isSelected())
      ids.append(tile->info().id);
  }
  return ids;
}
