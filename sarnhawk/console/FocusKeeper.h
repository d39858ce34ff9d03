// Keeps the keyboard's focus for a part of the desk that is disabled or hidden for a moment. Qt would hand
// the focus to the next control, and the operator's next key would move that one. Console thread.
#pragma once
#include <QPointer>
#include <QWidget>

class FocusKeeper {
 public:
  /// Before the part is disabled or hidden: when the focus is inside it, it goes to the window, which does
  /// nothing with keys.
  void takeFrom(const QWidget* part);
  /// Once the part is back: it gets what was taken, unless another control has got the focus since.
  void giveBack();

 private:
  QPointer<QWidget> _owner;
};
