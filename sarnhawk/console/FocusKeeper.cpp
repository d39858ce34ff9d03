#include "console/FocusKeeper.h"

void FocusKeeper::takeFrom(const QWidget* part) {
  QWidget* owner = part->window()->focusWidget();
  if (!owner || (owner != part && !part->isAncestorOf(owner)))
    return;
  _owner = owner;
  owner->clearFocus();
}

void FocusKeeper::giveBack() {
  if (_owner && !_owner->window()->focusWidget())
    _owner->setFocus(Qt::OtherFocusReason);
  _owner.clear();
}
