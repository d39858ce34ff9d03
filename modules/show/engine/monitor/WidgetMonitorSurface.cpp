#include "WidgetMonitorSurface.h"

#include <QCoreApplication>
#include <QImage>
#include <QWidget>

namespace korvia {

void WidgetMonitorSurface::show(const Frame& picture, const MonitorGuides& guides) {
  const FrameSize size{window_.right - window_.left + 1, window_.bottom - window_.top + 1};
  const MonitorRect rect = monitorRect(picture.size(), size);
  QCoreApplication* application = QCoreApplication::instance();
  lost_ = true;
  if (rect.size.isEmpty() || !application || underWay_->exchange(true))
    return;
  lost_ = false;
  QImage image(rect.size.width, rect.size.height, QImage::Format_RGB32);
  scaler_.toRgb(picture, rect.size, image.bits(), image.bytesPerLine());
  drawGuides(guides, rect.size, image.bits(), image.bytesPerLine());
  QMetaObject::invokeMethod(
      application,
      [winId = window_.winId, image, underWay = underWay_] {
        underWay->store(false);
        if (QWidget* widget = QWidget::find(winId))
          QMetaObject::invokeMethod(widget, "setMonitorImage", Q_ARG(QImage, image));
      },
      Qt::QueuedConnection);
}

}  // namespace korvia
