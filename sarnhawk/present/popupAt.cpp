#include "present/popupAt.h"

#include <QApplication>
#include <QDesktopWidget>

namespace {

constexpr int kCentre = 0x84;

}  // namespace

void popupAt(QWidget* popup, const QWidget* anchor, int vertical, int horizontal) {
  const QPoint corner = anchor->mapToGlobal(QPoint(0, 0));
  const QSize size = popup->size();
  int y = corner.y() - size.height();
  if (vertical == Qt::AlignBottom)
    y = corner.y() + anchor->height();
  else if (vertical == kCentre)
    y = corner.y() - size.height() / 2;
  int x = corner.x() + anchor->width();
  if (horizontal == Qt::AlignLeft)
    x = corner.x() - size.width();
  else if (horizontal == kCentre)
    x = corner.x() - size.width() / 2;

  const QRect room = QApplication::desktop()->availableGeometry(popup);
  x = std::max(x, room.left());
  y = std::max(y, room.top());
  x = std::min(x, room.left() + room.width() - size.width());
  y = std::min(y, room.top() + room.height() - size.height());
  popup->move(x, y);
  popup->show();
}
