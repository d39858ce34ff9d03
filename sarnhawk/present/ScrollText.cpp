#include "present/ScrollText.h"

#include <QPainter>
#include <algorithm>
#include <cstring>

namespace {

constexpr int kIntervalMs = 50;
constexpr int kStep = 2;
constexpr int kStart = -64;
constexpr int kFadeWidth = 15;
constexpr int kFadedWidthMin = 65;
constexpr int kFadeInPixels = 8;

QString oneLine(QString text) {
  text.replace(QLatin1String("\r\n"), QLatin1String(" "));
  for (const QChar end :
       {QChar('\n'), QChar('\r'), QChar('\t'), QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator)})
    text.replace(end, QLatin1Char(' '));
  return text;
}

}  // namespace

ScrollText::ScrollText(QWidget* parent)
    : QWidget(parent), _separator(6, QLatin1Char(' ')), _leftMargin(height() / 3) {
  _staticText.setTextFormat(Qt::PlainText);
  setFixedHeight(fontMetrics().height());
  _leftMargin = height() / 3;
  _timer.setInterval(kIntervalMs);
  _timer.setTimerType(Qt::PreciseTimer);
  connect(&_timer, &QTimer::timeout, this, &ScrollText::timer_timeout);
}

void ScrollText::setText(QString text) {
  _text = std::move(text);
  _line = oneLine(_text);
  updateText();
  update();
}

void ScrollText::setSeparator(QString separator) {
  _separator = std::move(separator);
  updateText();
  update();
}

bool ScrollText::fits() const {
  return fontMetrics().horizontalAdvance(_line) <= width() - _leftMargin;
}

void ScrollText::updateText() {
  _timer.stop();
  const bool scrolls = !fits();
  _staticText.setText(scrolls ? _line + _separator : _line);
  _staticText.prepare(QTransform(), font());
  _wholeSize = QSize(fontMetrics().horizontalAdvance(_staticText.text()), fontMetrics().height());
  if (scrolls) {
    _position = kStart;
    _timer.start();
  }
}

void ScrollText::timer_timeout() {
  if (_wholeSize.width() <= 0)
    return;
  // The remainder keeps the sign, so the position climbs to 0 before the text moves.
  _position = (_position + kStep) % _wholeSize.width();
  update();
}

void ScrollText::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const int y = (height() - _wholeSize.height()) / 2;
  if (isScrolling())
    paintScrolling(painter, y);
  else
    painter.drawStaticText(_leftMargin, y, _staticText);
}

void ScrollText::paintScrolling(QPainter& painter, int y) {
  if (_picture.isNull() || _wholeSize.width() <= 0)
    return;
  _picture.fill(Qt::transparent);
  QPainter text(&_picture);
  text.setPen(painter.pen());
  text.setFont(painter.font());
  for (int x = _leftMargin + std::min(0, -_position); x < width(); x += _wholeSize.width())
    text.drawStaticText(x + 2, y + 2, _staticText);

  text.setCompositionMode(QPainter::CompositionMode_DestinationIn);
  text.setClipRect(width() - kFadeWidth, 0, kFadeWidth, height());
  text.drawImage(0, 0, _fade);
  text.setClipRect(0, 0, kFadeWidth, height());
  // The text stands still while the position is negative, and its left end fades late in that pause.
  if (_position < 0)
    text.setOpacity((std::max(_position, -kFadeInPixels) + kFadeInPixels) * 0.125);
  text.drawImage(0, 0, _fade);
  text.end();
  painter.drawImage(0, 0, _picture);
}

void ScrollText::makeFade() {
  _picture = QImage(size(), QImage::Format_ARGB32_Premultiplied);
  _fade = QImage(size(), QImage::Format_ARGB32_Premultiplied);
  _fade.fill(qRgba(0, 0, 0, 255));
  if (width() < kFadedWidthMin || height() < 1)
    return;
  auto* first = reinterpret_cast<QRgb*>(_fade.scanLine(0));
  for (int i = 1; i <= kFadeWidth; ++i)
    first[i - 1] = first[width() - i] = qRgba(0, 0, 0, i << 4);
  for (int line = 1; line < height(); ++line)
    std::memcpy(_fade.scanLine(line), first, size_t(_fade.bytesPerLine()));
}

void ScrollText::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  makeFade();
  if (fits() == isScrolling())
    updateText();
}
