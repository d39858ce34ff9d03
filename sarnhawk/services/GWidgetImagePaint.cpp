#include "services/GWidgetImagePaint.h"

#include <QPainter>

void GWidgetImagePaint::setImage(const QImage& image) {
  _image = image;
  update();
}

void GWidgetImagePaint::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  // A text has transparent parts, which show as the black of an empty bus.
  painter.fillRect(rect(), Qt::black);
  if (_image.isNull())
    return;
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(rect(), _image);
}
