#include "output/GBitratePlotChart.h"

#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_scale_draw.h>

#include <algorithm>
#include <iterator>

#include "output/LegendItem.h"

namespace {

constexpr double kBitrateMax = 16000;
constexpr double kBitrateStep = 2000;

/// Of the pair of curves at an index.
constexpr struct {
  Qt::GlobalColor video;
  Qt::GlobalColor audio;
} kColors[] = {{Qt::darkBlue, Qt::darkRed},
               {Qt::darkYellow, Qt::darkCyan},
               {Qt::darkBlue, Qt::cyan},
               {Qt::yellow, Qt::darkRed},
               {Qt::darkCyan, Qt::darkMagenta}};

/// The newest sample stands at the right end.
void renumber(QVector<QPointF>& samples) {
  for (int index = 0; index < samples.size(); ++index)
    samples[index].setX(index);
}

}  // namespace

GBitratePlotChart::GBitratePlotChart(QWidget* parent)
    : QwtPlot(parent), _canvas(new QwtPlotCanvas(this)), _grid(new QwtPlotGrid), _legend(new LegendItem) {
  _canvas->setFocusIndicator(QwtPlotCanvas::CanvasFocusIndicator);
  _canvas->setFocusPolicy(Qt::StrongFocus);
  _canvas->setPalette(QPalette(Qt::black));
  setCanvas(_canvas);

  _grid->enableXMin(true);
  _grid->setMajorPen(Qt::green, 0, Qt::DotLine);
  _grid->setMinorPen(Qt::darkGreen, 0, Qt::DotLine);
  _grid->attach(this);

  setAxisScale(QwtPlot::yLeft, 0, kBitrateMax, kBitrateStep);
  setAxisAutoScale(QwtPlot::yLeft, true);
  setAxisScale(QwtPlot::xBottom, 0, kSamples - 1, 1);
  axisScaleDraw(QwtPlot::xBottom)->enableComponent(QwtAbstractScaleDraw::Labels, false);

  _legend->attach(this);
}

void GBitratePlotChart::setLegends(const QStringList& names) {
  _names = names;
  for (int index = 0; index < names.size(); ++index) {
    const auto& colors = kColors[static_cast<std::size_t>(index) % std::size(kColors)];
    addCurve(tr("Video-%1").arg(names[index]), colors.video);
    addCurve(tr("Audio-%1").arg(names[index]), colors.audio);
  }
  replot();
}

void GBitratePlotChart::addCurve(const QString& title, Qt::GlobalColor color) {
  auto* curve = new QwtPlotCurve(title);
  curve->setPen(color, 0, Qt::SolidLine);
  curve->setRenderHint(QwtPlotItem::RenderAntialiased);
  QVector<QPointF> samples(kSamples);
  renumber(samples);
  curve->setSamples(samples);
  curve->attach(this);
  _curves.append({curve, samples});
}

void GBitratePlotChart::update(const QList<int>& values) {
  for (int index = 0; index < std::min(_curves.size(), values.size()); ++index) {
    auto& [curve, samples] = _curves[index];
    samples.removeFirst();
    samples.append(QPointF(kSamples - 1, values[index]));
    renumber(samples);
    curve->setSamples(samples);
    const QString title = index % 2 == 0 ? tr("Video-%1 %2 kbp/s") : tr("Audio-%1 %2 kbp/s");
    curve->setTitle(title.arg(_names[index / 2]).arg(values[index]));
  }
  replot();
}
