// Timed lyrics of one piece of music. Plain values, usable from any thread.
#pragma once
#include <QList>
#include <QMetaType>
#include <QString>

/// A syllable or word. Times are as the lyric file has them.
struct tagZRCWordInfo {
  QString text;
  qint64 start = 0;
  qint64 duration = 0;
  qint32 reserved = 0;

  friend bool operator==(const tagZRCWordInfo&, const tagZRCWordInfo&) = default;
};

struct tagZRCLineInfo {
  /// Index of the line in its file; -1 for no line.
  qint32 index = -1;
  QString text;
  qint64 start = 0;
  qint64 duration = 0;
  qint32 reserved = 0;
  QList<tagZRCWordInfo> words;

  friend bool operator==(const tagZRCLineInfo&, const tagZRCLineInfo&) = default;
};

struct tagZRCFileInfo {
  QString title;
  QString artist;
  /// Milliseconds that are added to the playback position before a line is looked up.
  qint32 timeDiff = 0;
  QList<tagZRCLineInfo> lines;

  friend bool operator==(const tagZRCFileInfo&, const tagZRCFileInfo&) = default;
};

Q_DECLARE_METATYPE(tagZRCFileInfo)
