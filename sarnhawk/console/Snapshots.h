// Takes snapshots of the program and names their files. Console thread.
#pragma once
#include <QDateTime>
#include <QString>
#include <QStringList>

class IKorviaSarnhawkPriv;
class QWidget;

class Snapshots {
 public:
  /// `priv` must outlive the object.
  explicit Snapshots(IKorviaSarnhawkPriv* priv) : _priv(priv) {}

  /// Asks the engine for a picture in the operator's picture folder, and shows the file's path as a tool tip
  /// at the lower left corner of `frame`.
  void take(QWidget* frame);
  /// Path of a new picture in the folder: "yyyy-MM-dd hhmmss.png" by the time. When that file exists or was
  /// named before in the same second, "-1", "-2" … stands before ".png".
  QString nextPath(const QString& folder, const QDateTime& time);

 private:
  IKorviaSarnhawkPriv* _priv;
  QString _second;
  /// Paths that were named in that second. The engine writes the files later, so that they may not exist yet.
  QStringList _named;
};
