#include "MonitorSurface.h"

#include <QGuiApplication>

#include "WidgetMonitorSurface.h"
#include "X11MonitorSurface.h"

namespace korvia {

std::unique_ptr<MonitorSurfaceFactory> createMonitorSurfaceFactory() {
  if (QGuiApplication::platformName() == QLatin1String("xcb")) {
    if (auto factory = X11MonitorSurfaceFactory::connect())
      return factory;
  }
  return std::make_unique<WidgetMonitorSurfaceFactory>();
}

}  // namespace korvia
