// Two-channel level bar without ballistics: it shows the newest values as they are. Console thread only.
#pragma once
#include <QColor>
#include <QWidget>

class QPainter;

class QVUMeter : public QWidget {
  Q_OBJECT
  Q_PROPERTY(QColor colorBg READ colorBg WRITE setColorBg)
  Q_PROPERTY(QColor colorValue READ colorValue WRITE setColorValue)
  Q_PROPERTY(QColor colorLow READ colorLow WRITE setColorLow)
  Q_PROPERTY(QColor colorHigh READ colorHigh WRITE setColorHigh)
  Q_PROPERTY(double leftValue READ leftValue WRITE setLeftValue)
  Q_PROPERTY(double rightValue READ rightValue WRITE setRightValue)
  Q_PROPERTY(double minValue READ minValue WRITE setMinValue)
  Q_PROPERTY(double maxValue READ maxValue WRITE setMaxValue)
  Q_PROPERTY(int dimValue READ dimValue WRITE setValueDim)

 public:
  /// `compact` is the small form for a channel strip, whose scale is always 0 to 100.
  explicit QVUMeter(QWidget* parent = nullptr, bool compact = false);

  QColor colorBg() const { return _colorBg; }
  QColor colorValue() const { return _colorValue; }
  QColor colorLow() const { return _colorLow; }
  QColor colorHigh() const { return _colorHigh; }
  double leftValue() const { return _leftValue; }
  double rightValue() const { return _rightValue; }
  double minValue() const { return _minValue; }
  double maxValue() const { return _maxValue; }
  int dimValue() const { return _dimValue; }

 signals:
  /// Never emitted, because levels are polled. Forms may connect to them.
  void valueLChanged(double value);
  void valueRChanged(double value);

 public slots:
  void setColorBg(QColor color);
  void setColorValue(QColor color);
  void setColorHigh(QColor color);
  void setColorLow(QColor color);
  void setValueDim(int dim);
  /// Values are clamped to the limits.
  void setLeftValue(double value);
  void setRightValue(double value);
  void setValues(double left, double right);
  /// Keeps the limits in order. A value below the minimum becomes the minimum, and the old minimum becomes
  /// the maximum; any other value becomes the maximum. setMaxValue does the same the other way round.
  void setMinValue(double value);
  void setMaxValue(double value);
  /// Paints at once.
  void paintBar();

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  double clamped(double value) const;
  void paintFull(QPainter& painter) const;
  void paintChannel(QPainter& painter, int x, double value) const;
  void paintCompact(QPainter& painter) const;

  QColor _colorBg{60, 60, 60};
  QColor _colorValue{Qt::white};
  QColor _colorHigh{Qt::red};
  QColor _colorLow{Qt::green};
  int _dimValue = 9;
  double _minValue = 0;
  double _maxValue = 100;
  double _leftValue = 0;
  double _rightValue = 0;
  bool _compact;
  /// Time of the last limited repaint, in milliseconds of the system clock. It stays 0, so that no repaint is
  /// skipped.
  qint64 _stampMs = 0;
};
