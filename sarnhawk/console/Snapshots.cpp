#include "console/Snapshots.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QToolTip>
#include <QWidget>

#include "KorviaShowEvents.h"
#include "KorviaShowObjectID.h"
#include "console/IKorviaSarnhawkPriv.h"

namespace {

constexpr QPoint kTipOffset(8, -52);

}  // namespace

void Snapshots::take(QWidget* frame) {
  const QString folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
  QDir().mkpath(folder);
  const QString path = nextPath(folder, QDateTime::currentDateTime());
  _priv->postEvent(ShowEventSnapshot, PGMObject, path);
  QToolTip::showText(frame->geometry().bottomLeft() + kTipOffset, path, frame);
}

QString Snapshots::nextPath(const QString& folder, const QDateTime& time) {
  const QString second = folder + QDir::separator() + time.toString(QStringLiteral("yyyy-MM-dd hhmmss"));
  if (second != _second) {
    _second = second;
    _named.clear();
  }
  QString path = second + QStringLiteral(".png");
  for (int number = 1; _named.contains(path) || QFileInfo::exists(path); ++number)
    path = second + QStringLiteral("-%1.png").arg(number);
  _named.append(path);
  return path;
}
