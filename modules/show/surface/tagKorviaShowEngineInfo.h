// The render set-up, handed to the engine when it opens. A plain value, usable from any thread.
#pragma once
#include <QMetaType>
#include <QString>
#include <array>

#include "tagKorviaFormatInfo.h"

struct tagKorviaShowEngineInfo {
  /// Index of the graphics device, -1 for automatic.
  qint32 renderDevice = -1;
  /// 1 default, 2 CUDA, 255 automatic.
  qint32 renderAccelerator = 255;
  /// The render picture.
  tagKorviaVideoFormat format;
  /// Index 0 the stream, index 1 the record.
  std::array<tagKorviaVideoFormat, 4> outputFormat;
  tagKorviaAudioFormat audioFormat;
  qint32 mediaChannelCount = 4;
  qint32 stageChannelCount = 2;
  qint32 reserved1 = 1;
  qint32 reserved2 = 1;
  qint32 reserved3 = 1;
  qint64 reserved4 = 1;
  /// Names of the sound devices of the two buses; empty for none chosen.
  QString pgmDevice;
  QString pvmDevice;
  quint8 reserved5 = 0;
  /// Drive paths, mapped where they are used.
  QString showDataPath;
  QString cachePath;
  qint64 reserved6 = 0;
  qint64 reserved7 = 320;
  qint32 reserved8 = 0;
  /// Holds the same value as showDataPath.
  QString secondDataPath;
};

Q_DECLARE_METATYPE(tagKorviaShowEngineInfo)
