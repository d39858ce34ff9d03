// A frameless window of its own with one tool button, floating over a picture that the engine draws. It
// belongs to the window that it floats over: hidden and minimised with it, and never above other programs.
// GUI thread.
#pragma once
#include <QWidget>

class QToolButton;

class GFloatWidgetToolButton : public QWidget {
  Q_OBJECT

 public:
  explicit GFloatWidgetToolButton(QWidget* owner);

  QToolButton* button() const { return _button; }

  /// Shows or hides the window. Not to be asked for while the owner is minimised: it would come back.
  void setShown(bool shown);

 private:
  QToolButton* _button = nullptr;
};
