#include "console/FocusKeeper.h"

void FocusKeeper::takeFrom(const QWidget* part) {
  QWidget* window = part->window();
  QWidget* owner = window->focusWidget();
  if (!owner || (owner != part && !part->isAncestorOf(owner)))
    return;
  _owner = owner;
  // If nothing had the focus, the next activation of the window would give it to the first control.
  window->setFocus(Qt::OtherFocusReason);
}

void FocusKeeper::giveBack() {
  if (_owner && _owner->window()->focusWidget() == _owner->window())
    _owner->setFocus(Qt::OtherFocusReason);
  _owner.clear();
}
