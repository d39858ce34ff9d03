// A label whose lines are cut with an ellipsis where they do not fit. It asks its layout for no width, so
// that a long text moves nothing. Console thread.
#pragma once
#include <QLabel>

class ElidedLabel : public QLabel {
  Q_OBJECT

 public:
  explicit ElidedLabel(QWidget* parent = nullptr);

 protected:
  void paintEvent(QPaintEvent* event) override;
};
