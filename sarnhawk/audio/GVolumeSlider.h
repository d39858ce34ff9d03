// The volume of a bus or a channel, 0 to 100 percent: the wheel moves it by 2, a double click sets it to 100,
// and its tool tip tells the gain in dB. Console thread.
#pragma once
#include <QElapsedTimer>
#include <QSlider>

class GVolumeSlider : public QSlider {
  Q_OBJECT

 public:
  explicit GVolumeSlider(QWidget* parent = nullptr);

  /// "-6.0 dB" for 50, "-∞ dB" for 0.
  static QString gainText(int percent);

 protected:
  void wheelEvent(QWheelEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  /// Overridden, because valueChanged is not emitted while signals are blocked.
  void sliderChange(SliderChange change) override;

 private:
  int _turned = 0;  // of the wheel, less than a notch
  int _target = 0;  // of the notches that follow one another
  QElapsedTimer _sinceNotch;
};
