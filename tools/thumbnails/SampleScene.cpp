#include "SampleScene.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace korvia {

namespace {

struct Palette {
  QRgb top;
  QRgb bottom;
  QRgb light;
  QRgb far;
  QRgb near;
  QRgb letter;
  QRgb outline;
  QRgb border;
};
constexpr Palette kEvening{0xffe4572e, 0xffffd166, 0xfffff1b8, 0xffb23a2f,
                           0xff5c1a2b, 0xffffffff, 0xff4a1220, 0xffffe3b0};
constexpr Palette kNight{0xff081b45, 0xff2a9fc9, 0xffe6f4ff, 0xff145a80,
                         0xff0a2c4d, 0xffdff7ff, 0xff041230, 0xff7fd4f5};

using Corners = std::initializer_list<QPointF>;

/// Corners as fractions of the size. The land fills the picture down to its lower edge.
void drawLand(QPainter& painter, QSizeF size, QRgb color, const Corners& ridge) {
  QPainterPath land(QPointF(0, size.height()));
  for (const QPointF& corner : ridge)
    land.lineTo(corner.x() * size.width(), corner.y() * size.height());
  land.lineTo(size.width(), size.height());
  painter.fillPath(land, QColor(color));
}

/// Strokes in a box of 1 x 1.
QPainterPath letterA() {
  QPainterPath path(QPointF(0.06, 1));
  path.lineTo(0.5, 0);
  path.lineTo(0.94, 1);
  path.moveTo(0.22, 0.66);
  path.lineTo(0.78, 0.66);
  return path;
}

QPainterPath letterB() {
  QPainterPath path(QPointF(0.12, 0));
  path.lineTo(0.12, 1);
  path.lineTo(0.55, 1);
  path.cubicTo(0.98, 1, 0.98, 0.48, 0.55, 0.48);
  path.lineTo(0.12, 0.48);
  path.moveTo(0.12, 0);
  path.lineTo(0.5, 0);
  path.cubicTo(0.88, 0, 0.88, 0.48, 0.5, 0.48);
  return path;
}

void drawLetter(QPainter& painter, QSizeF size, const QPainterPath& letter, const Palette& palette) {
  const qreal side = std::min(size.width(), size.height());
  const qreal height = 0.52 * side;
  const qreal width = 0.5 * side;
  painter.save();
  painter.translate((size.width() - width) / 2, (size.height() - height) / 2);
  painter.setBrush(Qt::NoBrush);
  const QPainterPath strokes = QTransform::fromScale(width, height).map(letter);
  for (const auto& [share, color] : {std::pair{0.2, palette.outline}, std::pair{0.115, palette.letter}}) {
    painter.setPen(QPen(QColor(color), share * side, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(strokes);
  }
  painter.restore();
}

void drawSky(QPainter& painter, QSizeF size, const Palette& palette) {
  QLinearGradient sky(0, 0, 0, size.height());
  sky.setColorAt(0, QColor(palette.top));
  sky.setColorAt(1, QColor(palette.bottom));
  painter.fillRect(QRectF(QPointF(), size), sky);
}

void drawBall(QPainter& painter, QSizeF size, QPointF middle, qreal share, QRgb color) {
  const qreal radius = share * std::min(size.width(), size.height());
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(color));
  painter.drawEllipse(QPointF(middle.x() * size.width(), middle.y() * size.height()), radius, radius);
}

/// The border makes the edges visible when the picture moves or shrinks.
void drawBorder(QPainter& painter, QSizeF size, const Palette& palette) {
  const qreal width = std::min(size.width(), size.height()) / 42;
  painter.setPen(QPen(QColor(palette.border), width, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(QRectF(QPointF(), size).adjusted(width / 2, width / 2, -width / 2, -width / 2));
}

QImage emptyImage(QSize size) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::black);
  return image;
}

}  // namespace

QImage drawSceneA(QSize size) {
  QImage image = emptyImage(size);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSky(painter, size, kEvening);
  drawBall(painter, size, {0.83, 0.24}, 0.13, kEvening.light);
  drawLand(painter, size, kEvening.far,
           {{0, 0.62}, {0.16, 0.52}, {0.34, 0.66}, {0.6, 0.56}, {0.8, 0.68}, {1, 0.6}});
  drawLand(painter, size, kEvening.near, {{0, 0.84}, {0.3, 0.76}, {0.62, 0.86}, {1, 0.74}});
  drawLetter(painter, size, letterA(), kEvening);
  drawBorder(painter, size, kEvening);
  return image;
}

QImage drawSceneB(QSize size) {
  QImage image = emptyImage(size);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  drawSky(painter, size, kNight);
  drawBall(painter, size, {0.15, 0.22}, 0.11, kNight.light);
  for (const QPointF& star :
       {QPointF(0.36, 0.12), QPointF(0.62, 0.1), QPointF(0.88, 0.14), QPointF(0.9, 0.4), QPointF(0.08, 0.46)})
    drawBall(painter, size, star, 0.018, kNight.light);
  drawLand(painter, size, kNight.far,
           {{0, 0.72}, {0.2, 0.5}, {0.36, 0.7}, {0.52, 0.58}, {0.78, 0.44}, {1, 0.72}});
  drawLand(painter, size, kNight.near, {{0, 0.86}, {0.24, 0.8}, {0.5, 0.88}, {0.76, 0.78}, {1, 0.88}});
  drawLetter(painter, size, letterB(), kNight);
  drawBorder(painter, size, kNight);
  return image;
}

QImage drawCut(QSize size) {
  constexpr QRgb kFilm = 0xff14171c;
  constexpr QRgb kHole = 0xff5b6471;
  constexpr int kHoles = 8;
  QImage image = emptyImage(size);
  image.fill(kFilm);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);

  const qreal width = size.width();
  const qreal height = size.height();
  const qreal hole = width / kHoles / 2;
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(kHole));
  for (int i = 0; i < kHoles; ++i)
    for (const qreal y : {0.05 * height, 0.95 * height - hole})
      painter.drawRoundedRect(QRectF((2 * i + 0.5) * hole, y, hole, hole), hole / 4, hole / 4);

  const QSize frame(static_cast<int>(width / 2), static_cast<int>(0.68 * height));
  const int top = static_cast<int>(0.16 * height);
  painter.drawImage(0, top, drawSceneA(frame));
  painter.drawImage(size.width() - frame.width(), top, drawSceneB(frame));

  painter.setPen(QPen(Qt::white, width / 40));
  painter.drawLine(QPointF(width / 2, 0), QPointF(width / 2, height));
  return image;
}

QImage drawDie(const QImage& background) {
  QImage image = background;
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  const qreal side = 0.52 * std::min(image.width(), image.height());
  painter.translate(image.width() / 2.0, image.height() / 2.0);
  painter.rotate(-12);
  painter.setPen(QPen(QColor(0xff14171c), side / 16));
  painter.setBrush(QColor(0xfff4f6f8));
  painter.drawRoundedRect(QRectF(-side / 2, -side / 2, side, side), side / 6, side / 6);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0xff14171c));
  const qreal step = side / 4;
  for (const QPointF& pip : {QPointF(-1, -1), QPointF(1, -1), QPointF(0, 0), QPointF(-1, 1), QPointF(1, 1)})
    painter.drawEllipse(pip * step, side / 10.5, side / 10.5);
  return image;
}

}  // namespace korvia
