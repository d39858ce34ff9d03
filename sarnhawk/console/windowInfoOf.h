// Describes a widget to the engine as a window for pictures. Console thread.
#pragma once
#include <QWidget>

#include "tagKorviaWindowInfo.h"

/// Native handle of the widget, which is created when the widget has none, and its rectangle in native
/// pixels. Left and top are 0.
inline tagKorviaWindowInfo windowInfoOf(QWidget* widget) {
  const QSize size = widget->size() * widget->devicePixelRatioF();
  tagKorviaWindowInfo info;
  info.right = info.left + size.width() - 1;
  info.bottom = info.top + size.height() - 1;
  info.winId = widget->winId();
  return info;
}
