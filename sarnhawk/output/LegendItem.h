// The legend inside the bitrate chart, with the chart's look. Console thread.
#pragma once
#include <qwt_plot_legenditem.h>

class LegendItem : public QwtPlotLegendItem {
 public:
  LegendItem();
};
