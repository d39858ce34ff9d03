// A window that keeps the last picture which the engine shows on it. Main thread.
#pragma once
#include <QImage>
#include <QWidget>

#include "tagKorviaWindowInfo.h"

class MonitorWidget : public QWidget {
  Q_OBJECT

 public:
  QImage last;

 public slots:
  void setMonitorImage(const QImage& image) { last = image; }
};

inline tagKorviaWindowInfo windowOf(QWidget& widget) {
  tagKorviaWindowInfo info;
  info.right = widget.width() - 1;
  info.bottom = widget.height() - 1;
  info.winId = widget.winId();
  return info;
}
