#include "audio/GVolumeSlider.h"

#include <QMouseEvent>
#include <QWheelEvent>
#include <cmath>

namespace {

constexpr int kWholeVolume = 100;
constexpr int kWheelStep = 2;
constexpr int kAnswerMs = 300;

}  // namespace

GVolumeSlider::GVolumeSlider(QWidget* parent) : QSlider(parent) {
  setRange(0, kWholeVolume);
  setValue(kWholeVolume);
}

QString GVolumeSlider::gainText(int percent) {
  if (percent <= 0)
    return QStringLiteral("-\u221E dB");
  return QStringLiteral("%1 dB").arg(20 * std::log10(static_cast<double>(percent) / kWholeVolume), 0, 'f', 1);
}

void GVolumeSlider::wheelEvent(QWheelEvent* event) {
  // Touch pads send parts of a notch.
  _turned += event->angleDelta().y();
  const int notches = _turned / QWheelEvent::DefaultDeltasPerStep;
  _turned -= notches * QWheelEvent::DefaultDeltasPerStep;
  // The engine's answer to a notch may put the slider back while the next notches come.
  const bool goesOn = _sinceNotch.isValid() && !_sinceNotch.hasExpired(kAnswerMs);
  _target = qBound(minimum(), (goesOn ? _target : value()) + notches * kWheelStep, maximum());
  _sinceNotch.start();
  setValue(_target);
  event->accept();
}

void GVolumeSlider::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton)
    setValue(kWholeVolume);
  event->accept();
}

void GVolumeSlider::sliderChange(SliderChange change) {
  QSlider::sliderChange(change);
  if (change == SliderValueChange)
    setToolTip(tr("Volume : %1").arg(gainText(value())));
}
