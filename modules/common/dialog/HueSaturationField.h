// The field of QColEdit in which a press chooses hue (from left to right) and saturation (from bottom to
// top). Console thread.
#pragma once
#include <QImage>
#include <QWidget>

class HueSaturationField : public QWidget {
  Q_OBJECT

 public:
  explicit HueSaturationField(QWidget* parent = nullptr);

  /// Hue in degrees, 0 to 359; saturation 0 to 255. Tells nobody.
  void setChoice(int hue, int saturation);
  int hue() const { return _hue; }
  int saturation() const { return _saturation; }

 signals:
  /// The operator has chosen.
  void chosen(int hue, int saturation);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  void chooseAt(const QPoint& place);

  QImage _field;
  int _hue = 0;
  int _saturation = 0;
};
