#include "EasingPicture.h"

#include <QPainter>
#include <QPainterPath>

#include "engine/mix/Easing.h"

namespace korvia {

namespace {

// Colours of panel, hovered control, line and text in the console's style sheet.
constexpr QRgb kPanel = 0xff1b1f26;
constexpr QRgb kArea = 0xff2d3540;
constexpr QRgb kGrid = 0xff313945;
constexpr QRgb kFrame = 0xff5b6471;
constexpr QRgb kCurve = 0xffd7dce3;
constexpr int kGridCells = 4;
// Many steps, because circular curves rise steeply: by a tenth of the plot within half a step.
constexpr int kSteps = 4 * kEasingPlotSize;

QPointF plotted(double progress, double eased) {
  return {kEasingPlotLeft + progress * kEasingPlotSize, kEasingPlotTop + (1 - eased) * kEasingPlotSize};
}

void drawGrid(QPainter& painter) {
  painter.setPen(QColor(kGrid));
  for (int i = 1; i < kGridCells; ++i) {
    const double share = static_cast<double>(i) / kGridCells;
    painter.drawLine(plotted(share, 0), plotted(share, 1));
    painter.drawLine(plotted(0, share), plotted(1, share));
  }
}

QPainterPath curvePath(int code) {
  QPainterPath path(plotted(0, 0));
  for (int step = 1; step <= kSteps; ++step) {
    const double progress = static_cast<double>(step) / kSteps;
    path.lineTo(plotted(progress, easedProgress(code, progress)));
  }
  return path;
}

}  // namespace

QImage drawEasing(int code) {
  QImage image(kEasingPictureSize, kEasingPictureSize, QImage::Format_RGB32);
  image.fill(kPanel);
  QPainter painter(&image);
  const QPainterPath curve = curvePath(code);
  QPainterPath area = curve;
  area.lineTo(plotted(1, 0));
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillPath(area, QColor(kArea));

  // Without smoothing straight lines are sharp.
  painter.setRenderHint(QPainter::Antialiasing, false);
  drawGrid(painter);
  painter.setPen(QColor(kFrame));
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(kEasingPlotLeft, kEasingPlotTop, kEasingPlotSize, kEasingPlotSize);

  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(kCurve), 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.drawPath(curve);
  painter.setPen(QPen(QColor(kPanel), 1.5));
  painter.setBrush(Qt::white);
  for (const QPointF& end : {plotted(0, 0), plotted(1, 1)})
    painter.drawEllipse(end, 4.5, 4.5);
  return image;
}

}  // namespace korvia
