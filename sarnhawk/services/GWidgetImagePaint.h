// Shows one picture, scaled to the whole widget; black without one. Console thread.
#pragma once
#include <QImage>
#include <QWidget>

class GWidgetImagePaint : public QWidget {
  Q_OBJECT

 public:
  explicit GWidgetImagePaint(QWidget* parent = nullptr) : QWidget(parent) {}

  void setImage(const QImage& image);
  const QImage& image() const { return _image; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage _image;
};
