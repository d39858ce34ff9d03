#include "HueSaturationField.h"

#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace {

constexpr int kHues = 360;
constexpr int kSaturations = 256;
constexpr int kMarkRadius = 5;

QImage drawField() {
  QImage field(kHues, kSaturations, QImage::Format_RGB32);
  for (int y = 0; y < kSaturations; ++y) {
    for (int x = 0; x < kHues; ++x)
      field.setPixelColor(x, y, QColor::fromHsv(x, kSaturations - 1 - y, 255));
  }
  return field;
}

}  // namespace

HueSaturationField::HueSaturationField(QWidget* parent) : QWidget(parent), _field(drawField()) {
  setMinimumSize(kHues * 2 / 3, kSaturations * 2 / 3);
  setCursor(Qt::CrossCursor);
}

void HueSaturationField::setChoice(int hue, int saturation) {
  _hue = std::clamp(hue, 0, kHues - 1);
  _saturation = std::clamp(saturation, 0, kSaturations - 1);
  update();
}

void HueSaturationField::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawImage(rect(), _field);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPointF place((_hue + 0.5) * width() / kHues,
                      (kSaturations - 0.5 - _saturation) * height() / kSaturations);
  painter.setPen(QPen(Qt::black, 3));
  painter.drawEllipse(place, kMarkRadius, kMarkRadius);
  painter.setPen(QPen(Qt::white, 1.5));
  painter.drawEllipse(place, kMarkRadius, kMarkRadius);
}

void HueSaturationField::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    chooseAt(event->pos());
}

void HueSaturationField::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() & Qt::LeftButton)
    chooseAt(event->pos());
}

void HueSaturationField::chooseAt(const QPoint& place) {
  setChoice(place.x() * kHues / std::max(1, width()),
            kSaturations - 1 - place.y() * kSaturations / std::max(1, height()));
  emit chosen(_hue, _saturation);
}
