// The bitrate chart: its look, its curves, and how samples move through them.
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_grid.h>
#include <qwt_scale_draw.h>

#include <QtTest>

#include "output/GBitratePlotChart.h"
#include "output/LegendItem.h"

namespace {

class Chart : public GBitratePlotChart {
 public:
  explicit Chart(const QStringList& names = {"Net Stream", "Record"}) { setLegends(names); }

  QList<QwtPlotCurve*> curves() const {
    QList<QwtPlotCurve*> found;
    for (QwtPlotItem* item : itemList(QwtPlotItem::Rtti_PlotCurve))
      found.append(static_cast<QwtPlotCurve*>(item));
    return found;
  }
  QStringList titles() const {
    QStringList texts;
    for (const QwtPlotCurve* curve : curves())
      texts.append(curve->title().text());
    return texts;
  }
  /// Values of a curve from left to right; empty when the places are not 0 to 10.
  QList<int> values(int curve) const {
    const QwtSeriesData<QPointF>* samples = curves().at(curve)->data();
    QList<int> found;
    for (std::size_t index = 0; index < samples->size(); ++index) {
      if (samples->sample(index).x() != static_cast<double>(index))
        return {};
      found.append(static_cast<int>(samples->sample(index).y()));
    }
    return found;
  }
};

}  // namespace

class BitratePlotChartTest : public QObject {
  Q_OBJECT

