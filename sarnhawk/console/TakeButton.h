// A take button: the picture of its transition over two lines of text. The picture takes the room that the
// text leaves in the button. Console thread.
#pragma once
#include <QToolButton>

class TakeButton : public QToolButton {
  Q_OBJECT

 public:
  explicit TakeButton(QWidget* parent = nullptr) : QToolButton(parent) {}

  /// Independent of the picture, which would else make the room that it fills.
  QSize sizeHint() const override { return minimumSize(); }

 protected:
  void resizeEvent(QResizeEvent* event) override;
};
