// How a widget is named to the engine as a place for pictures. GUI thread.
#pragma once
#include <QWidget>

#include "tagKorviaWindowInfo.h"

/// Native handle of the widget, made when it has none yet, and its size in native pixels from 0, 0.
inline tagKorviaWindowInfo windowInfoOf(QWidget* widget) {
  const QSize size = widget->size() * widget->devicePixelRatioF();
  tagKorviaWindowInfo info;
  info.right = info.left + size.width() - 1;
  info.bottom = info.top + size.height() - 1;
  info.winId = widget->winId();
  return info;
}