 private slots:
  void eachNameHasACurveForPicturesAndOneForSound() {
    const Chart chart;
    QCOMPARE(chart.titles(),
             (QStringList{"Video-Net Stream", "Audio-Net Stream", "Video-Record", "Audio-Record"}));
    for (int curve = 0; curve < 4; ++curve)
      QCOMPARE(chart.values(curve), (QList<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}));
  }

  void pairsOfColoursComeInOrder() {
    const Chart chart({"a", "b", "c", "d", "e"});
    const QColor expected[] = {Qt::darkBlue, Qt::darkRed, Qt::darkYellow, Qt::darkCyan, Qt::darkBlue,
                               Qt::cyan,     Qt::yellow,  Qt::darkRed,    Qt::darkCyan, Qt::darkMagenta};
    QCOMPARE(chart.curves().size(), 10);
    for (int curve = 0; curve < 10; ++curve) {
      const QPen pen = chart.curves().at(curve)->pen();
      QCOMPARE(pen.color(), expected[curve]);
      QCOMPARE(pen.width(), 0);
      QCOMPARE(pen.style(), Qt::SolidLine);
      QVERIFY(chart.curves().at(curve)->testRenderHint(QwtPlotItem::RenderAntialiased));
    }
  }

  void newestSampleEntersAtTheRight() {
    Chart chart;
    chart.update(QList<int>{4000, 128, 8000, 192});
    chart.update(QList<int>{4100, 129, 8100, 193});
    QCOMPARE(chart.values(0), (QList<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 4000, 4100}));
    QCOMPARE(chart.values(1), (QList<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 128, 129}));
    QCOMPARE(chart.values(2), (QList<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 8000, 8100}));
    QCOMPARE(chart.values(3), (QList<int>{0, 0, 0, 0, 0, 0, 0, 0, 0, 192, 193}));
    for (int value = 0; value < 11; ++value)
      chart.update(QList<int>{value, 0, 0, 0});
    QCOMPARE(chart.values(0), (QList<int>{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
  }

  void legendShowsTheNewestValue() {
    Chart chart;
    chart.update(QList<int>{4000, 128, 8000, 192});
    chart.update(QList<int>{4100, 129, 8100, 193});
    QCOMPARE(chart.titles(), (QStringList{"Video-Net Stream 4100 kbp/s", "Audio-Net Stream 129 kbp/s",
                                          "Video-Record 8100 kbp/s", "Audio-Record 193 kbp/s"}));
  }

  void curvesWithoutAValueStay() {
    Chart chart;
    chart.update(QList<int>{1, 2, 3, 4, 5, 6});
    chart.update(QList<int>{7});
    QCOMPARE(chart.values(0).constLast(), 7);
    QCOMPARE(chart.values(3).constLast(), 4);
  }

  void axisFollowsHighBitrates() {
    Chart chart;
    QVERIFY(chart.axisAutoScale(QwtPlot::yLeft));
    chart.update(QList<int>{20000, 128, 4000, 128});
    QVERIFY(chart.axisScaleDiv(QwtPlot::yLeft).upperBound() >= 20000);
    for (int n = 0; n < 11; ++n)
      chart.update(QList<int>{400, 128, 400, 128});
    QVERIFY(chart.axisScaleDiv(QwtPlot::yLeft).upperBound() < 2000);
  }

  void bottomAxisHasElevenPlacesWithoutLabels() {
    Chart chart;
    chart.replot();
    const QwtScaleDiv& scale = chart.axisScaleDiv(QwtPlot::xBottom);
    QCOMPARE(scale.lowerBound(), 0.0);
    QCOMPARE(scale.upperBound(), 10.0);
    QCOMPARE(scale.ticks(QwtScaleDiv::MajorTick).size(), 11);
    QVERIFY(!chart.axisScaleDraw(QwtPlot::xBottom)->hasComponent(QwtAbstractScaleDraw::Labels));
    QVERIFY(chart.axisScaleDraw(QwtPlot::yLeft)->hasComponent(QwtAbstractScaleDraw::Labels));
  }

  void canvasIsBlackWithAGreenGrid() {
    const Chart chart;
    const auto* canvas = qobject_cast<const QwtPlotCanvas*>(chart.canvas());
    QVERIFY(canvas);
    QCOMPARE(canvas->focusIndicator(), QwtPlotCanvas::CanvasFocusIndicator);
    QCOMPARE(canvas->focusPolicy(), Qt::StrongFocus);
    QCOMPARE(canvas->palette().color(QPalette::Window), QColor(Qt::black));
    const QwtPlotItemList grids = chart.itemList(QwtPlotItem::Rtti_PlotGrid);
    QCOMPARE(grids.size(), 1);
    const auto* grid = static_cast<QwtPlotGrid*>(grids.constFirst());
    QVERIFY(grid->xMinEnabled());
    QVERIFY(!grid->yMinEnabled());
    QCOMPARE(grid->majorPen(), QPen(Qt::green, 0, Qt::DotLine));
    QCOMPARE(grid->minorPen(), QPen(Qt::darkGreen, 0, Qt::DotLine));
  }

  void legendStandsAtTheTopRight() {
    const Chart chart;
    const QwtPlotItemList legends = chart.itemList(QwtPlotItem::Rtti_PlotLegend);
    QCOMPARE(legends.size(), 1);
    const auto* legend = static_cast<LegendItem*>(legends.constFirst());
    QVERIFY(legend->testRenderHint(QwtPlotItem::RenderAntialiased));
    QCOMPARE(legend->textPen().color(), QColor(Qt::white));
    QCOMPARE(legend->borderPen().color(), QColor(Qt::white));
    QCOMPARE(legend->backgroundBrush().color(), QColor(160, 160, 164, 200));
    QCOMPARE(legend->maxColumns(), 1U);
    QCOMPARE(legend->alignment(), Qt::AlignTop | Qt::AlignRight);
    QCOMPARE(legend->backgroundMode(), QwtPlotLegendItem::LegendBackground);
    QCOMPARE(legend->borderRadius(), 8.0);
    QCOMPARE(legend->margin(), 4);
    QCOMPARE(legend->spacing(), 2);
    QCOMPARE(legend->itemMargin(), 0);
    QCOMPARE(legend->font().pointSize(), 9);
    QCOMPARE(legend->font().weight(), 75);
    QCOMPARE(legend->plotItems().size(), 4);
  }
};

QTEST_MAIN(BitratePlotChartTest)
#include "tst_bitrate_plot_chart.moc"
