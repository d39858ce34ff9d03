#include "HoverMoveFilter.h"

#include <QHoverEvent>

#include "MainFrame.h"

HoverMoveFilter::HoverMoveFilter(MainFrame* frame, QObject* parent) : QObject(parent), _frame(frame) {}

bool HoverMoveFilter::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::HoverMove) {
    const auto* move = static_cast<QHoverEvent*>(event);
    _frame->onHoverMove(move->pos(), move->oldPos());
  }
  return QObject::eventFilter(watched, event);
}
