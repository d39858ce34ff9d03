#include "console/GWidgetAspectBox.h"

#include <QEvent>

namespace {

constexpr int kAspectWidth = 16;
constexpr int kAspectHeight = 9;

}  // namespace

GWidgetAspectBox::GWidgetAspectBox(QWidget* parent) : QWidget(parent) {}

void GWidgetAspectBox::setBorder(int border) {
  _border = border;
  placeChild();
}

void GWidgetAspectBox::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  placeChild();
}

bool GWidgetAspectBox::event(QEvent* event) {
  // A child that is added after the first layout gets no resize event of the box, so it is placed here.
  if (event->type() == QEvent::ChildPolished)
    placeChild();
  return QWidget::event(event);
}

void GWidgetAspectBox::placeChild() {
  auto* child = findChild<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
  if (!child)
    return;
  const QSize room = size() - QSize(2 * _border, 2 * _border);
  QSize picture(kAspectWidth, kAspectHeight);
  picture.scale(room, Qt::KeepAspectRatio);
  const QSize whole = picture + QSize(2 * _border, 2 * _border);
  child->setGeometry((width() - whole.width()) / 2, (height() - whole.height()) / 2, whole.width(),
                     whole.height());
}
