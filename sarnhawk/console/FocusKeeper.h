// Keeps the keyboard focus for a part of the desk that is disabled or hidden for a moment. Without it Qt
// moves the focus to the next control, and the operator's next key changes that control. Console thread.
#pragma once
#include <QPointer>
#include <QWidget>

class FocusKeeper {
 public:
  /// To be called before the part is disabled or hidden. A focus inside the part moves to the window, which
  /// ignores keys.
  void takeFrom(const QWidget* part);
  /// To be called when the part is enabled or shown again. Returns the focus that was taken, unless another
  /// control has got the focus since.
  void giveBack();

 private:
  QPointer<QWidget> _owner;
};
