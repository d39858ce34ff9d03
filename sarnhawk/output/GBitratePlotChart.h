// A chart of the last eleven bitrates of each encoder, one pair of curves an output: its pictures and its
// sound. Console thread.
#pragma once
#include <qwt_plot.h>

#include <QList>
#include <QPair>
#include <QStringList>
#include <QVector>

class LegendItem;
class QwtPlotCanvas;
class QwtPlotCurve;
class QwtPlotGrid;

class GBitratePlotChart : public QwtPlot {
  Q_OBJECT

 public:
  /// Samples that a curve shows.
  static constexpr int kSamples = 11;

  explicit GBitratePlotChart(QWidget* parent = nullptr);

  /// Called once: makes two curves for each name, pictures before sound.
  void setLegends(const QStringList& names);
  using QwtPlot::update;
  /// Appends one sample to each curve, in the order of the curves, in kbit/s. Curves without a value stay.
  void update(const QList<int>& values);

 private:
  using Curve = QPair<QwtPlotCurve*, QVector<QPointF>>;

  void addCurve(const QString& title, Qt::GlobalColor color);

  // The plot deletes what is attached to it.
  QwtPlotCanvas* _canvas;
  QwtPlotGrid* _grid;
  LegendItem* _legend;
  QList<Curve> _curves;
  QStringList _names;
};
