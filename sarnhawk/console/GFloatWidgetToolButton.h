// A frameless window with one tool button, which floats over a picture that the engine draws. The window that
// it floats over owns it: it is hidden and minimised together with that window and never covers other
// programs. Console thread.
#pragma once
#include <QWidget>

class QToolButton;

class GFloatWidgetToolButton : public QWidget {
  Q_OBJECT

 public:
  explicit GFloatWidgetToolButton(QWidget* owner);

  QToolButton* button() const { return _button; }

  /// Shows the window, also when it was minimised. Not to be called while the owner is minimised, since that
  /// would restore the owner.
  void showInFull();

 private:
  QToolButton* _button = nullptr;
};
