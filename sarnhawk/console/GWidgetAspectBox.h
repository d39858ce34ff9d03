// Keeps its one child centred at 16:9 and as large as the box allows. Console thread.
#pragma once
#include <QWidget>

class GWidgetAspectBox : public QWidget {
  Q_OBJECT
  /// Room on each side of the picture that the child needs for its border, in pixels.
  Q_PROPERTY(int border READ border WRITE setBorder)

 public:
  explicit GWidgetAspectBox(QWidget* parent = nullptr);

  int border() const { return _border; }
  void setBorder(int border);

 protected:
  void resizeEvent(QResizeEvent* event) override;
  bool event(QEvent* event) override;

 private:
  void placeChild();

  int _border = 0;
};
