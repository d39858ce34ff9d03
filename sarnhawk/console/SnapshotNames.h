// Names the files of snapshots. Console thread.
#pragma once
#include <QDateTime>
#include <QString>
#include <QStringList>

class SnapshotNames {
 public:
  /// Path of a new picture in the folder: "yyyy-MM-dd hhmmss.png" by the time; the second and later ones of
  /// the same second, and one whose file is there already, get "-1", "-2" … before ".png".
  QString next(const QString& folder, const QDateTime& time);

 private:
  QString _second;
  /// Paths given away in that second. Their files may come later: the engine writes them on its own time.
  QStringList _given;
};
