#include "QVUMeter.h"

#include <QLinearGradient>
#include <QPainter>
#include <algorithm>
#include <chrono>
#include <cmath>

namespace {

constexpr qint64 kRepaintLimitMs = 50;
constexpr QColor kCoverColor(20, 20, 20);

qint64 systemClockMs() {
  using namespace std::chrono;
  return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

/// `length` in whole pixels, clamped to 0 to `limit`. NaN and infinity count as 0.
int pixels(double length, int limit) {
  return std::isfinite(length) ? static_cast<int>(std::clamp(length, 0.0, double(std::max(limit, 0)))) : 0;
}

}  // namespace

QVUMeter::QVUMeter(QWidget* parent, bool compact) : QWidget(parent), _compact(compact) {}

void QVUMeter::setColorBg(QColor color) {
  _colorBg = color;
  update();
}

void QVUMeter::setColorValue(QColor color) {
  _colorValue = color;
  update();
}

void QVUMeter::setColorHigh(QColor color) {
  _colorHigh = color;
  update();
}

void QVUMeter::setColorLow(QColor color) {
  _colorLow = color;
  update();
}

void QVUMeter::setValueDim(int dim) {
  _dimValue = dim;
  update();
}

double QVUMeter::clamped(double value) const {
  // With the operands in this order NaN becomes the minimum.
  return qMax(_minValue, qMin(_maxValue, value));
}

void QVUMeter::setLeftValue(double value) {
  _leftValue = clamped(value);
  update();
}

void QVUMeter::setRightValue(double value) {
  _rightValue = clamped(value);
  update();
}

void QVUMeter::setValues(double left, double right) {
  _leftValue = clamped(left);
  _rightValue = clamped(right);
  if (systemClockMs() - _stampMs > kRepaintLimitMs)
    update();
}

void QVUMeter::setMinValue(double value) {
  if (value < _minValue) {
    _maxValue = _minValue;
    _minValue = value;
  } else {
    _maxValue = value;
  }
  update();
}

void QVUMeter::setMaxValue(double value) {
  if (value > _maxValue) {
    _minValue = _maxValue;
    _maxValue = value;
  } else {
    _minValue = value;
  }
  update();
}

void QVUMeter::paintBar() {
  repaint();
}

void QVUMeter::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), _colorBg);
  if (_compact)
    paintCompact(painter);
  else
    paintFull(painter);
}

void QVUMeter::paintFull(QPainter& painter) const {
  painter.setRenderHint(QPainter::Antialiasing);
  const int channelWidth = (rect().right() - rect().left() + 1) / 2;
  paintChannel(painter, 2, _leftValue);
  paintChannel(painter, 2 + channelWidth, _rightValue);
}

void QVUMeter::paintChannel(QPainter& painter, int x, double value) const {
  const int w = rect().right() - rect().left();
  const int h = rect().bottom() - rect().top();
  const int barWidth = (w + 1) / 2 - 4;
  const int barHeight = h - 3;
  if (barWidth <= 0 || barHeight <= 0)
    return;

  QLinearGradient gradient(x, 2, x, 2 + barHeight);
  gradient.setColorAt(0, _colorHigh);
  gradient.setColorAt(1, _colorLow);
  painter.setPen(QPen(kCoverColor, 1));
  painter.setBrush(gradient);
  painter.drawRect(x, 2, barWidth, barHeight);

  const double level = std::abs((_minValue - value) * barHeight / (_maxValue - _minValue));
  painter.setBrush(kCoverColor);
  painter.drawRect(x, 2, barWidth, barHeight - pixels(level, barHeight));

  const int ticks = barHeight / 8;
  painter.setPen(QPen(kCoverColor, 2));
  for (int i = 1; i < ticks; ++i) {
    const int y = h - i * barHeight / ticks - 1;
    painter.drawLine(x + 3, y, x + 3 + barWidth - 6, y);
  }
}

void QVUMeter::paintCompact(QPainter& painter) const {
  const int half = width() / 2;
  const double values[] = {_leftValue, _rightValue};
  for (int channel = 0; channel < 2; ++channel) {
    const int top = pixels((100 - values[channel]) / 100 * height(), height());
    painter.fillRect(channel * half, top, half, height() - top, Qt::green);
  }
}
