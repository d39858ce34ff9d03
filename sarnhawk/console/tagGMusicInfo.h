// One entry of the music list. A plain value, used on the console thread.
#pragma once
#include <QMetaType>
#include <QString>

#include "tagZRCFileInfo.h"

struct tagGMusicInfo {
  /// As the operator chose it; no two entries of a list have the same.
  QString musicPath;
  /// Empty when no lyrics were found.
  QString lyricsPath;
  QString name;
  QString album;
  QString artist;
  /// "mm:ss".
  QString length = QStringLiteral("00:00");
  tagZRCFileInfo zrc;

  friend bool operator==(const tagGMusicInfo&, const tagGMusicInfo&) = default;
};

Q_DECLARE_METATYPE(tagGMusicInfo)
