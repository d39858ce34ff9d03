// What a stage channel shows. A plain value, used on the console thread.
#pragma once
#include <QString>

#include "tagKorviaShowComponentInfo.h"

class QTranslator;

struct tagKorviaStageSlot {
  qint32 reserved = 0;
  qint32 inUse = 0;
  tagKorviaShowComponentInfo info;
  /// Shared with the catalog that the stage was chosen from, and never deleted.
  QTranslator* translator = nullptr;
  /// Closes with a slash.
  QString folder;
  QString thumbPath;
};
