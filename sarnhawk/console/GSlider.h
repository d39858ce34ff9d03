// Slider in the lever's style, whose handle overhangs its ticks. Console thread only.
#pragma once
#include <QSlider>

class GSlider : public QSlider {
  Q_OBJECT

 public:
  /// `overhang` in pixels, see GCleanlooksStyle. The slider owns its style.
  explicit GSlider(int overhang, QWidget* parent = nullptr);
  ~GSlider() override;
};
