#include "GCleanlooksStyle.h"

#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionSlider>
#include <algorithm>

namespace {

constexpr int kSlotThickness = 6;
constexpr int kMinTickPitch = 6;
constexpr int kMajorEvery = 5;
constexpr int kMinorLength = 5;
constexpr int kMajorLength = 9;
/// From the centre line to the ticks, in pixels.
constexpr int kTickDistance = 10;

QColor mixed(const QColor& a, const QColor& b, double share) {
  const auto part = [share](int from, int to) { return static_cast<int>(from + (to - from) * share); };
  return QColor(part(a.red(), b.red()), part(a.green(), b.green()), part(a.blue(), b.blue()));
}

/// Pixels between drawn ticks: the slider's interval, doubled until the ticks are far enough apart to be
/// read.
double tickPitch(const QStyleOptionSlider& slider, int span) {
  const double range = std::max(1.0, double(slider.maximum) - slider.minimum);
  const int interval = slider.tickInterval > 0 ? slider.tickInterval : std::max(1, slider.pageStep);
  double pitch = std::max(span * interval / range, 0.01);
  while (pitch < kMinTickPitch)
    pitch *= 2;
  return pitch;
}

}  // namespace

GCleanlooksStyle::GCleanlooksStyle(int overhang)
    : QProxyStyle(QStringLiteral("fusion")), _overhang(overhang) {}

int GCleanlooksStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                                  const QWidget* widget) const {
  const int base = QProxyStyle::pixelMetric(metric, option, widget);
  return metric == PM_SliderTickmarkOffset ? base - _overhang / 2 : base;
}

QRect GCleanlooksStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                       SubControl subControl, const QWidget* widget) const {
  const QRect base = QProxyStyle::subControlRect(control, option, subControl, widget);
  if (control == CC_Slider && (subControl == SC_SliderGroove || subControl == SC_SliderHandle))
    return base.adjusted(-_overhang, 0, _overhang, 0);
  return base;
}

void GCleanlooksStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                          QPainter* painter, const QWidget* widget) const {
  const auto* slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
  if (control != CC_Slider || !slider) {
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    return;
  }
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing);
  if (slider->tickPosition != QSlider::NoTicks)
    drawTicks(*slider, painter, widget);
  drawGroove(*slider, painter, widget);
  drawHandle(*slider, painter, widget);
  painter->restore();
}

void GCleanlooksStyle::drawTicks(const QStyleOptionSlider& slider, QPainter* painter,
                                 const QWidget* widget) const {
  const bool upright = slider.orientation == Qt::Vertical;
  const QRect handle = proxy()->subControlRect(CC_Slider, &slider, SC_SliderHandle, widget);
  const int margin = (upright ? handle.height() : handle.width()) / 2;
  const int span = (upright ? slider.rect.height() : slider.rect.width()) - 2 * margin;
  if (span <= 0)
    return;
  const QPoint centre = slider.rect.center();
  const QColor ink = mixed(slider.palette.window().color(), slider.palette.windowText().color(), 0.35);
  const double pitch = tickPitch(slider, span);
  painter->setRenderHint(QPainter::Antialiasing, false);
  for (int i = 0; i * pitch <= span + 0.5; ++i) {
    const bool major = i % kMajorEvery == 0;
    const int length = major ? kMajorLength : kMinorLength;
    painter->setPen(QPen(major ? ink : mixed(slider.palette.window().color(), ink, 0.6), 1));
    const int along = margin + qRound(i * pitch);
    for (int side = -1; side <= 1; side += 2) {
      const bool wanted = slider.tickPosition & (side < 0 ? QSlider::TicksAbove : QSlider::TicksBelow);
      if (!wanted)
        continue;
      const int inner = side * kTickDistance;
      const int outer = side * (kTickDistance + length);
      if (upright)
        painter->drawLine(centre.x() + inner, slider.rect.top() + along, centre.x() + outer,
                          slider.rect.top() + along);
      else
        painter->drawLine(slider.rect.left() + along, centre.y() + inner, slider.rect.left() + along,
                          centre.y() + outer);
    }
  }
  painter->setRenderHint(QPainter::Antialiasing, true);
}

void GCleanlooksStyle::drawGroove(const QStyleOptionSlider& slider, QPainter* painter,
                                  const QWidget* widget) const {
  const QRect groove = proxy()->subControlRect(CC_Slider, &slider, SC_SliderGroove, widget);
  const QPointF centre = QRectF(groove).center();
  QRectF slot(0, 0, kSlotThickness, groove.height() - 2);
  if (slider.orientation == Qt::Horizontal)
    slot = QRectF(0, 0, groove.width() - 2, kSlotThickness);
  slot.moveCenter(centre);
  painter->setPen(QPen(slider.palette.midlight().color(), 1));
  painter->setBrush(slider.palette.dark().color());
  painter->drawRoundedRect(slot, kSlotThickness / 2.0, kSlotThickness / 2.0);
}

void GCleanlooksStyle::drawHandle(const QStyleOptionSlider& slider, QPainter* painter,
                                  const QWidget* widget) const {
  const bool enabled = slider.state & State_Enabled;
  const bool held = enabled && (slider.activeSubControls & SC_SliderHandle) && (slider.state & State_Sunken);
  const bool hovered = enabled && (slider.state & State_MouseOver);
  const bool upright = slider.orientation == Qt::Vertical;
  const QRectF handle = QRectF(proxy()->subControlRect(CC_Slider, &slider, SC_SliderHandle, widget))
                            .adjusted(0.5, 1.5, -0.5, -1.5);

  const QColor face = mixed(slider.palette.button().color(), slider.palette.windowText().color(),
                            enabled ? (hovered || held ? 0.36 : 0.28) : 0.1);
  QLinearGradient metal(handle.topLeft(), upright ? handle.bottomLeft() : handle.topRight());
  metal.setColorAt(0, face.lighter(125));
  metal.setColorAt(0.45, face);
  metal.setColorAt(1, face.darker(130));
  painter->setPen(QPen(slider.palette.shadow().color(), 1));
  painter->setBrush(metal);
  painter->drawRoundedRect(handle, 3, 3);

  // The operator reads the position from this line.
  QColor mark = enabled ? slider.palette.brightText().color() : slider.palette.mid().color();
  if (held)
    mark = slider.palette.link().color();
  painter->setPen(QPen(mark, 2, Qt::SolidLine, Qt::FlatCap));
  const QPointF centre = handle.center();
  if (upright)
    painter->drawLine(QPointF(handle.left() + 4, centre.y()), QPointF(handle.right() - 4, centre.y()));
  else
    painter->drawLine(QPointF(centre.x(), handle.top() + 4), QPointF(centre.x(), handle.bottom() - 4));
}
