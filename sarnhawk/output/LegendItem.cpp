#include "output/LegendItem.h"

#include <QPen>

namespace {

constexpr int kBackgroundAlpha = 200;
constexpr int kFontSize = 9;
constexpr int kFontWeight = QFont::Bold;
static_assert(kFontWeight == 75);

}  // namespace

LegendItem::LegendItem() {
  setRenderHint(QwtPlotItem::RenderAntialiased);
  const QPen white(Qt::white);
  setTextPen(white);
  setBorderPen(white);
  QColor background(Qt::gray);
  background.setAlpha(kBackgroundAlpha);
  setBackgroundBrush(background);
  setMaxColumns(1);
  setAlignment(Qt::AlignRight | Qt::AlignTop);
  setBackgroundMode(QwtPlotLegendItem::LegendBackground);
  setBorderRadius(8);
  setMargin(4);
  setSpacing(2);
  setItemMargin(0);
  QFont itemFont = font();
  itemFont.setPointSize(kFontSize);
  itemFont.setWeight(kFontWeight);
  setFont(itemFont);
}
