// A component package, or a component that was placed, as the console keeps it. A plain value, used on the
// console thread.
#pragma once
#include <QMetaType>

#include "tagKorviaShowComponentInfo.h"

class QTranslator;

struct tagKorviaComponentParam {
  /// 1 while the item is shown on the bus.
  qint32 pvmVisible = 0;
  qint32 pgmVisible = 0;
  /// What travels to the engine.
  tagKorviaShowComponentInfo info;
  /// Shared by all copies of the record, and never deleted.
  QTranslator* translator = nullptr;
  /// The package's folder; closes with a slash.
  QString folder;
  QString thumbPath;

  friend bool operator==(const tagKorviaComponentParam&, const tagKorviaComponentParam&) = default;
};

/// The picker's tiles carry one each.
Q_DECLARE_METATYPE(tagKorviaComponentParam)
