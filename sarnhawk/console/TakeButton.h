// A take button: the picture of its transition over two lines of text. The picture takes the room that the
// text leaves in the button. Console thread.
#pragma once
#include <QToolButton>

class TakeButton : public QToolButton {
  Q_OBJECT

 public:
  explicit TakeButton(QWidget* parent = nullptr) : QToolButton(parent) {}

  /// Does not depend on the picture. Otherwise the button would grow with the picture and the picture with
  /// it.
  QSize sizeHint() const override { return minimumSize(); }

 protected:
  void resizeEvent(QResizeEvent* event) override;
};
