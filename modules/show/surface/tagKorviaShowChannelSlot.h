// The source slot of a media channel: who it is, what it shows and in which format. A plain value.
#pragma once
#include <QMetaType>
#include <QString>
#include <QUuid>

#include "tagKorviaFormatInfo.h"
#include "tagKorviaShowSourceInfo.h"

struct tagKorviaShowChannelSlot {
  QUuid id;
  QString name;
  tagKorviaShowSourceInfo source;
  tagKorviaFormatInfo format;
};

Q_DECLARE_METATYPE(tagKorviaShowChannelSlot)
