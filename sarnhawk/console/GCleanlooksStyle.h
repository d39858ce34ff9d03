// Style of the switch lever. It derives from Fusion, widens handle and groove beyond their ticks, and draws
// the slider itself in the colours of the palette. Console thread only.
#pragma once
#include <QProxyStyle>

class GCleanlooksStyle : public QProxyStyle {
  Q_OBJECT

 public:
  /// `overhang` in pixels: how far handle and groove reach out on the left and on the right.
  explicit GCleanlooksStyle(int overhang);

  int pixelMetric(PixelMetric metric, const QStyleOption* option = nullptr,
                  const QWidget* widget = nullptr) const override;
  QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl subControl,
                       const QWidget* widget = nullptr) const override;
  /// Draws sliders itself, in both orientations; everything else is the base style's.
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget = nullptr) const override;

 private:
  void drawTicks(const QStyleOptionSlider& slider, QPainter* painter, const QWidget* widget) const;
  void drawGroove(const QStyleOptionSlider& slider, QPainter* painter, const QWidget* widget) const;
  void drawHandle(const QStyleOptionSlider& slider, QPainter* painter, const QWidget* widget) const;

  int _overhang;
};
